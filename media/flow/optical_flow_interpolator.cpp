// Pair caching and the cases that need no motion.
#include "media/flow/optical_flow_interpolator.h"

#include "media/flow/phase_field.h"
#include "media/flow/warp.h"

#include <algorithm>
#include <cstring>

namespace flowtide {

namespace {

constexpr double samePhase = 0.000001; // nearer to a frame than this, the frame itself is shown

bool samePixels(const VideoFrame& a, const VideoFrame& b) {
    for (std::size_t plane = 0; plane < a.planes.size(); ++plane) {
        const std::size_t bytes = planeRowBytes(a.layout, a.width, plane);
        for (int y = 0; y < planeHeight(a.layout, a.height, plane); ++y)
            if (std::memcmp(a.planes[plane].data + y * a.planes[plane].stride,
                            b.planes[plane].data + y * b.planes[plane].stride, bytes) != 0)
                return false;
    }
    return true;
}

} // namespace

struct OpticalFlowInterpolator::CachedPair {
    SourceSeconds firstTime;
    SourceSeconds nextTime;
    bool isStill = false;
    std::vector<flow::GrayImage> nextLuma; // the next pair's first
    std::optional<flow::FlowPair> flow;    // absent for a still pair
};

OpticalFlowInterpolator::OpticalFlowInterpolator(int width, int height, PixelLayout layout)
    : pool_(layout, width, height) {}

OpticalFlowInterpolator::~OpticalFlowInterpolator() = default;

VideoFrame OpticalFlowInterpolator::render(const FramePair& frames, SourceSeconds time) {
    const auto& [previous, previousTime] = frames.first;
    const auto& [next, nextTime] = frames.second;
    const double phase = (time.value - previousTime.value) / (nextTime.value - previousTime.value);
    if (!(phase > samePhase)) return previous;
    if (phase >= 1 - samePhase) return next;
    CachedPair& pair = pairOf(previous, previousTime, next, nextTime);
    if (pair.isStill) return previous;
    if (pair.flow->isCut) return phase < 0.5 ? previous : next;
    const auto position = static_cast<float>(phase);
    return flow::warped(previous, next, flow::phaseField(*pair.flow, position), position, pool_);
}

OpticalFlowInterpolator::CachedPair& OpticalFlowInterpolator::pairOf(const VideoFrame& previous,
                                                                     SourceSeconds previousTime, const VideoFrame& next,
                                                                     SourceSeconds nextTime) {
    if (lastPair_ && lastPair_->firstTime == previousTime && lastPair_->nextTime == nextTime) return *lastPair_;
    auto pair = std::make_unique<CachedPair>();
    pair->firstTime = previousTime;
    pair->nextTime = nextTime;
    pair->isStill = samePixels(previous, next);
    if (!pair->isStill) {
        const bool follows = lastPair_ && !lastPair_->nextLuma.empty() && lastPair_->nextTime == previousTime;
        const auto firstLuma = follows ? std::move(lastPair_->nextLuma) : flow::lumaPyramid(previous);
        pair->nextLuma = flow::lumaPyramid(next);
        pair->flow = flow::estimateFlow(firstLuma, pair->nextLuma);
    }
    lastPair_ = std::move(pair);
    return *lastPair_;
}

} // namespace flowtide
