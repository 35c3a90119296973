// Pair caching and the cases that need no motion.
#include "media/flow/optical_flow_interpolator.h"

#include "media/flow/phase_field.h"
#include "media/flow/warp.h"

#include <algorithm>
#include <cstring>
#include <utility>

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
    SourceSeconds secondTime;
    bool isStill = false;
    std::shared_ptr<const flow::Pyramid> secondLuma; // the next pair's first
    std::optional<flow::FlowPair> flow;              // absent for a still pair
};

OpticalFlowInterpolator::OpticalFlowInterpolator(int width, int height, PixelLayout layout,
                                                 const OpticalFlowOptions& options)
    : pool_(layout, width, height)
    , kernels_(flow::kernelsFor(options.instructions))
    , workers_(options.threads) {}

OpticalFlowInterpolator::~OpticalFlowInterpolator() = default;

VideoFrame OpticalFlowInterpolator::render(const FramePair& frames, SourceSeconds time) {
    const auto& [first, firstTime] = frames.first;
    const auto& [second, secondTime] = frames.second;
    const double phase = (time.value - firstTime.value) / (secondTime.value - firstTime.value);
    if (!(phase > samePhase)) return first;
    if (phase >= 1 - samePhase) return second;
    CachedPair& pair = pairOf(frames.first, frames.second);
    if (pair.isStill) return first;
    if (pair.flow->isCut) return phase < 0.5 ? first : second;
    flow::PhaseField field = flow::phaseField(*pair.flow, phase, kernels_, workers_);
    return flow::warped(first, second, field, phase, pool_, kernels_, workers_);
}

OpticalFlowInterpolator::CachedPair& OpticalFlowInterpolator::pairOf(const TimedFrame& first,
                                                                     const TimedFrame& second) {
    if (lastPair_ && lastPair_->firstTime == first.time && lastPair_->secondTime == second.time) return *lastPair_;
    auto pair = std::make_unique<CachedPair>();
    pair->firstTime = first.time;
    pair->secondTime = second.time;
    pair->isStill = samePixels(first.frame, second.frame);
    if (!pair->isStill) {
        const bool follows = lastPair_ && lastPair_->secondLuma && lastPair_->secondTime == first.time;
        const auto firstLuma =
            follows ? lastPair_->secondLuma : std::make_shared<const flow::Pyramid>(flow::lumaPyramid(first.frame));
        pair->secondLuma = std::make_shared<const flow::Pyramid>(flow::lumaPyramid(second.frame));
        pair->flow = flow::estimateFlow(firstLuma, pair->secondLuma, kernels_, workers_);
    }
    lastPair_ = std::move(pair);
    return *lastPair_;
}

} // namespace flowtide
