// Matching both ways, consistency, filling.
#include "media/flow/flow_pair.h"

#include "media/flow/flow_fill.h"
#include "media/flow/patch_flow.h"

#include <numeric>
#include <utility>

namespace flowtide::flow {

namespace {

// Ordinary pairs have a mean confidence of at least 0.26, cuts at most 0.06.
constexpr double cutConfidence = 0.12;

DirectedFlow unjudged(Field<MotionVector> motion) {
    const int width = motion.width();
    const int height = motion.height();
    return {std::move(motion), Field<std::uint8_t>(width, height), Field<std::uint8_t>(width, height)};
}

double meanConfidence(const Field<std::uint8_t>& confidence) {
    const std::size_t count =
        static_cast<std::size_t>(confidence.width()) * static_cast<std::size_t>(confidence.height());
    const std::uint64_t sum = std::accumulate(confidence.row(0), confidence.row(0) + count, std::uint64_t{0});
    return static_cast<double>(sum) / (255.0 * static_cast<double>(count));
}

} // namespace

FlowPair estimateFlow(std::shared_ptr<const Pyramid> first, std::shared_ptr<const Pyramid> second,
                      const Kernels& kernels, WorkerPool& workers) {
    PairMotion found = patchFlow(*first, *second, kernels, workers);
    FlowPair pair{std::move(first), std::move(second), unjudged(std::move(found.forward)),
                  unjudged(std::move(found.backward)), false};
    const MotionView forward = pair.forward.view();
    const MotionView backward = pair.backward.view();
    workers.runBands(forward.height, [&](int begin, int end) {
        kernels.judge(forward, backward.motion, begin, end);
        kernels.judge(backward, forward.motion, begin, end);
    });
    pair.isCut =
        (meanConfidence(pair.forward.confidence) + meanConfidence(pair.backward.confidence)) / 2 < cutConfidence;
    if (pair.isCut) return pair;
    fillUntrusted(pair.forward, pair.first->front(), pair.second->front(), kernels, workers);
    fillUntrusted(pair.backward, pair.second->front(), pair.first->front(), kernels, workers);
    return pair;
}

} // namespace flowtide::flow
