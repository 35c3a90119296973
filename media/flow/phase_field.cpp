// Both directions' motion, brought to a phase and weighed.
#include "media/flow/phase_field.h"

#include <algorithm>
#include <cmath>

namespace flowtide::flow {

void PhaseEstimator::project(DirectedFlow& flow, int share, bool reversed, Projected& result) {
    const int width = flow.motion.width();
    const int height = flow.motion.height();
    result.cells.resize(width, height);
    result.motion.resize(width, height);
    result.confidence.resize(width, height);
    std::fill_n(result.cells.row(0), static_cast<std::ptrdiff_t>(width) * height, 0U);
    kernels_.splat(flow.view(), share, reversed, result.cells.row(0));
    kernels_.resolve(result.cells.row(0), width, result.view(), 0, height);
}

PhaseField& PhaseEstimator::at(FlowPair& pair, const std::optional<Bend>& bend, double phase) {
    const int share = static_cast<int>(std::lround(phase * shareUnits));
    const PhaseImages images{pair.first->front().view(), pair.second->front().view(), share};
    const int width = images.first.width;
    const int height = images.first.height;
    workers_.run(2, [&](int task) {
        if (task == 0)
            project(pair.forward, share, false, forward_);
        else
            project(pair.backward, shareUnits - share, true, backward_);
    });
    chosen_.resize(width, height);
    workers_.run((height + tileSize - 1) / tileSize, [&](int tile) {
        kernels_.choose(images, forward_.view(), backward_.view(), width, height, chosen_.row(0), tile, tile + 1);
    });
    field_.motion.resize(width, height);
    field_.secondShare.resize(width, height);
    workers_.runBands(height, [&](int begin, int end) {
        kernels_.crossMedian(chosen_.row(0), width, height, field_.motion.row(0), begin, end);
    });
    field_.isShifted = bend.has_value();
    if (bend) shiftAt(*bend, field_.motion, phase, workers_, field_.shift);
    workers_.runBands(height, [&](int begin, int end) {
        kernels_.shares(images, pair.forward.view(), pair.backward.view(), field_.planes(), begin, end);
    });
    return field_;
}

} // namespace flowtide::flow
