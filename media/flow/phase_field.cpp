// Both directions' motion, brought to a phase and weighed.
#include "media/flow/phase_field.h"

#include <cmath>

namespace flowtide::flow {

namespace {

/// One direction's motion at a phase.
struct Projected {
    Field<MotionVector> motion;
    Field<std::uint8_t> confidence;

    Projection view() { return {motion.row(0), confidence.row(0)}; }
};

Projected projected(DirectedFlow& flow, int share, bool reversed, const Kernels& kernels) {
    const int width = flow.motion.width();
    const int height = flow.motion.height();
    Field<std::uint64_t> cells(width, height);
    kernels.splat(flow.view(), share, reversed, cells.row(0));
    Projected result{Field<MotionVector>(width, height), Field<std::uint8_t>(width, height)};
    kernels.resolve(cells.row(0), width, result.view(), 0, height);
    return result;
}

} // namespace

PhaseField phaseField(FlowPair& pair, const std::optional<Bend>& bend, double phase, const Kernels& kernels,
                      WorkerPool& workers) {
    const int share = static_cast<int>(std::lround(phase * shareUnits));
    const PhaseImages images{pair.first->front().view(), pair.second->front().view(), share};
    const int width = images.first.width;
    const int height = images.first.height;
    Projected one;
    Projected other;
    workers.run(2, [&](int task) {
        if (task == 0)
            one = projected(pair.forward, share, false, kernels);
        else
            other = projected(pair.backward, shareUnits - share, true, kernels);
    });
    Field<MotionVector> chosen(width, height);
    workers.run((height + tileSize - 1) / tileSize, [&](int tile) {
        kernels.choose(images, one.view(), other.view(), width, height, chosen.row(0), tile, tile + 1);
    });
    PhaseField result{Field<MotionVector>(width, height), {}, Field<std::int16_t>(width, height)};
    workers.runBands(height, [&](int begin, int end) {
        kernels.crossMedian(chosen.row(0), width, height, result.motion.row(0), begin, end);
    });
    if (bend) result.shift = shiftAt(*bend, result.motion, phase, workers);
    workers.runBands(height, [&](int begin, int end) {
        kernels.shares(images, pair.forward.view(), pair.backward.view(), result.planes(), begin, end);
    });
    return result;
}

} // namespace flowtide::flow
