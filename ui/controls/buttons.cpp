#include "ui/controls/buttons.h"

#include "ui/controls/focus_ring.h"
#include "ui/icons.h"
#include "ui/theme.h"

#include <QPainter>
#include <algorithm>
#include <cmath>
#include <utility>

namespace flowtide {

namespace {

constexpr double buttonPadding = 12;
constexpr double iconGap = 8;
constexpr double buttonIcon = 16;

struct ButtonColors {
    QColor ground;
    QColor text;
};

} // namespace

Button::Button(ButtonKind kind, const QString& text, QString icon, QWidget* parent)
    : QPushButton(text, parent)
    , kind_(kind)
    , icon_(std::move(icon))
    , height_(kind == ButtonKind::primary ? 32 : 28) {
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    setFocusRing(*this, theme::controlRadius);
}

void Button::setButtonHeight(int pixels) {
    height_ = pixels;
    updateGeometry();
}

void Button::setKind(ButtonKind kind) {
    if (kind_ == kind) return;
    kind_ = kind;
    updateGeometry();
    update();
}

void Button::setShare(double share) {
    if (share_ == share) return;
    share_ = share;
    update();
}

void Button::reserveWidthFor(const QStringList& texts) {
    reserved_ = 0;
    for (const QString& text : texts)
        reserved_ = std::max(reserved_, widthFor(text));
    updateGeometry();
}

double Button::widthFor(const QString& text) const {
    const auto type = kind_ == ButtonKind::primary ? theme::Type::labelBold : theme::Type::label;
    return theme::tabularWidth(type, text) + 2 * buttonPadding + (icon_.isEmpty() ? 0 : buttonIcon + iconGap);
}

QSize Button::sizeHint() const {
    return {static_cast<int>(std::ceil(std::max(widthFor(text()), reserved_))), height_};
}

void Button::paintEvent(QPaintEvent*) {
    using namespace theme;
    const bool isUnderWay = share_ >= 0;
    const ButtonColors colors = [&]() -> ButtonColors {
        if (isUnderWay) return {control, theme::text};
        switch (kind_) {
        case ButtonKind::primary:
            if (!isEnabled()) return {control, text3};
            return {hover_.color(theme::text, QColor(0xFF, 0xFF, 0xFF), QColor(0xC6, 0xCB, 0xD3)), well};
        case ButtonKind::secondary:
            if (!isEnabled()) return {raised, text3};
            return {hover_.color(control, controlHi, raised), theme::text};
        case ButtonKind::quiet:
            break;
        }
        if (!isEnabled()) return {faded(control, 0), text3};
        return {hover_.color(faded(control, 0), control, raised), hover_.color(text2, theme::text, theme::text)};
    }();

    QPainter painter(this);
    drawBox(painter, rect(), controlRadius, colors.ground);
    if (isUnderWay) {
        painter.save();
        painter.setClipRect(onPixels(painter, QRectF(0, 0, width() * std::min(share_, 1.0), height())));
        drawBox(painter, rect(), controlRadius, controlHi);
        painter.restore();
    }
    const Type type = kind_ == ButtonKind::primary ? Type::labelBold : Type::label;
    const double textRoom = tabularWidth(type, text());
    const double iconRoom = icon_.isEmpty() ? 0 : buttonIcon + iconGap;
    double left = (width() - textRoom - iconRoom) / 2;
    if (!icon_.isEmpty()) {
        icons::draw(painter, icon_, QRectF(left, 0, buttonIcon, height()), buttonIcon, colors.text);
        left += iconRoom;
    }
    drawTabular(painter, QRectF(left, 0, textRoom, height()), Qt::AlignLeft, type, colors.text, text());
}

IconButton::IconButton(QString icon, const QString& name, const QString& tip, QWidget* parent, int size)
    : QToolButton(parent)
    , icon_(std::move(icon))
    , size_(size)
    , onColor_(theme::text) {
    setFixedSize(size, size);
    setFocusPolicy(Qt::TabFocus);
    setAccessibleName(name);
    setToolTip(tip);
    setFocusRing(*this, theme::controlRadius);
}

void IconButton::setIconName(const QString& icon) {
    if (icon_ == icon) return;
    icon_ = icon;
    update();
}

void IconButton::setRound(int diameter) {
    isRound_ = true;
    size_ = diameter;
    setFixedSize(diameter, diameter);
    setFocusRing(*this, diameter / 2.0);
}

void IconButton::paintEvent(QPaintEvent*) {
    using namespace theme;
    const bool hasGround = isChecked() || isRound_;
    const QColor rest = hasGround ? control : faded(control, 0);
    const QColor hovered = hasGround ? controlHi : control;
    const QColor ground = isEnabled() ? hover_.color(rest, hovered, raised) : rest;
    const QColor idle = isChecked() ? onColor_ : isRound_ ? theme::text : text2;
    const QColor ink =
        isEnabled() ? hover_.color(idle, isChecked() ? onColor_ : theme::text, isChecked() ? onColor_ : theme::text)
                    : iconDisabled;
    QPainter painter(this);
    drawBox(painter, rect(), isRound_ ? width() / 2.0 : controlRadius, ground);
    icons::draw(painter, icon_, rect(), size_ >= 32 ? 20 : 16, ink);
}

} // namespace flowtide
