#include "ui/graph/scrub_drag.h"

#include <algorithm>

namespace flowtide {

namespace {

/// Never beyond what is in view: a playhead out of sight is lost.
void scrubTo(TimelineContext& context, double x) {
    const TimeAxis& axis = context.axis();
    context.scrubTo(context.timeAt(std::clamp(x, axis.left, axis.right())));
}

} // namespace

void ScrubDrag::press(const QMouseEvent& event) {
    if (event.button() != Qt::LeftButton) return;
    isHeld_ = true;
    before_ = context_.model().timeline().scrubPosition();
    guard_.begin();
    scrubTo(context_, event.position().x());
}

void ScrubDrag::move(const QMouseEvent& event) {
    if (isHeld_) scrubTo(context_, event.position().x());
}

void ScrubDrag::release(const QMouseEvent& event) {
    if (event.button() != Qt::LeftButton) return;
    isHeld_ = false;
    guard_.end();
}

} // namespace flowtide
