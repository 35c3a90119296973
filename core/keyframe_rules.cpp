// Picks the keyframes that survive a trim, and finds or makes the boundary points at its ends.
#include "core/keyframe_rules.h"

#include "core/clamp.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace flowtide {

void sortByTime(SpeedKeyframes& keyframes) {
    // NaN sorts after every number; without that the order would not be an order.
    const auto earlier = [](const SpeedKeyframe& a, const SpeedKeyframe& b) {
        return a.time < b.time || (std::isnan(b.time) && !std::isnan(a.time));
    };
    if (std::is_sorted(keyframes.begin(), keyframes.end(), earlier)) return;
    std::stable_sort(keyframes.begin(), keyframes.end(), earlier);
}

namespace KeyframeRules {
namespace {

/// The first keyframe with this role that may serve as the boundary at `time`, moved there exactly.
std::optional<SpeedKeyframe> existingBoundary(const SpeedKeyframes& keyframes, double time, SpeedKeyframeRole role) {
    const auto found = std::find_if(keyframes.begin(), keyframes.end(), [&](const SpeedKeyframe& keyframe) {
        return keyframe.role == role && std::abs(keyframe.time - time) <= boundaryMatchTolerance;
    });
    if (found == keyframes.end()) return std::nullopt;
    SpeedKeyframe boundary = *found;
    boundary.time = time;
    return boundary;
}

SpeedKeyframe newBoundary(double time, double speed, SpeedKeyframeRole role) {
    return {.id = Uuid::random(), .time = time, .speed = speed, .role = role};
}

/// `wanted` is `curve` at the clip's own ends, where no trim point is wanted.
SpeedKeyframe boundaryPoint(const SpeedKeyframes& keyframes, double time, SpeedKeyframeRole wanted, double speed) {
    if (const auto trimPoint = existingBoundary(keyframes, time, wanted)) return *trimPoint;
    if (const auto userPoint = existingBoundary(keyframes, time, SpeedKeyframeRole::curve)) return *userPoint;
    return newBoundary(time, speed, wanted);
}

} // namespace

double usableDuration(double sourceDuration) {
    return std::isfinite(sourceDuration) ? std::max(sourceDuration, 0.0) : 0.0;
}

SourceRange clippedToSource(SourceRange range, double sourceDuration) {
    const double duration = usableDuration(sourceDuration);
    const double lower = clamped(range.lower, 0, duration);
    return {lower, clamped(range.upper, lower, duration)};
}

SpeedKeyframes curveForSourceRange(SpeedKeyframes keyframes, double sourceDuration, SourceRange sourceRange,
                                   double boundaryValue) {
    const double duration = usableDuration(sourceDuration);
    const auto [lower, upper] = clippedToSource(sourceRange, sourceDuration);
    sortByTime(keyframes);

    SpeedKeyframes curve;
    curve.reserve(keyframes.size() + 2);
    const bool trimmedAtStart = lower > boundaryMatchTolerance;
    curve.push_back(boundaryPoint(
        keyframes, lower, trimmedAtStart ? SpeedKeyframeRole::trimStart : SpeedKeyframeRole::curve, boundaryValue));
    for (const SpeedKeyframe& keyframe : keyframes) {
        if (keyframe.role == SpeedKeyframeRole::curve && lower + interiorMargin < keyframe.time &&
            keyframe.time < upper - interiorMargin) {
            curve.push_back(keyframe);
        }
    }
    if (upper - lower > minimumRange) {
        const bool trimmedAtEnd = std::abs(upper - duration) > boundaryMatchTolerance;
        curve.push_back(boundaryPoint(
            keyframes, upper, trimmedAtEnd ? SpeedKeyframeRole::trimEnd : SpeedKeyframeRole::curve, boundaryValue));
    }
    return curve;
}

SpeedKeyframes applyingTrimBoundaries(const SpeedKeyframes& keyframes, double sourceDuration, SourceRange sourceRange,
                                      double boundaryValue, std::optional<BoundaryValues> boundaryValues) {
    const double duration = usableDuration(sourceDuration);
    const auto [lower, upper] = clippedToSource(sourceRange, sourceDuration);
    const BoundaryValues speeds = boundaryValues.value_or(BoundaryValues{boundaryValue, boundaryValue});

    SpeedKeyframes result;
    result.reserve(keyframes.size() + 2);
    std::copy_if(keyframes.begin(), keyframes.end(), std::back_inserter(result),
                 [](const SpeedKeyframe& keyframe) { return keyframe.role == SpeedKeyframeRole::curve; });

    const auto append = [&](double time, SpeedKeyframeRole role, double speed) {
        const auto existing = existingBoundary(keyframes, time, role);
        result.push_back(existing ? *existing : newBoundary(time, speed, role));
    };
    if (lower > boundaryMatchTolerance) append(lower, SpeedKeyframeRole::trimStart, speeds.start);
    if (upper < duration - boundaryMatchTolerance) append(upper, SpeedKeyframeRole::trimEnd, speeds.end);
    return result;
}

} // namespace KeyframeRules
} // namespace flowtide
