// Computes ramps and focal motion, for one time and for all frames of an export.
#include "core/zoom_engine.h"

#include <algorithm>
#include <cmath>

namespace flowtide::ZoomEngine {

namespace {

constexpr double shortestRampedBlock = 0.0001; // output seconds; a shorter block has no ramps
constexpr double shortestVisibleBlock = 0.001; // output seconds; a shorter block is skipped
constexpr double hardCutFraction = 0.0005;     // a shorter ramp is a cut
constexpr double smallestFocalInterval = 0.0001;

/// Perlin's quintic ease ("Improving noise", SIGGRAPH 2002), t³(6t² − 15t + 10): its first and second derivatives
/// vanish at both ends.
double smootherStep(double t) {
    return t * t * t * (t * (6 * t - 15) + 10);
}

/// The output times of a block's ends.
struct Span {
    double start;
    double end;
    double duration() const { return end - start; }
};

Span outputSpan(const ZoomBlock& block, const TimeMap& timeMap) {
    return {timeMap.outputTime(SourceSeconds{block.startTime}).value,
            timeMap.outputTime(SourceSeconds{block.endTime}).value};
}

ZoomState stateWithin(const ZoomBlock& block, const Span& span, double time) {
    const double progress = (time - span.start) / span.duration();
    const double ramp = rampFraction(block.rampDuration, span.duration(), block.mode);
    return {scale(progress, block, ramp), focal(progress, block)};
}

} // namespace

double rampFraction(double rampDuration, double blockOutputDuration, ZoomMode mode) {
    if (!(blockOutputDuration > shortestRampedBlock)) return 0;
    const double fraction = std::max(rampDuration, 0.0) / blockOutputDuration;
    return std::min(fraction, mode == ZoomMode::inOut ? 0.5 : 1.0);
}

double scale(double progress, const ZoomBlock& block, double rampFraction) {
    const double p = std::clamp(progress, 0.0, 1.0);
    const double r = rampFraction;
    const bool rampsIn = block.mode == ZoomMode::inOut || block.mode == ZoomMode::zoomIn;
    const bool rampsOut = block.mode == ZoomMode::inOut || block.mode == ZoomMode::zoomOut;
    double weight = 1;
    if (r >= hardCutFraction) {
        if (rampsIn && p < r)
            weight = smootherStep(std::clamp(p / r, 0.0, 1.0));
        else if (rampsOut && p > 1 - r)
            weight = smootherStep(std::clamp((1 - p) / r, 0.0, 1.0));
    }
    // Geometric growth: equal steps of the weight look like equal steps of zoom.
    return std::exp(std::log(std::max(block.amount, 1.0)) * weight);
}

FocalPoint focal(double progress, const ZoomBlock& block) {
    const auto& points = block.focalKeyframes;
    if (points.empty()) return {block.focalX, block.focalY};
    const double p = std::clamp(progress, 0.0, 1.0);
    if (p <= points.front().progress) return {points.front().x, points.front().y};
    if (p >= points.back().progress) return {points.back().x, points.back().y};
    std::size_t next = 1;
    while (points[next].progress < p)
        ++next;
    const ZoomFocalKeyframe& a = points[next - 1];
    const ZoomFocalKeyframe& b = points[next];
    const double t = std::clamp((p - a.progress) / std::max(b.progress - a.progress, smallestFocalInterval), 0.0, 1.0);
    const double eased = smootherStep(t);
    return {a.x + (b.x - a.x) * eased, a.y + (b.y - a.y) * eased};
}

ZoomState stateAt(OutputSeconds time, const std::vector<ZoomBlock>& blocks, const TimeMap& timeMap) {
    for (const ZoomBlock& block : blocks) {
        const Span span = outputSpan(block, timeMap);
        if (span.duration() > shortestVisibleBlock && span.start <= time.value && time.value <= span.end)
            return stateWithin(block, span, time.value);
    }
    return {};
}

std::vector<ZoomState> table(const std::vector<ZoomBlock>& blocks, const TimeMap& timeMap, std::int64_t frameCount,
                             double frameDuration, std::int64_t firstFrame) {
    std::vector<ZoomState> states(static_cast<std::size_t>(std::max<std::int64_t>(frameCount, 0)));
    for (const ZoomBlock& block : blocks) {
        const Span span = outputSpan(block, timeMap);
        if (!(span.duration() > shortestVisibleBlock)) continue;
        const auto first = std::max(static_cast<std::int64_t>(std::floor(span.start / frameDuration)), firstFrame);
        const auto last =
            std::min(firstFrame + frameCount - 1, static_cast<std::int64_t>(std::ceil(span.end / frameDuration)));
        for (std::int64_t i = first; i <= last; ++i) {
            const double time = frameDuration * static_cast<double>(i);
            if (span.start <= time && time <= span.end)
                states[static_cast<std::size_t>(i - firstFrame)] = stateWithin(block, span, time);
        }
    }
    return states;
}

} // namespace flowtide::ZoomEngine
