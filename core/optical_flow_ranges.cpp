// Scans the curve for slow stretches; joins, pads and searches range lists.
#include "core/optical_flow_ranges.h"

#include "core/curve_evaluator.h"
#include "core/keyframe_rules.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>

namespace flowtide {
namespace {

constexpr double thresholdMargin = 0.999; ///< keeps a curve that sits exactly on the threshold out of the ranges
constexpr int mostSamples = 20000;        ///< bounds the scan of long clips
constexpr int samplesPerGap = 32;         ///< of the integration over a gap
constexpr double shortestGap = 0.5;       ///< output s; a shorter return to normal speed does not split a range
constexpr double shortestStretch = 2.0;   ///< source frames
constexpr double padding = 1.0;           ///< source frames; the frames at a stretch's edges are synthesised too

/// The runs of consecutive scan steps whose midpoint is slower than `threshold`.
SourceRanges slowStretches(CurveEvaluator speed, SourceRange trim, double step, double threshold) {
    SourceRanges stretches;
    bool open = false;
    for (std::size_t k = 0;; ++k) {
        const double start = trim.lower + static_cast<double>(k) * step;
        if (!(start < trim.upper)) break;
        const double end = std::min(trim.lower + static_cast<double>(k + 1) * step, trim.upper);
        const bool slow = speed(start + (end - start) / 2) < threshold;
        if (slow && !open) stretches.push_back({start, end});
        if (slow) stretches.back().upper = end;
        open = slow;
    }
    return stretches;
}

/// How long `gap` lasts in the output: the integral of 1/speed by the midpoint rule.
double outputLength(CurveEvaluator& speed, SourceRange gap) {
    const double dt = (gap.upper - gap.lower) / samplesPerGap;
    double length = 0;
    for (int i = 0; i < samplesPerGap; ++i)
        length += dt / speed(gap.lower + (i + 0.5) * dt);
    return length;
}

SourceRanges joinedAcrossShortGaps(CurveEvaluator speed, const SourceRanges& stretches) {
    SourceRanges kept;
    for (const SourceRange& stretch : stretches) {
        if (!kept.empty() && outputLength(speed, {kept.back().upper, stretch.lower}) < shortestGap) {
            kept.back().upper = stretch.upper;
        } else {
            kept.push_back(stretch);
        }
    }
    return kept;
}

} // namespace

SourceRanges AutomaticOpticalFlow::ranges(const SpeedKeyframes& keyframes, double smoothing, double sourceDuration,
                                          SourceRange trim, double frameRate, double smoothFrameRate) {
    if (!std::isfinite(frameRate) || frameRate <= 0 || !(sourceDuration > 0) || !(trim.lower < trim.upper)) return {};
    const SourceRange scanned = KeyframeRules::clippedToSource(trim, sourceDuration);
    const double length = scanned.upper - scanned.lower;
    if (!(length > 0)) return {};

    const double threshold = thresholdMargin * std::min(smoothFrameRate / frameRate, 1.0);
    const SpeedKeyframes curve = KeyframeRules::curveForSourceRange(keyframes, sourceDuration, scanned, 1.0);
    const CurveEvaluator speed(curve, smoothing, CurveEngine::speedLimits);
    // A step longer than the trim is cut at its end anyway; bounding it keeps absurd frame rates finite.
    const double step = std::min(std::max(length / mostSamples, 0.5 / frameRate), length);

    SourceRanges stretches = joinedAcrossShortGaps(speed, slowStretches(speed, scanned, step, threshold));
    std::erase_if(stretches, [frameRate](const SourceRange& stretch) {
        return stretch.upper - stretch.lower < shortestStretch / frameRate;
    });
    for (SourceRange& stretch : stretches) {
        stretch = {stretch.lower - padding / frameRate, stretch.upper + padding / frameRate};
    }
    return OpticalFlowScope::normalized(stretches, scanned);
}

SourceRanges OpticalFlowScope::normalized(const SourceRanges& ranges, SourceRange within) {
    SourceRanges clipped;
    clipped.reserve(ranges.size());
    for (const SourceRange& range : ranges) {
        const SourceRange part{std::max(range.lower, within.lower), std::min(range.upper, within.upper)};
        if (part.lower < part.upper) clipped.push_back(part);
    }
    std::sort(clipped.begin(), clipped.end(),
              [](const SourceRange& a, const SourceRange& b) { return a.lower < b.lower; });

    SourceRanges merged;
    for (const SourceRange& range : clipped) {
        if (!merged.empty() && range.lower <= merged.back().upper) {
            merged.back().upper = std::max(merged.back().upper, range.upper);
        } else {
            merged.push_back(range);
        }
    }
    return merged;
}

bool OpticalFlowScope::contains(const SourceRanges& ranges, SourceSeconds time) {
    const auto after = std::partition_point(ranges.begin(), ranges.end(),
                                            [time](const SourceRange& range) { return range.lower <= time.value; });
    return after != ranges.begin() && time.value < std::prev(after)->upper;
}

} // namespace flowtide
