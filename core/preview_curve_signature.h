// Which curve a rendered preview was made from.
#pragma once

#include "core/speed_keyframe.h"

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

    static PreviewCurveSignature of(const SpeedKeyframes& keyframes, double smoothing) {
        PreviewCurveSignature signature;
        signature.smoothing = smoothing;
        for (const SpeedKeyframe& keyframe : keyframes)
            signature.points.push_back({keyframe.time, keyframe.speed});
        return signature;
    }

    friend bool operator==(const PreviewCurveSignature&, const PreviewCurveSignature&) = default;
};

} // namespace flowtide
