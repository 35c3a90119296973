// Which curve a rendered preview was made from.
#pragma once

#include "core/speed_keyframe.h"
#include "core/time.h"

#include <vector>

namespace flowtide {

/// A rendered preview is reusable only while the current curve's signature equals its own, exactly.
struct PreviewCurveSignature {
    struct Point {
        double time;  ///< seconds of the source
        double speed; ///< multiplier
        friend bool operator==(const Point&, const Point&) = default;
    };

    std::vector<Point> points;
    double smoothing = 0;

    /// Of the part of a curve over `range`. `curve`: as it is played (KeyframeRules::curveForSourceRange), sorted by
    /// time. Two are equal exactly when every time in the range plays at the same speed in both.
    static PreviewCurveSignature of(const SpeedKeyframes& curve, double smoothing, SourceRange range);

    friend bool operator==(const PreviewCurveSignature&, const PreviewCurveSignature&) = default;
};

} // namespace flowtide
