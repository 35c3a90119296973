#include "ui/controls/slider.h"

#include "ui/controls/focus_ring.h"
#include "ui/theme.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QSignalBlocker>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

namespace flowtide {

namespace {
constexpr double trackHeight = 4;
constexpr double thumbSize = 14;
constexpr double haloSize = 22;
constexpr int largeStep = 10;

void call(const std::function<void()>& callback) {
    if (callback) callback();
}
} // namespace

ValueSlider::ValueSlider(const QString& name, QColor color, int minimum, int maximum, int defaultValue, QWidget* parent)
    : QSlider(Qt::Horizontal, parent)
    , color_(color)
    , defaultValue_(defaultValue) {
    setAccessibleName(name);
    setRange(minimum, maximum);
    setValue(defaultValue);
    setFixedHeight(20);
    setFocusPolicy(Qt::TabFocus);
    // The accessibility tree changes values too.
    connect(this, &QSlider::valueChanged, this, [this](int value) {
        if (isDragged_) return;
        call(onGestureBegin);
        if (onValue) onValue(value);
        call(onGestureEnd);
    });
}

void ValueSlider::showValue(int value) {
    const QSignalBlocker quiet(*this);
    setValue(value);
    update();
}

void ValueSlider::change(int value) {
    if (value == this->value()) return;
    showValue(value);
    if (onValue) onValue(value);
}

void ValueSlider::changeAtOnce(int value) {
    value = std::clamp(value, minimum(), maximum());
    if (value == this->value()) return;
    call(onGestureBegin);
    change(value);
    call(onGestureEnd);
}

int ValueSlider::valueAt(double x) const {
    const double share = (x - thumbSize / 2) / (width() - thumbSize);
    return static_cast<int>(std::lround(minimum() + std::clamp(share, 0.0, 1.0) * (maximum() - minimum())));
}

void ValueSlider::endGesture() {
    if (!isDragged_) return;
    isDragged_ = false;
    guard_.end();
    call(onGestureEnd);
}

void ValueSlider::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    isDragged_ = true;
    valueBefore_ = value();
    guard_.begin();
    call(onGestureBegin);
    const double x = event->position().x();
    // Where the thumb is grabbed it stays.
    grip_ = thumb().contains(event->position()) ? x - thumb().center().x() : 0;
    if (grip_ == 0) change(valueAt(x));
}

void ValueSlider::mouseMoveEvent(QMouseEvent* event) {
    if (isDragged_) change(valueAt(event->position().x() - grip_));
}

void ValueSlider::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) endGesture();
}

void ValueSlider::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) changeAtOnce(defaultValue_);
}

void ValueSlider::keyPressEvent(QKeyEvent* event) {
    const int step = event->modifiers() & Qt::ShiftModifier ? largeStep : 1;
    switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_Down:
        return changeAtOnce(value() - step);
    case Qt::Key_Right:
    case Qt::Key_Up:
        return changeAtOnce(value() + step);
    case Qt::Key_Home:
        return changeAtOnce(minimum());
    case Qt::Key_End:
        return changeAtOnce(maximum());
    default:
        event->ignore();
    }
}

void ValueSlider::wheelEvent(QWheelEvent* event) {
    // Scrolling the inspector must not change what lies under the pointer.
    event->ignore();
}

QRectF ValueSlider::thumb() const {
    const double share = maximum() > minimum() ? double(value() - minimum()) / (maximum() - minimum()) : 0;
    return {share * (width() - thumbSize), (height() - thumbSize) / 2, thumbSize, thumbSize};
}

void ValueSlider::resizeEvent(QResizeEvent* event) {
    QSlider::resizeEvent(event);
    setFocusRing(*this, thumbSize / 2, thumb());
}

void ValueSlider::sliderChange(SliderChange change) {
    QSlider::sliderChange(change);
    setFocusRing(*this, thumbSize / 2, thumb());
}

void ValueSlider::paintEvent(QPaintEvent*) {
    using namespace theme;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (!isEnabled()) painter.setOpacity(0.45);
    const double middle = height() / 2.0;
    const double x = thumb().center().x();
    drawBox(painter, QRectF(0, middle - trackHeight / 2, width(), trackHeight), trackHeight / 2, border);
    drawBox(painter, QRectF(0, middle - trackHeight / 2, x, trackHeight), trackHeight / 2, color_);
    painter.setPen(Qt::NoPen);
    painter.setBrush(faded(text, 0.14 * hover_.hovered() + 0.10 * hover_.pressed()));
    painter.drawEllipse(QPointF(x, middle), haloSize / 2, haloSize / 2);
    painter.setBrush(text);
    painter.drawEllipse(QPointF(x, middle), thumbSize / 2, thumbSize / 2);
}

} // namespace flowtide
