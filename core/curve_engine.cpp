// Computes the curve's tangents, and integrates 1/speed into a time map.
#include "core/curve_engine.h"

#include "core/clamp.h"
#include "core/curve_evaluator.h"
#include "core/keyframe_rules.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>
#include <vector>

namespace flowtide::CurveEngine {
namespace {

constexpr double shortestLength = 0.000001; ///< s; intervals and ranges count as at least this long
constexpr double finestStep = 0.0005;       ///< s; keeps long clips with close keyframes off the cap below
constexpr int maximumIntervals = 400000;    ///< bounds the memory and the time of a map

double secant(const SpeedKeyframe& from, const SpeedKeyframe& to) {
    return (to.speed - from.speed) / intervalLength(from, to);
}

/// The clip's part of `requested`, widened where it would collapse to nothing.
SourceRange mapRange(std::optional<SourceRange> requested, double duration) {
    SourceRange range = KeyframeRules::clippedToSource(requested.value_or(SourceRange{0, duration}), duration);
    if (duration > 0 && range.upper - range.lower < shortestLength) {
        range.upper = std::min(range.lower + shortestLength, duration);
        range.lower = std::max(range.upper - shortestLength, 0.0);
    }
    return range;
}

/// How many equal intervals of `span` seconds put at least four samples between the two closest keyframes.
int intervalCount(const SpeedKeyframes& curve, double span, int leastCount) {
    double smallestGap = std::numeric_limits<double>::infinity();
    for (std::size_t i = 1; i < curve.size(); ++i) {
        const double gap = curve[i].time - curve[i - 1].time;
        if (gap > 0) smallestGap = std::min(smallestGap, gap);
    }
    if (std::isinf(smallestGap)) smallestGap = span;
    const double step = std::max(finestStep, smallestGap * 0.25);
    const int sampled = static_cast<int>(std::min(span / step, double{maximumIntervals}));
    return std::min(std::max({sampled, leastCount, 1}), maximumIntervals);
}

} // namespace

double intervalLength(const SpeedKeyframe& from, const SpeedKeyframe& to) {
    return std::max(to.time - from.time, shortestLength);
}

double value(double t, const SpeedKeyframes& keyframes, double smoothing, Limits limits) {
    return CurveEvaluator(keyframes, smoothing, limits)(t);
}

double pointSlope(std::size_t i, std::span<const SpeedKeyframe> keyframes) {
    if (i == 0 || i + 1 >= keyframes.size()) return endpointSlope(i, keyframes);
    const double h0 = intervalLength(keyframes[i - 1], keyframes[i]);
    const double h1 = intervalLength(keyframes[i], keyframes[i + 1]);
    const double d0 = secant(keyframes[i - 1], keyframes[i]);
    const double d1 = secant(keyframes[i], keyframes[i + 1]);
    if (d0 * d1 <= 0) return 0;
    const double slope = (h0 + h1) / (h0 / d0 + h1 / d1);
    return std::isfinite(slope) ? slope : 0;
}

double endpointSlope(std::size_t i, std::span<const SpeedKeyframe> keyframes) {
    const std::size_t n = keyframes.size();
    if (n < 2) return 0;
    if (n == 2) return secant(keyframes[0], keyframes[1]);
    const double d = i == 0 ? secant(keyframes[0], keyframes[1]) : secant(keyframes[n - 2], keyframes[n - 1]);
    const double e = i == 0 ? secant(keyframes[1], keyframes[2]) : secant(keyframes[n - 3], keyframes[n - 2]);
    if (d * e <= 0) return 0;
    return std::copysign(std::min(std::abs(d), 3 * std::abs(e)), d);
}

TimeMap buildTimeMap(const SpeedKeyframes& keyframes, double sourceDuration, std::optional<SourceRange> sourceRange,
                     int steps, double smoothing) {
    const double duration = KeyframeRules::usableDuration(sourceDuration);
    const SourceRange range = mapRange(sourceRange, duration);
    const SpeedKeyframes curve = KeyframeRules::curveForSourceRange(keyframes, duration, range, 1.0);
    const double span = std::max(range.upper - range.lower, shortestLength);
    const int count = intervalCount(curve, span, steps);
    const double dt = span / count;

    CurveEvaluator speed(curve, smoothing, speedLimits);
    std::vector<TimeMap::Entry> entries;
    entries.reserve(static_cast<std::size_t>(count) + 1);
    double output = 0;
    for (int i = 0; i < count; ++i) {
        const double source = range.lower + i * dt;
        entries.push_back({source, output});
        output += dt / speed(source + dt / 2);
    }
    entries.push_back({range.lower + count * dt, output});
    return TimeMap(std::move(entries), range, output);
}

} // namespace flowtide::CurveEngine
