#include "ui/graph/scrub_drag.h"

namespace flowtide {

void ScrubDrag::press(const QMouseEvent& event) {
    if (event.button() != Qt::LeftButton) return;
    isHeld_ = true;
    before_ = context_.model().timeline().scrubPosition();
    guard_.begin();
    context_.scrubTo(context_.timeInView(event.position().x()));
}

void ScrubDrag::move(const QMouseEvent& event) {
    if (isHeld_) context_.scrubTo(context_.timeInView(event.position().x()));
}

void ScrubDrag::release(const QMouseEvent& event) {
    if (event.button() != Qt::LeftButton) return;
    isHeld_ = false;
    guard_.end();
}

} // namespace flowtide
