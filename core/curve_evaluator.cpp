// Finds the curve's segment at a time, and computes what stays constant along it.
#include "core/curve_evaluator.h"

#include <algorithm>

namespace flowtide {

CurveEvaluator::CurveEvaluator(const SpeedKeyframes& keyframes, double smoothing, CurveEngine::Limits limits)
    : keyframes_(keyframes)
    , smoothing_(clamped(smoothing, 0, 1))
    , limits_(limits)
    , firstValue_(clampedToLimits(keyframes.empty() ? 1.0 : keyframes.front().speed))
    , lastValue_(clampedToLimits(keyframes.empty() ? 1.0 : keyframes.back().speed)) {
    if (!keyframes.empty()) {
        firstTime_ = keyframes.front().time;
        lastTime_ = keyframes.back().time;
    }
}

/// Called only for times strictly between the first and the last keyframe's.
void CurveEvaluator::enterSegment(double t) {
    const std::size_t last = keyframes_.size() - 1;
    const std::size_t previousEnd = segment_.end;
    std::size_t end = previousEnd;
    if (previousEnd > 0 && t > segment_.endTime) {
        while (end < last && keyframes_[end].time < t)
            ++end;
    } else {
        const auto inner = keyframes_.subspan(1, last - 1);
        const auto found = std::partition_point(inner.begin(), inner.end(),
                                                [t](const SpeedKeyframe& keyframe) { return keyframe.time < t; });
        end = 1 + static_cast<std::size_t>(found - inner.begin());
    }

    const SpeedKeyframe& from = keyframes_[end - 1];
    const SpeedKeyframe& to = keyframes_[end];
    const bool nextDoor = previousEnd > 0 && end == previousEnd + 1;
    const double startSlope = nextDoor ? segment_.endSlope : CurveEngine::pointSlope(end - 1, keyframes_);
    segment_ = {.end = end,
                .startTime = from.time,
                .endTime = to.time,
                .length = CurveEngine::intervalLength(from, to),
                .startValue = from.speed,
                .endValue = to.speed,
                .startSlope = startSlope,
                .endSlope = CurveEngine::pointSlope(end, keyframes_)};
}

} // namespace flowtide
