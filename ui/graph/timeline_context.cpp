#include "ui/graph/timeline_context.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace flowtide {

namespace {
constexpr double zoomStep = 1.5;
} // namespace

TimelineContext::TimelineContext(TimelineServices services)
    : services_(std::move(services)) {
    changes_ = model().subscribe(properties({Property::clip, Property::timelineZoom, Property::timelineCenter}),
                                 [this](const PropertySet& changed) {
                                     if (changed.test(static_cast<std::size_t>(Property::clip))) animatesNext_ = false;
                                     if (isHeld_) return;
                                     from_ = axis_;
                                     const bool animates = std::exchange(animatesNext_, false);
                                     move_.jumpTo(animates ? 0 : 1);
                                     if (animates) move_.moveTo(1);
                                 });
}

TimeAxis TimelineContext::target() const {
    const TimelineView& view = model().timeline();
    return TimeAxis::of(duration(), TimeAxis::margin, width_ - 2 * TimeAxis::margin, view.timelineZoom(),
                        view.timelineCenter());
}

void TimelineContext::follow() {
    TimeAxis axis = target();
    const double share = move_.value();
    if (share < 1 && from_.duration == axis.duration) {
        axis.start = from_.start + (axis.start - from_.start) * share;
        axis.span = from_.span + (axis.span - from_.span) * share;
    }
    show(axis);
}

void TimelineContext::show(const TimeAxis& axis) {
    if (axis == axis_) return;
    axis_ = axis;
    emit axisChanged();
}

void TimelineContext::setWidth(int pixels) {
    width_ = pixels;
    if (!isHeld_) follow();
}

void TimelineContext::setView(const TimeAxis& axis, bool animated) {
    animatesNext_ = animated;
    model().setTimelineZoom(axis.zoom());
    model().setTimelineCenter(axis.center());
}

void TimelineContext::zoom(Step step) {
    if (duration() <= 0) return;
    const TimeAxis now = target();
    if (step == Step::fit) return setView(TimeAxis::of(duration(), now.left, now.width, 1, 0.5), true);
    const double playhead = model().playheadSeconds();
    const double x = now.shows(playhead) ? now.xOf(playhead) : now.left + now.width / 2;
    setView(now.zoomedAround(x, step == Step::in ? zoomStep : 1 / zoomStep, largestTimelineZoom), true);
}

void TimelineContext::zoomAround(double x, double factor) {
    if (duration() > 0) setView(target().zoomedAround(x, factor, largestTimelineZoom), false);
}

void TimelineContext::pan(double seconds, bool animated) {
    if (duration() > 0) setView(target().panned(seconds), animated);
}

void TimelineContext::reveal(double seconds) {
    const TimeAxis now = target();
    if (!now.shows(seconds)) pan(seconds - now.start - now.span / 2, true);
}

void TimelineContext::holdAxis(bool holds) {
    if (isHeld_ == holds) return;
    isHeld_ = holds;
    if (holds || axis_ == target()) return;
    from_ = axis_;
    move_.jumpTo(0);
    move_.moveTo(1);
}

double TimelineContext::timeAt(double x) const {
    return std::clamp(axis_.timeAt(x), 0.0, std::max(duration(), 0.0));
}

double TimelineContext::timeInView(double x) const {
    return timeAt(std::clamp(x, axis_.left, axis_.right()));
}

void TimelineContext::scrubTo(double seconds) {
    if (duration() > 0) model().scrub(seconds / duration());
}

void TimelineContext::beginLengthChange() {
    if (lengthBefore_ || !model().clip()) return;
    lengthBefore_ = model().curve().timeMap().outputDuration();
    emit lengthChangeChanged();
}

void TimelineContext::endLengthChange() {
    if (!lengthBefore_) return;
    lengthBefore_.reset();
    emit lengthChangeChanged();
}

void TimelineContext::setHint(const QString& hint) {
    if (hint_ == hint) return;
    hint_ = hint;
    emit hintChanged();
}

void TimelineContext::setDragLabel(std::optional<DragLabel> label) {
    if (dragLabel_ == label) return;
    dragLabel_ = std::move(label);
    emit labelsChanged();
}

void TimelineContext::setTrimLabel(std::optional<TrimLabel> label) {
    if (trimLabel_ == label) return;
    trimLabel_ = std::move(label);
    emit labelsChanged();
}

} // namespace flowtide
