// Installs trims.
#include "editor/edits/trim_edits.h"

#include "core/clamp.h"

#include <cmath>
#include <utility>

namespace flowtide {

void TrimEdits::applyTrimRange(double start, double end) {
    apply(start, end, nullptr);
}

void TrimEdits::dragTrim(const TrimState& before, double start, double end) {
    if (session_.clip() == before.clip) apply(start, end, &before);
}

void TrimEdits::apply(double start, double end, const TrimState* before) {
    const double duration = session_.curve.duration();
    const bool isInside = start >= -boundsTolerance && end <= duration + boundsTolerance; // NaN is not
    const SourceRange trim{clamped(start, 0, duration), clamped(end, 0, duration)};
    if (!session_.clip() || !isInside || !(trim.upper - trim.lower >= shortestTrim)) return;
    const SourceRange current = session_.curve.trimRange();
    if (std::abs(trim.lower - current.lower) <= unchangedTolerance &&
        std::abs(trim.upper - current.upper) <= unchangedTolerance)
        return;
    if (before) putBack(*before);
    const bool isInstalled = install(trim);
    if (!isInstalled && !before) return;
    session_.preview().pausePlayback();
    if (isInstalled) {
        session_.timeline.setTimelineZoom(1);
        session_.timeline.setTimelineCenter(0.5);
    }
    session_.refreshPreview();
    keepPlayheadInside(session_.curve.trimRange());
    session_.scheduleProjectSave();
}

void TrimEdits::resetTrimRange() {
    applyTrimRange(0, session_.curve.duration());
}

TrimState TrimEdits::state() const {
    const TimelineView& view = session_.timeline;
    return {session_.clip(),       session_.curve.trimRange(), session_.currentSnapshot(), view.timelineZoom(),
            view.timelineCenter(), view.scrubPosition(),       view.loopPreview()};
}

void TrimEdits::restore(const TrimState& before) {
    // A trim that is back where it began may have cost the selected range on the way: all is compared.
    if (!session_.clip() || session_.clip() != before.clip || state() == before) return;
    putBack(before);
    session_.timeline.setTimelineZoom(before.timelineZoom);
    session_.timeline.setTimelineCenter(before.timelineCenter);
    session_.refreshPreview();
    session_.scheduleProjectSave();
    session_.preview().scrub(before.scrubPosition);
}

void TrimEdits::putBack(const TrimState& before) {
    session_.curve.setTrim(before.trim, before.edits.speed);
    // What a track has brought since belongs to no drag.
    const bool isTracked = session_.trackedRanges() != before.edits.trackedRanges;
    auto centers = isTracked ? session_.framing.bounded(session_.framing.centerKeyframes()) : before.edits.center;
    if (centers) session_.framing.setCenterKeyframes(std::move(*centers));
    session_.flow.setMarks({before.edits.flowRanges, before.edits.originalFrames});
    session_.flow.select(before.edits.selectedFlowID);
    session_.timeline.setLoopPreview(before.loopPreview);
}

bool TrimEdits::install(SourceRange trim) {
    const SpeedCurve& curve = session_.curve;
    const KeyframeRules::BoundaryValues speeds{curve.speedAt(trim.lower), curve.speedAt(trim.upper)};
    const auto travel = [&](double time) {
        const SourceRange kept = curve.trimRange();
        return time >= kept.lower && time <= kept.upper ? session_.framing.glidedCropTravel(time)
                                                        : session_.framing.liveCropTravel(time);
    };
    const KeyframeRules::BoundaryValues positions{travel(trim.lower), travel(trim.upper)};
    auto keyframes = boundedPoints(curve.keyframes(), trim, curve.domain(), speeds);
    auto centers = boundedPoints(session_.framing.centerKeyframes(), trim, session_.framing.domain(), positions);
    if (!keyframes || !centers) return false; // as many points as a project holds, and the boundaries on top
    session_.curve.setTrim(trim, std::move(*keyframes));
    session_.framing.setCenterKeyframes(std::move(*centers));
    return true;
}

void TrimEdits::keepPlayheadInside(SourceRange trim) {
    const double playhead = session_.playheadSeconds();
    const double inside = clamped(playhead, trim.lower, trim.upper);
    if (inside == playhead) return;
    session_.preview().scrub(inside / session_.curve.duration());
}

} // namespace flowtide
