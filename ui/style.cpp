#include "ui/style.h"

#include "ui/icons.h"
#include "ui/theme.h"

#include <QMenu>
#include <QPainter>
#include <QPalette>
#include <QStyleOption>
#include <cmath>

namespace flowtide {

namespace {

constexpr int menuPadding = 4;
constexpr int menuRow = 28;
constexpr int menuSeparator = 9;
constexpr int menuCheck = 28; ///< room at the left of a row
constexpr int menuGap = 24;   ///< between a row's text and its keys
constexpr int menuArrow = 24;
constexpr int scrollBar = 6;

void drawMenuItem(const QStyleOptionMenuItem& item, QPainter& painter) {
    using namespace theme;
    const QRectF row = item.rect;
    if (item.menuItemType == QStyleOptionMenuItem::Separator) {
        drawHairline(painter, row.adjusted(8, 4, -8, -4), Side::top, border);
        return;
    }
    const bool isEnabled = item.state & QStyle::State_Enabled;
    if (isEnabled && item.state & QStyle::State_Selected) drawBox(painter, row, laneRadius, controlHi);
    const QColor ink = isEnabled ? text : text3;
    if (item.checked)
        icons::draw(painter, QStringLiteral("check"), QRectF(row.left() + 4, row.top(), 20, row.height()), 16, ink);
    const QStringList parts = item.text.split(u'\t');
    const QRectF words = row.adjusted(menuCheck, 0, -12, 0);
    QString label = parts.front();
    label.remove(u'&');
    drawLine(painter, words, Qt::AlignLeft, Type::body, ink, label);
    if (parts.size() > 1)
        drawLine(painter, words, Qt::AlignRight, Type::small, isEnabled ? text2 : text3, parts.back());
    if (item.menuItemType == QStyleOptionMenuItem::SubMenu)
        icons::draw(painter, QStringLiteral("chevron-right"),
                    QRectF(row.right() - menuArrow, row.top(), menuArrow, row.height()), 14, isEnabled ? text2 : text3);
}

} // namespace

Style::Style()
    : QProxyStyle(QStringLiteral("Fusion")) {}

void Style::polish(QWidget* widget) {
    QProxyStyle::polish(widget);
    if (widget->inherits("QTipLabel")) widget->setContentsMargins(7, 3, 7, 3); // and the toolkit's own pixel
    if (qobject_cast<QMenu*>(widget)) {
        // Rounded where the desktop can, square where it can't.
        widget->setAttribute(Qt::WA_TranslucentBackground);
        widget->setWindowFlag(Qt::FramelessWindowHint);
        widget->setWindowFlag(Qt::NoDropShadowWindowHint);
    }
}

void Style::polish(QPalette& palette) {
    using namespace theme;
    palette = QPalette(control, pane);
    palette.setColor(QPalette::Window, well);
    palette.setColor(QPalette::Base, well);
    palette.setColor(QPalette::WindowText, text);
    palette.setColor(QPalette::Text, text);
    palette.setColor(QPalette::ButtonText, text);
    palette.setColor(QPalette::PlaceholderText, text2);
    palette.setColor(QPalette::ToolTipBase, controlHi);
    palette.setColor(QPalette::ToolTipText, text);
    palette.setColor(QPalette::Highlight, border);
    palette.setColor(QPalette::HighlightedText, text);
    palette.setColor(QPalette::Link, text);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, text3);
}

int Style::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const {
    switch (metric) {
    case PM_MenuPanelWidth:
        return 0;
    case PM_MenuHMargin:
    case PM_MenuVMargin:
        return menuPadding;
    case PM_ScrollBarExtent:
        return scrollBar;
    case PM_ScrollView_ScrollBarSpacing:
    case PM_ToolTipLabelFrameWidth:
        return 0;
    default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

int Style::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget, QStyleHintReturn* data) const {
    switch (hint) {
    case SH_ToolTip_WakeUpDelay:
        return 600;
    case SH_ToolTip_FallAsleepDelay:
        return 400;
    case SH_ScrollBar_Transient:
        return 0;
    case SH_Menu_SloppySubMenus:
    case SH_Menu_MouseTracking:
        return 1;
    case SH_UnderlineShortcut:
    case SH_DialogButtonBox_ButtonsHaveIcons:
        return 0;
    default:
        return QProxyStyle::styleHint(hint, option, widget, data);
    }
}

QSize Style::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                              const QWidget* widget) const {
    if (type == CT_MenuItem) {
        if (const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option)) {
            if (item->menuItemType == QStyleOptionMenuItem::Separator) return {1, menuSeparator};
            const QStringList parts = item->text.split(u'\t');
            double width = menuCheck + theme::textWidth(theme::Type::body, parts.front()) + 16;
            if (parts.size() > 1) width += menuGap + theme::textWidth(theme::Type::small, parts.back());
            if (item->menuItemType == QStyleOptionMenuItem::SubMenu) width += menuArrow;
            return {static_cast<int>(std::ceil(width)), menuRow};
        }
    }
    return QProxyStyle::sizeFromContents(type, option, size, widget);
}

void Style::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                          const QWidget* widget) const {
    switch (element) {
    case PE_PanelMenu:
        theme::drawBox(*painter, option->rect, theme::sheetRadius, theme::raised, theme::border);
        return;
    case PE_PanelTipLabel:
        painter->fillRect(option->rect, theme::controlHi);
        return;
    case PE_FrameMenu:
    case PE_FrameFocusRect:
    case PE_PanelLineEdit:
    case PE_Frame:
        return;
    default:
        QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
}

void Style::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                        const QWidget* widget) const {
    if (element == CE_MenuItem) {
        if (const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option))
            return drawMenuItem(*item, *painter);
    }
    if (element == CE_MenuEmptyArea) return;
    QProxyStyle::drawControl(element, option, painter, widget);
}

void Style::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                               const QWidget* widget) const {
    if (control != CC_ScrollBar) return QProxyStyle::drawComplexControl(control, option, painter, widget);
    const QRect slider = subControlRect(CC_ScrollBar, option, SC_ScrollBarSlider, widget);
    if (const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option); bar && bar->maximum > bar->minimum)
        theme::drawBox(*painter, slider, scrollBar / 2.0,
                       option->state & State_MouseOver ? theme::edge : theme::border);
}

} // namespace flowtide
