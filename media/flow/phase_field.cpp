// The order of splatting, fusing, smoothing and weighing, shared out to the workers.
#include "media/flow/phase_field.h"

#include <algorithm>
#include <cmath>

namespace flowtide::flow {

void PhaseEstimator::project(DirectedFlow& flow, int phase, bool reversed, Projected& result) {
    const int width = flow.motion.width();
    const int height = flow.motion.height();
    result.cells.resize(width, height);
    result.motion.resize(width, height);
    result.confidence.resize(width, height);
    std::fill_n(result.cells.row(0), static_cast<std::ptrdiff_t>(width) * height, 0U);
    kernels_.splat(flow.view(), phase, reversed, result.cells.row(0));
    kernels_.resolveSplat(result.cells.row(0), width, result.view(), 0, height);
}

PhaseField& PhaseEstimator::at(FlowPair& pair, const std::optional<PairAcceleration>& accelerations, double phase) {
    const int fraction = static_cast<int>(std::lround(phase * fractionUnits));
    const PhaseImages images{pair.first->front().view(), pair.second->front().view(), fraction};
    const int width = images.first.width;
    const int height = images.first.height;
    workers_.run(2, [&](int task) {
        if (task == 0)
            project(pair.forward, fraction, false, forward_);
        else
            project(pair.backward, fractionUnits - fraction, true, backward_);
    });
    fused_.resize(width, height);
    workers_.run((height + tileSize - 1) / tileSize, [&](int tile) {
        kernels_.fuseProjections(images, forward_.view(), backward_.view(), width, height, fused_.row(0), tile,
                                 tile + 1);
    });
    field_.motion.resize(width, height);
    field_.secondWeight.resize(width, height);
    workers_.runBands(height, [&](int begin, int end) {
        kernels_.crossMedian(fused_.row(0), width, height, field_.motion.row(0), begin, end);
    });
    field_.isShifted = accelerations.has_value();
    if (accelerations) quadraticShift(*accelerations, field_.motion, phase, workers_, field_.shift);
    workers_.runBands(height, [&](int begin, int end) {
        kernels_.blendWeights(images, pair.forward.view(), pair.backward.view(), field_.planes(), begin, end);
    });
    return field_;
}

} // namespace flowtide::flow
