// Samples the curve where it says everything about itself.
#include "core/preview_curve_signature.h"

#include "core/curve_evaluator.h"

#include <algorithm>

namespace flowtide {

PreviewCurveSignature PreviewCurveSignature::of(const SpeedKeyframes& curve, double smoothing, SourceRange range) {
    PreviewCurveSignature signature;
    signature.smoothing = smoothing;
    CurveEvaluator speed(curve, smoothing, CurveEngine::speedLimits);
    const auto add = [&](double time) { signature.points.push_back({time, speed(time)}); };
    // Keyframes outside bend the curve inside. Between keyframes it is a cubic, which four points determine.
    constexpr int pointsForEachPiece = 3;
    double start = range.lower;
    const auto addPieceTo = [&](double end) {
        for (int i = 0; i < pointsForEachPiece; ++i)
            add(start + (end - start) * i / pointsForEachPiece);
        start = end;
    };
    auto keyframe = std::partition_point(curve.begin(), curve.end(),
                                         [&](const SpeedKeyframe& each) { return each.time <= range.lower; });
    for (; keyframe != curve.end() && keyframe->time < range.upper; ++keyframe)
        addPieceTo(keyframe->time);
    addPieceTo(range.upper);
    add(range.upper);
    return signature;
}

} // namespace flowtide
