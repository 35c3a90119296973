#include "ui/controls/hover.h"

#include "ui/theme.h"

namespace flowtide {

Hover::Hover(QWidget& widget)
    : widget_(widget)
    , hovered_(motion::hoverMilliseconds, [this] { widget_.update(); })
    , pressed_(motion::hoverMilliseconds, [this] { widget_.update(); }) {
    widget.installEventFilter(this);
}

QColor Hover::color(QColor rest, QColor hover, QColor press) const {
    return theme::mixed(theme::mixed(rest, hover, hovered()), press, pressed());
}

bool Hover::eventFilter(QObject*, QEvent* event) {
    switch (event->type()) {
    case QEvent::Enter:
        if (widget_.isEnabled()) hovered_.moveTo(1);
        break;
    case QEvent::Leave:
        hovered_.moveTo(0);
        break;
    case QEvent::EnabledChange:
        hovered_.moveTo(widget_.isEnabled() && widget_.underMouse() ? 1 : 0);
        pressed_.moveTo(0);
        break;
    case QEvent::Hide:
        hovered_.jumpTo(0);
        pressed_.jumpTo(0);
        break;
    case QEvent::MouseButtonPress:
        if (widget_.isEnabled()) pressed_.moveTo(1);
        break;
    case QEvent::MouseButtonRelease:
        pressed_.moveTo(0);
        break;
    default:
        break;
    }
    return false;
}

} // namespace flowtide
