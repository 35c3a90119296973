// The order of the steps, and the threshold of a cut.
#include "media/flow/flow_pair.h"

#include <numeric>
#include <utility>

namespace flowtide::flow {

namespace {

// Ordinary pairs have a mean confidence of at least 0.26, cuts at most 0.06.
constexpr double cutConfidence = 0.12;

double meanConfidence(const Field<std::uint8_t>& confidence) {
    const std::size_t count =
        static_cast<std::size_t>(confidence.width()) * static_cast<std::size_t>(confidence.height());
    const std::uint64_t sum = std::accumulate(confidence.row(0), confidence.row(0) + count, std::uint64_t{0});
    return static_cast<double>(sum) / (255.0 * static_cast<double>(count));
}

} // namespace

void FlowEstimator::estimate(std::shared_ptr<const Pyramid> first, std::shared_ptr<const Pyramid> second,
                             FlowPair& pair) {
    pair.first = std::move(first);
    pair.second = std::move(second);
    patchFlow_.estimate(*pair.first, *pair.second, kernels_, workers_, pair.forward.motion, pair.backward.motion);
    checkConsistency(pair);
    const double confidence = (meanConfidence(pair.forward.confidence) + meanConfidence(pair.backward.confidence)) / 2;
    pair.isCut = confidence < cutConfidence;
    if (pair.isCut) return;
    fill(pair.forward, *pair.first, *pair.second);
    fill(pair.backward, *pair.second, *pair.first);
}

void FlowEstimator::checkConsistency(FlowPair& pair) {
    for (DirectedFlow* flow : {&pair.forward, &pair.backward}) {
        flow->confidence.resize(flow->motion.width(), flow->motion.height());
        flow->visibility.resize(flow->motion.width(), flow->motion.height());
    }
    const MotionView forward = pair.forward.view();
    const MotionView backward = pair.backward.view();
    workers_.runBands(forward.height, [&](int begin, int end) {
        kernels_.checkConsistency(forward, backward.motion, begin, end);
        kernels_.checkConsistency(backward, forward.motion, begin, end);
    });
}

void FlowEstimator::fill(DirectedFlow& flow, const Pyramid& from, const Pyramid& to) {
    fill_.fill(flow.view(), from.front(), to.front(), kernels_, workers_, filled_);
    std::swap(flow.motion, filled_);
}

} // namespace flowtide::flow
