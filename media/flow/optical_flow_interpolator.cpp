// Which pairs and pyramids are kept for the next frame, and the frames that need no motion: ends, still pairs, cuts.
#include "media/flow/optical_flow_interpolator.h"

#include "media/flow/phase_field.h"
#include "media/flow/warp.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <optional>
#include <utility>

namespace flowtide {

namespace {

constexpr double samePhase = 0.000001; // nearer to a frame than this, the frame itself is shown

constexpr std::size_t pairsKept = 3; // one, and those on both sides
constexpr std::size_t framesKept = 2;

/// Second differences need three frames at equal intervals.
bool evenlySpaced(double one, double other) {
    return std::abs(one - other) < 0.1 * other;
}

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

struct OpticalFlowInterpolator::KnownFrame {
    SourceSeconds time;
    std::shared_ptr<const flow::Pyramid> luma;
};

struct OpticalFlowInterpolator::KnownPair {
    SourceSeconds firstTime;
    SourceSeconds secondTime;
    bool isStill = false;
    flow::FlowPair flow; ///< empty for a still pair

    bool moves() const { return !isStill && !flow.isCut; }
};

/// The pair that is being rendered, and what its neighbours tell of it.
struct OpticalFlowInterpolator::CurrentPair {
    std::shared_ptr<KnownPair> pair;
    std::optional<SourceSeconds> timeBefore;
    std::optional<SourceSeconds> timeAfter;
    std::optional<flow::PairAcceleration> accelerations;
};

OpticalFlowInterpolator::OpticalFlowInterpolator(int width, int height, PixelLayout layout,
                                                 const OpticalFlowOptions& options)
    : pool_(layout, width, height)
    , kernels_(flow::kernelsFor(options.instructions))
    , workers_(options.threads)
    , estimator_(kernels_, workers_)
    , phases_(kernels_, workers_) {}

OpticalFlowInterpolator::~OpticalFlowInterpolator() = default;

VideoFrame OpticalFlowInterpolator::render(const FramePair& frames, SourceSeconds time) {
    const auto& [first, firstTime] = frames.first;
    const auto& [second, secondTime] = frames.second;
    const double phase = (time.value - firstTime.value) / (secondTime.value - firstTime.value);
    if (!(phase > samePhase)) return first;
    if (phase >= 1 - samePhase) return second;
    moveTo(frames);
    KnownPair& pair = *current_->pair;
    if (pair.isStill) return first;
    if (pair.flow.isCut) return phase < 0.5 ? first : second;
    flow::PhaseField& field = phases_.at(pair.flow, current_->accelerations, phase);
    return flow::warped(first, second, field, phase, pool_, kernels_, workers_);
}

void OpticalFlowInterpolator::moveTo(const FramePair& frames) {
    const auto timeOf = [](const std::optional<TimedFrame>& frame) {
        return frame ? std::optional(frame->time) : std::nullopt;
    };
    if (current_ && current_->pair->firstTime == frames.first.time &&
        current_->pair->secondTime == frames.second.time && current_->timeBefore == timeOf(frames.before) &&
        current_->timeAfter == timeOf(frames.after))
        return;
    auto current = std::make_unique<CurrentPair>();
    // In the order of the source, so that each pair is found among the known ones when the next one is rendered.
    const double duration = frames.second.time.value - frames.first.time.value;
    std::shared_ptr<KnownPair> before;
    std::shared_ptr<KnownPair> after;
    if (frames.before && evenlySpaced(frames.first.time.value - frames.before->time.value, duration))
        before = pairOf(*frames.before, frames.first);
    current->pair = pairOf(frames.first, frames.second);
    if (frames.after && evenlySpaced(frames.after->time.value - frames.second.time.value, duration))
        after = pairOf(frames.second, *frames.after);
    const flow::FlowPair& flow = current->pair->flow;
    if (current->pair->moves() && before && before->moves() && after && after->moves())
        current->accelerations = {acceleration(flow.forward, before->flow.backward),
                                  acceleration(flow.backward, after->flow.forward)};
    current->timeBefore = timeOf(frames.before);
    current->timeAfter = timeOf(frames.after);
    current_ = std::move(current);
}

std::shared_ptr<OpticalFlowInterpolator::KnownPair> OpticalFlowInterpolator::pairOf(const TimedFrame& first,
                                                                                    const TimedFrame& second) {
    const auto known = std::find_if(pairs_.begin(), pairs_.end(), [&](const auto& pair) {
        return pair->firstTime == first.time && pair->secondTime == second.time;
    });
    if (known != pairs_.end()) {
        std::rotate(known, known + 1, pairs_.end());
        return pairs_.back();
    }
    std::shared_ptr<KnownPair> pair;
    if (pairs_.size() == pairsKept) {
        pair = std::move(pairs_.front()); // for its memory
        pairs_.pop_front();
    } else {
        pair = std::make_shared<KnownPair>();
    }
    pair->firstTime = first.time;
    pair->secondTime = second.time;
    pair->isStill = samePixels(first.frame, second.frame);
    if (!pair->isStill) estimator_.estimate(lumaOf(first), lumaOf(second), pair->flow);
    pairs_.push_back(pair);
    return pair;
}

std::shared_ptr<const flow::Pyramid> OpticalFlowInterpolator::lumaOf(const TimedFrame& frame) {
    for (const KnownFrame& known : frames_)
        if (known.time == frame.time) return known.luma;
    frames_.push_back({frame.time, std::make_shared<const flow::Pyramid>(flow::lumaPyramid(frame.frame))});
    if (frames_.size() > framesKept) frames_.pop_front();
    return frames_.back().luma;
}

} // namespace flowtide
