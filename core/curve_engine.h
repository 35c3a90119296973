// The speed curve: a piecewise cubic Hermite interpolant through the keyframes, blended with straight lines by the
// smoothing.
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

/// Tangent at keyframe `i`, in speed per source second: the harmonic mean of the secants on its two sides, each
/// weighted with its interval's length; 0 at a peak or valley, so that the curve turns there. 0 when there are fewer
/// than two keyframes. Where the intervals are alike these are the tangents of Fritsch and Butland ("A method for
/// constructing local monotone piecewise cubic interpolants", SIAM J. Sci. Stat. Comput. 5, 1984), and the curve is
/// monotone between keyframes. Theirs weigh the shorter interval more, which keeps it so for any spacing; with these it
/// may overshoot where a short interval meets a long one, and the limits of speed hold it.
double pointSlope(std::size_t i, std::span<const SpeedKeyframe> keyframes);
/// Tangent at the first keyframe (`i` 0) or the last one (any other `i`): the secant there, at most three times its
/// neighbour, which is the bound for monotone cubics of Fritsch and Carlson ("Monotone piecewise cubic interpolation",
/// SIAM J. Numer. Anal. 17, 1980); 0 where the two differ in sign.
double endpointSlope(std::size_t i, std::span<const SpeedKeyframe> keyframes);

/// Source seconds between two neighbours; a microsecond when they are nearer, so that slopes stay finite.
double intervalLength(const SpeedKeyframe& from, const SpeedKeyframe& to);

/// Integrates 1/speed, the speed within `speedLimits`, over the range (the whole clip when absent) into the table
/// between source and output time, by the composite midpoint rule (error of second order in the interval). `steps` is
/// the least number of intervals, from 1 up; the table never holds more than 400,001 entries. Linear in keyframes plus
/// entries when the keyframes are sorted.
TimeMap buildTimeMap(const SpeedKeyframes& keyframes, double sourceDuration, std::optional<SourceRange> sourceRange,
                     int steps, double smoothing);

/// The least sample count that exports and previews of whole clips ask for.
constexpr int exportTimeMapSteps = 20000;

} // namespace flowtide::CurveEngine
