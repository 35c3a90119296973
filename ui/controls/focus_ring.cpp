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
}

void setFocusRing(QWidget& control, double radius) {
    control.setProperty(radiusProperty, radius);
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
    const int room = static_cast<int>(std::ceil(distance + lineWidth));
    const QRect place = QRect(target_->mapTo(&window_, QPoint(0, 0)), target_->size());
    setGeometry(place.adjusted(-room, -room, room, room));
    raise();
    show();
}

void FocusRing::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const double radius = target_ ? target_->property(radiusProperty).toDouble() : 0;
    theme::drawBox(painter, rect(), radius + distance + lineWidth, {}, theme::text, lineWidth);
}

} // namespace flowtide
