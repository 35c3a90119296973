#include "ui/controls/labels.h"

#include "ui/accessible_role.h"
#include "ui/motion.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QTextLayout>
#include <QTimerEvent>
#include <algorithm>
#include <cmath>

namespace flowtide {

namespace {
constexpr double pieceShare = 0.28; ///< of a bar whose end is unknown
constexpr int travelMilliseconds = 1600;
constexpr int frameMilliseconds = 33;
} // namespace

Text::Text(theme::Type type, QColor color, const QString& text, QWidget* parent)
    : QWidget(parent)
    , type_(type)
    , color_(color)
    , text_(text) {
    setAccessibleRole(*this, QAccessible::StaticText);
    setAccessibleName(text);
}

void Text::setText(const QString& text) {
    if (text_ == text) return;
    text_ = text;
    setAccessibleName(text);
    textChanged();
    updateGeometry();
    update();
}

void Text::setColor(QColor color) {
    if (color_ == color) return;
    color_ = color;
    update();
}

void Text::setAlignment(Qt::Alignment alignment) {
    alignment_ = alignment;
    update();
}

QSize LineLabel::sizeHint() const {
    const double width = isTabular_ ? theme::tabularWidth(type(), text()) : theme::textWidth(type(), text());
    return {static_cast<int>(std::ceil(width)),
            static_cast<int>(std::ceil(QFontMetricsF(theme::font(type())).height()))};
}

QSize LineLabel::minimumSizeHint() const {
    return {0, sizeHint().height()};
}

void LineLabel::resizeEvent(QResizeEvent*) {
    updateTip();
}

void LineLabel::updateTip() {
    setToolTip(width() < sizeHint().width() ? text() : QString());
}

void LineLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    if (isTabular_) return theme::drawTabular(painter, rect(), alignment(), type(), ink(), text());
    const QString shown = QFontMetricsF(theme::font(type())).elidedText(text(), elide_, width() + 0.5);
    theme::drawLine(painter, rect(), alignment(), type(), ink(), shown);
}

Paragraph::Paragraph(theme::Type type, QColor color, const QString& text, QWidget* parent)
    : Text(type, color, text, parent) {
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

int Paragraph::lay(double width, const std::function<void(const QString&, int)>& line) const {
    QTextLayout layout(text(), theme::font(type()));
    layout.beginLayout();
    int count = 0;
    for (QTextLine next = layout.createLine(); next.isValid(); next = layout.createLine()) {
        next.setLineWidth(std::max(width, 1.0));
        line(text().mid(next.textStart(), next.textLength()).trimmed(), count++);
    }
    layout.endLayout();
    return count;
}

int Paragraph::heightForWidth(int width) const {
    const QMargins margins = contentsMargins();
    return lay(width - margins.left() - margins.right(), [](const QString&, int) {}) * theme::lineHeight(type()) +
           margins.top() + margins.bottom();
}

QSize Paragraph::sizeHint() const {
    return {static_cast<int>(std::ceil(theme::textWidth(type(), text()))), theme::lineHeight(type())};
}

QSize Paragraph::minimumSizeHint() const {
    return {0, theme::lineHeight(type())};
}

void Paragraph::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const int height = theme::lineHeight(type());
    const QRectF room = contentsRect();
    lay(room.width(), [&](const QString& words, int index) {
        const QRectF line(room.left(), room.top() + index * height, room.width(), height);
        theme::drawLine(painter, line, alignment(), type(), ink(), words);
    });
}

ProgressBar::ProgressBar(const QString& name, QColor color, QWidget* parent)
    : QWidget(parent)
    , name_(name)
    , color_(color) {
    setAccessibleRole(*this, QAccessible::ProgressBar);
    setAccessibleName(name);
    setFixedHeight(4);
}

void ProgressBar::setShare(double share) {
    if (share_ == share) return;
    share_ = share;
    setAccessibleDescription(share < 0 ? QString() : QStringLiteral("%1%").arg(std::lround(share * 100)));
    travel();
    update();
}

void ProgressBar::travel() {
    const bool travels = share_ < 0 && isVisible() && !motion::isReduced();
    if (travels && !timer_) timer_ = startTimer(frameMilliseconds);
    if (!travels && timer_) {
        killTimer(timer_);
        timer_ = 0;
    }
}

void ProgressBar::timerEvent(QTimerEvent*) {
    place_ = std::fmod(place_ + double(frameMilliseconds) / travelMilliseconds, 1);
    update();
}

void ProgressBar::showEvent(QShowEvent*) {
    travel();
}

void ProgressBar::hideEvent(QHideEvent*) {
    travel();
}

void ProgressBar::paintEvent(QPaintEvent*) {
    using namespace theme;
    QPainter painter(this);
    const double radius = height() / 2.0;
    drawBox(painter, rect(), radius, border);
    if (share_ >= 0) {
        drawBox(painter, QRectF(0, 0, width() * std::min(share_, 1.0), height()), radius, color_);
        return;
    }
    // Still and half-filled for who asked for less motion.
    const double left = motion::isReduced() ? 0 : (1 + pieceShare) * place_ - pieceShare;
    const double length = motion::isReduced() ? 0.5 : pieceShare;
    painter.setClipRect(rect());
    drawBox(painter, QRectF(width() * left, 0, width() * length, height()), radius, color_);
}

} // namespace flowtide
