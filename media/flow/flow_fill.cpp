// Confidence-weighted pull and push.
#include "media/flow/flow_fill.h"

#include <utility>

namespace flowtide::flow {

namespace {

constexpr int lanesBeyond = 16; // kernels read and write whole vectors past the last column

/// The memory of one fill level.
class FillLevel {
public:
    FillLevel(int width, int height)
        : planes_{width, height, width + 1 + lanesBeyond, nullptr, nullptr, nullptr, nullptr} {
        const auto size = static_cast<std::size_t>(planes_.stride) * static_cast<std::size_t>(height);
        memory_.resize(4 * size + lanesBeyond);
        float* next = memory_.data() + 1;
        for (float** plane : {&planes_.x, &planes_.y, &planes_.known, &planes_.luma})
            *plane = std::exchange(next, next + size);
    }

    const FillPlanes& planes() const { return planes_; }

private:
    FillPlanes planes_;
    std::vector<float> memory_;
};

} // namespace

void fillUntrusted(DirectedFlow& flow, const GrayImage& from, const GrayImage& to, const Kernels& kernels,
                   WorkerPool& workers) {
    const MotionView view = flow.view();
    std::vector<FillLevel> levels;
    levels.emplace_back((view.width + 1) / 2, (view.height + 1) / 2);
    workers.runBands(levels[0].planes().height, [&](int begin, int end) {
        kernels.pullMotion(view, from.view(), levels[0].planes(), begin, end);
    });
    while (std::max(levels.back().planes().width, levels.back().planes().height) > 1) {
        const FillPlanes fine = levels.back().planes();
        levels.emplace_back((fine.width + 1) / 2, (fine.height + 1) / 2);
        const FillPlanes& coarse = levels.back().planes();
        workers.runBands(coarse.height, [&](int begin, int end) { kernels.pull(fine, coarse, begin, end); });
    }
    for (std::size_t i = levels.size() - 1; i-- > 0;)
        workers.runBands(levels[i].planes().height, [&](int begin, int end) {
            kernels.push(levels[i].planes(), levels[i + 1].planes(), begin, end);
        });
    Field<MotionVector> filled(view.width, view.height);
    workers.runBands(view.height, [&](int begin, int end) {
        kernels.pushMotion(view, from.view(), levels[0].planes(), filled.row(0), begin, end);
    });
    Field<MotionVector> result(view.width, view.height);
    workers.run((view.height + tileSize - 1) / tileSize, [&](int tile) {
        kernels.restoreGood(view, from.view(), to.view(), filled.row(0), result.row(0), tile, tile + 1);
    });
    flow.motion = std::move(result);
}

} // namespace flowtide::flow
