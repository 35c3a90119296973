#include "ui/controls/focus_ring.h"

#include "ui/theme.h"

#include <QApplication>
#include <QEvent>
#include <QPaintEvent>
#include <QPainter>
#include <cmath>

namespace flowtide {

namespace {
constexpr const char* radiusProperty = "flowtide.focusRing";
constexpr const char* partProperty = "flowtide.focusRingPart";
} // namespace

void setFocusRing(QWidget& control, double radius, const QRectF& part) {
    control.setProperty(radiusProperty, radius);
    control.setProperty(partProperty, part);
}

FocusRing::FocusRing(QWidget& window)
    : QWidget(&window)
    , window_(window) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
    hide();
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* focused) { follow(focused); });
    qApp->installEventFilter(this);
}

bool FocusRing::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
    case QEvent::KeyPress:
        if (!movesByKeyboard_) {
            movesByKeyboard_ = true;
            place();
        }
        break;
    case QEvent::MouseButtonPress:
        movesByKeyboard_ = false;
        hide();
        break;
    case QEvent::DynamicPropertyChange:
        if (target_ && watched == target_) place();
        break;
    case QEvent::Move:
    case QEvent::Resize:
    case QEvent::Show:
    case QEvent::Hide:
        // Whatever has moved may have moved the control along.
        if (target_ && watched != this) place();
        break;
    default:
        break;
    }
    return false;
}

void FocusRing::follow(QWidget* focused) {
    const bool isOurs = focused && focused->window() == &window_ && focused->property(radiusProperty).isValid();
    target_ = isOurs ? focused : nullptr;
    place();
}

void FocusRing::place() {
    if (!target_ || !movesByKeyboard_ || !target_->isVisibleTo(&window_)) {
        hide();
        return;
    }
    setGeometry(around().toAlignedRect());
    update();
    raise();
    show();
}

QRectF FocusRing::around() const {
    constexpr double room = distance + lineWidth;
    const QRectF part = target_->property(partProperty).toRectF();
    const QRectF framed = part.isEmpty() ? QRectF(target_->rect()) : part;
    return framed.translated(target_->mapTo(&window_, QPoint(0, 0))).adjusted(-room, -room, room, room);
}

void FocusRing::paintEvent(QPaintEvent*) {
    if (!target_) return;
    QPainter painter(this);
    const double radius = target_->property(radiusProperty).toDouble();
    theme::drawBox(painter, around().translated(-pos()), radius + distance + lineWidth, {}, theme::text, lineWidth);
}

} // namespace flowtide
