// The order of the levels in pull-push, and their memory.
#include "media/flow/flow_fill.h"

#include <algorithm>
#include <utility>

namespace flowtide::flow {

namespace {

constexpr int lanesBeyond = 16; // kernels read and write whole vectors past the last column

} // namespace

/// The memory of one level.
class FlowFill::Level {
public:
    Level(int width, int height)
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

FlowFill::FlowFill() = default;
FlowFill::~FlowFill() = default;

void FlowFill::fill(const MotionView& flow, const GrayImage& from, const GrayImage& to, const Kernels& kernels,
                    WorkerPool& workers, Field<MotionVector>& result) {
    if (filled_.width() != flow.width || filled_.height() != flow.height) {
        filled_.resize(flow.width, flow.height);
        levels_.clear();
        int width = flow.width;
        int height = flow.height;
        do {
            width = (width + 1) / 2;
            height = (height + 1) / 2;
            levels_.emplace_back(width, height);
        } while (std::max(width, height) > 1);
    }
    workers.runBands(levels_[0].planes().height, [&](int begin, int end) {
        kernels.pullMotion(flow, from.view(), levels_[0].planes(), begin, end);
    });
    for (std::size_t i = 1; i < levels_.size(); ++i)
        workers.runBands(levels_[i].planes().height, [&](int begin, int end) {
            kernels.pull(levels_[i - 1].planes(), levels_[i].planes(), begin, end);
        });
    for (std::size_t i = levels_.size() - 1; i-- > 0;)
        workers.runBands(levels_[i].planes().height, [&](int begin, int end) {
            kernels.push(levels_[i].planes(), levels_[i + 1].planes(), begin, end);
        });
    workers.runBands(flow.height, [&](int begin, int end) {
        kernels.pushMotion(flow, from.view(), levels_[0].planes(), filled_.row(0), begin, end);
    });
    result.resize(flow.width, flow.height);
    workers.run((flow.height + tileSize - 1) / tileSize, [&](int tile) {
        kernels.restoreMatched(flow, from.view(), to.view(), filled_.row(0), result.row(0), tile, tile + 1);
    });
}

} // namespace flowtide::flow
