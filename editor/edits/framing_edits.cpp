// Installs framing.
#include "editor/edits/framing_edits.h"

#include "core/clamp.h"
#include "core/crop_plan.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace flowtide {

namespace {

constexpr double spanTolerance = 0.001; ///< source seconds; keyframes this near to a tracked span count as inside

/// The width of the crop that an export makes as a share of the frame's; 1 where it makes none.
double cropFraction(const ImportedClip& clip, CropAspectRatio ratio) {
    const auto plan = exportedCrop(clip, ratio);
    return plan ? static_cast<double>(plan->width) / static_cast<double>(clip.width) : 1;
}

} // namespace

void FramingEdits::install(SpeedKeyframes keyframes) {
    auto bounded = session_.framing.bounded(std::move(keyframes));
    if (!bounded || *bounded == session_.framing.centerKeyframes()) return;
    session_.recordStep();
    session_.framing.setCenterKeyframes(std::move(*bounded));
    session_.scheduleProjectSave();
}

void FramingEdits::replaceCenterKeyframes(SpeedKeyframes keyframes) {
    if (session_.clip()) install(std::move(keyframes));
}

void FramingEdits::resetCenterCurve() {
    if (!session_.clip()) return;
    install(
        KeyframeRules::curveForSourceRange({}, session_.curve.duration(), session_.curve.trimRange(), centeredCrop));
}

void FramingEdits::beginCropDrag() {
    if (!session_.clip() || session_.framing.lockCropCenter()) return;
    session_.beginCurveEdit();
    session_.framing.setCropDragActive(true);
}

void FramingEdits::updateCropDrag(double travel) {
    if (!session_.framing.isCropDragActive() || !std::isfinite(travel)) return;
    const SourceRange trim = session_.curve.trimRange();
    const double time = clamped(session_.playheadSeconds(), trim.lower, trim.upper);
    const double position = clamped(travel, leftmostCrop, rightmostCrop);
    SpeedKeyframes keyframes = session_.framing.centerKeyframes();
    // A point under a trim's end has no part in the curve, and moving it would show nothing.
    const SpeedKeyframes played = playedCurve(keyframes, trim, session_.framing.domain());
    const auto nearest = std::min_element(played.begin(), played.end(), [&](const auto& a, const auto& b) {
        return std::abs(a.time - time) < std::abs(b.time - time);
    });
    if (nearest != played.end() && std::abs(nearest->time - time) <= dragMatchTolerance)
        std::find_if(keyframes.begin(), keyframes.end(), [&](const auto& each) {
            return each.id == nearest->id;
        })->speed = position;
    else
        keyframes.push_back({Uuid::random(), time, position, SpeedKeyframeRole::curve});
    install(std::move(keyframes));
}

void FramingEdits::endCropDrag() {
    if (!session_.framing.isCropDragActive()) return;
    session_.framing.setCropDragActive(false);
    session_.endCurveEdit();
}

void FramingEdits::cancelCropDrag() {
    if (!session_.framing.isCropDragActive()) return;
    session_.framing.setCropDragActive(false);
    session_.cancelCurveEdit();
}

std::optional<std::size_t> FramingEdits::applySubjectTrackingResult(const SubjectTrackResult& result) {
    if (!session_.clip() || result.samples.empty()) return 0;
    const ImportedClip& clip = *session_.clip();
    SpeedKeyframes keyframes = session_.framing.centerKeyframes();
    const double first = result.samples.front().time - spanTolerance;
    // The last frame is shown to its end: a point left there would draw the crop away from the subject.
    const double last = result.samples.back().time + clip.frameDuration.seconds() + spanTolerance;
    std::erase_if(keyframes, [&](const SpeedKeyframe& each) { return each.time >= first && each.time <= last; });
    const SpeedKeyframes tracked = result.keyframes(cropFraction(clip, session_.framing.cropAspectRatio()));
    keyframes.insert(keyframes.end(), tracked.begin(), tracked.end());
    std::vector<SubjectTrackingRange> ranges = session_.trackedRanges();
    const auto found = result.trackedRanges(clip.frameDuration.seconds(), session_.curve.trimRange());
    ranges.insert(ranges.end(), found.begin(), found.end());
    ranges = SubjectTrackingRange::merged(std::move(ranges));
    if (ranges.size() > mostTrackingRanges || !session_.framing.bounded(keyframes)) return {};

    session_.beginCurveEdit();
    install(std::move(keyframes));
    session_.setTrackedRanges(std::move(ranges));
    session_.endCurveEdit();
    session_.scheduleProjectSave();
    return tracked.size();
}

void FramingEdits::setCenterSmoothing(double glide) {
    if (!session_.clip()) return;
    session_.framing.setCenterSmoothing(clamped(glide, 0, 1));
    session_.scheduleProjectSave();
}

void FramingEdits::setVerticalCropEnabled(bool enabled) {
    if (!session_.clip()) return;
    session_.framing.setVerticalCropEnabled(enabled);
    session_.scheduleProjectSave();
}

void FramingEdits::setCropAspectRatio(CropAspectRatio ratio) {
    if (!session_.clip()) return;
    session_.framing.setCropAspectRatio(ratio);
    session_.scheduleProjectSave();
}

void FramingEdits::setLockCropCenter(bool locked) {
    if (!session_.clip()) return;
    session_.framing.setLockCropCenter(locked);
    session_.scheduleProjectSave();
}

} // namespace flowtide
