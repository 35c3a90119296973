// The speed curve: a shape-preserving cubic through the keyframes, blended with straight lines by the smoothing.
#pragma once

#include "core/speed_keyframe.h"
#include "core/time.h"
#include "core/time_map.h"

#include <cstddef>
#include <optional>
#include <span>

namespace flowtide::CurveEngine {

/// The range that a curve's values are clamped into.
struct Limits {
    double lower;
    double upper;
};

/// The limits of a playback speed, wherever it is integrated.
constexpr Limits speedLimits{lowestSpeed, highestSpeed};

/// The speed at source time `t` (seconds). `keyframes` sorted by time; `smoothing` 0 (straight) to 1 (full curve).
/// Without keyframes the speed is 1; outside them it is the nearest keyframe's.
/// O(log n); loops that walk through time use a CurveEvaluator.
double value(double t, const SpeedKeyframes& keyframes, double smoothing, Limits limits);

/// Tangent at keyframe `i`, in speed per source second: 0 at a peak or valley, so that the curve turns there. 0 when
/// there are fewer than two keyframes.
double pointSlope(std::size_t i, std::span<const SpeedKeyframe> keyframes);
/// Tangent at the first keyframe (`i` 0) or the last one (any other `i`).
double endpointSlope(std::size_t i, std::span<const SpeedKeyframe> keyframes);

/// Source seconds between two neighbours; a microsecond when they are nearer, so that slopes stay finite.
double intervalLength(const SpeedKeyframe& from, const SpeedKeyframe& to);

/// Integrates 1/speed, the speed within `speedLimits`, over the range (the whole clip when absent) into the table
/// between source and output time. `steps` is the least number of intervals, from 1 up; the table never holds more than
/// 400,001 entries. Linear in keyframes plus entries when the keyframes are sorted.
TimeMap buildTimeMap(const SpeedKeyframes& keyframes, double sourceDuration, std::optional<SourceRange> sourceRange,
                     int steps, double smoothing);

/// The least sample count that exports and previews of whole clips ask for.
constexpr int exportTimeMapSteps = 20000;

} // namespace flowtide::CurveEngine
