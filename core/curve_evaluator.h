// Evaluates one curve many times: the loops that integrate or scan a curve walk forward through time.
#pragma once

#include "core/clamp.h"
#include "core/curve_engine.h"
#include "core/speed_keyframe.h"

#include <cstddef>
#include <limits>
#include <span>

namespace flowtide {

/// The curve as a function of source time. It remembers the segment of the last call, so that times that only grow
/// cost amortised constant time each; a step back costs a binary search. Refers to the keyframes (sorted by time),
/// which must outlive it and stay unchanged. One thread at a time; copies are independent.
class CurveEvaluator {
public:
    /// `smoothing` is clamped to 0...1.
    CurveEvaluator(const SpeedKeyframes& keyframes, double smoothing, CurveEngine::Limits limits);
    CurveEvaluator(SpeedKeyframes&&, double, CurveEngine::Limits) = delete;

    /// The curve's value at `t` seconds, within the limits; a NaN time counts as before the first keyframe.
    double operator()(double t);

private:
    void enterSegment(double t);
    double clampedToLimits(double value) const { return clamped(value, limits_.lower, limits_.upper); }

    std::span<const SpeedKeyframe> keyframes_;
    double smoothing_;
    CurveEngine::Limits limits_;
    double firstTime_ = std::numeric_limits<double>::infinity();
    double lastTime_ = firstTime_;
    double firstValue_; ///< within the limits, as lastValue_
    double lastValue_;

    /// The stretch after one keyframe and up to the next, that one included: a time that hits a keyframe belongs to
    /// the stretch before it.
    struct Segment {
        std::size_t end = 0; ///< index of its later keyframe; 0 before the first call
        double startTime = std::numeric_limits<double>::infinity();
        double endTime = -std::numeric_limits<double>::infinity();
        double length = 0;
        double startValue = 0;
        double endValue = 0;
        double startSlope = 0;
        double endSlope = 0;
    };
    Segment segment_;
};

inline double CurveEvaluator::operator()(double t) {
    if (!(t > firstTime_)) return firstValue_;
    if (!(t < lastTime_)) return lastValue_;
    if (!(segment_.startTime < t && t <= segment_.endTime)) enterSegment(t);

    // The Hermite basis. The order of these operations is part of the result: every map must come out the same to the
    // last bit.
    const Segment& s = segment_;
    const double u = clamped((t - s.startTime) / s.length, 0, 1);
    const double u2 = u * u;
    const double u3 = u2 * u;
    const double h00 = 2 * u3 - 3 * u2 + 1;
    const double h10 = u3 - 2 * u2 + u;
    const double h01 = 3 * u2 - 2 * u3;
    const double h11 = u3 - u2;
    const double cubic =
        h00 * s.startValue + h10 * s.length * s.startSlope + h01 * s.endValue + h11 * s.length * s.endSlope;
    const double linear = s.startValue + u * (s.endValue - s.startValue);
    return clampedToLimits(linear + smoothing_ * (cubic - linear));
}

} // namespace flowtide
