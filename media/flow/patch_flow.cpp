// The levels of patches from the coarsest to the finest, both directions side by side, and their memory.
#include "media/flow/patch_flow.h"

#include <algorithm>
#include <array>
#include <utility>

namespace flowtide::flow {

namespace {

constexpr int coarseSweeps = 6;
constexpr int finestSweeps = 3;
constexpr int densifyBand = 8;     // rows of cells
constexpr float noLuma = 1e9F;     // of the border: as unlike to anything as can be
constexpr int lanesBeyond = 16;    // kernels read and write whole vectors past the last column
constexpr std::size_t planes = 12; // of PatchPlanes, and two for the sweeps to write to

int bandsOf(int rows, int band) {
    return (rows + band - 1) / band;
}

} // namespace

/// One level of one direction.
class PatchFlow::Level {
public:
    /// Starts afresh with two images.
    void begin(const GrayImage& from, const GrayImage& to) {
        search_ = {from.view(), to.view(), {}, {}, true};
        PatchPlanes& patches = search_.patches;
        patches.columns = (from.width() - 1) / patchStride + 2;
        patches.rows = (from.height() - 1) / patchStride + 2;
        patches.stride = patches.columns + 2 + lanesBeyond;
        const std::size_t size = static_cast<std::size_t>(patches.stride) * static_cast<std::size_t>(patches.rows + 3);
        memory_.resize(planes * size);
        float* next = memory_.data();
        for (float** plane :
             {&patches.x, &patches.y, &nextX_, &nextY_, &patches.luma, &patches.gradientX, &patches.gradientY,
              &patches.gradientAtX, &patches.gradientAtY, &patches.xx, &patches.xy, &patches.yy})
            *plane = std::exchange(next, next + size);
        std::fill_n(patches.x, 4 * size, 0.0F);
        std::fill_n(patches.luma, size, noLuma);
    }

    int rows() const { return search_.patches.rows; }
    const PatchSearch& search() const { return search_; }

    void setParents(const Level& coarser) {
        search_.parents = coarser.search_.patches;
        search_.isCoarsest = false;
    }
    void searchBandAt(const Kernels& kernels, int band) {
        kernels.searchPatches(search_, band * searchBand, std::min((band + 1) * searchBand, rows()));
    }
    void sweepBandAt(const Kernels& kernels, int band) {
        const int end = std::min((band + 1) * searchBand, rows());
        kernels.refreshGradients(search_, band * searchBand, end);
        kernels.sweepPatches(search_.patches, nextX_, nextY_, band * searchBand, end);
    }
    void endSweep() {
        clearBorder(nextX_);
        clearBorder(nextY_);
        std::swap(search_.patches.x, nextX_);
        std::swap(search_.patches.y, nextY_);
    }
    /// Repeats the displacements on the border, where the next level's patches may look for parents.
    void finish() {
        const PatchPlanes& patches = search_.patches;
        for (float* plane : {patches.x, patches.y}) {
            for (int j = 1; j <= patches.rows; ++j) {
                float* row = plane + j * patches.stride;
                row[0] = row[1];
                std::fill_n(row + patches.columns + 1, 2, row[patches.columns]);
            }
            std::copy_n(plane + patches.stride, patches.columns + 3, plane);
            const float* last = plane + patches.rows * patches.stride;
            for (int beyond = 1; beyond <= 2; ++beyond)
                std::copy_n(last, patches.columns + 3, plane + (patches.rows + beyond) * patches.stride);
        }
    }

private:
    /// Undoes what whole vectors wrote past the last column.
    void clearBorder(float* plane) const {
        const PatchPlanes& patches = search_.patches;
        for (int j = 0; j < patches.rows; ++j)
            std::fill_n(plane + (j + 1) * patches.stride + patches.columns + 1, lanesBeyond, 0.0F);
    }

    PatchSearch search_{};
    float* nextX_ = nullptr;
    float* nextY_ = nullptr;
    std::vector<float> memory_;
};

struct PatchFlow::LevelPair {
    std::array<Level, 2> directions;
};

PatchFlow::PatchFlow() = default;
PatchFlow::~PatchFlow() = default;

void PatchFlow::estimate(const std::vector<GrayImage>& first, const std::vector<GrayImage>& second,
                         const Kernels& kernels, WorkerPool& workers, Field<MotionVector>& forward,
                         Field<MotionVector>& backward) {
    levels_.resize(first.size());
    for (std::size_t i = first.size(); i-- > 0;) {
        std::array<Level, 2>& now = levels_[i].directions;
        now[0].begin(first[i], second[i]);
        now[1].begin(second[i], first[i]);
        if (i + 1 < levels_.size())
            for (const std::size_t direction : {0U, 1U})
                now[direction].setParents(levels_[i + 1].directions[direction]);
        const int bands = bandsOf(now[0].rows(), searchBand);
        const auto forBoth = [&](auto&& work) {
            workers.run(2 * bands, [&](int task) { work(now[static_cast<std::size_t>(task % 2)], task / 2); });
        };
        forBoth([&](Level& level, int band) { level.searchBandAt(kernels, band); });
        for (int sweep = i == 0 ? finestSweeps : coarseSweeps; sweep > 0; --sweep) {
            forBoth([&](Level& level, int band) { level.sweepBandAt(kernels, band); });
            for (Level& level : now)
                level.endSweep();
        }
        for (Level& level : now)
            level.finish();
    }

    const std::array<Level, 2>& finest = levels_.front().directions;
    const std::array<Field<MotionVector>*, 2> results{&forward, &backward};
    for (Field<MotionVector>* result : results)
        result->resize(first.front().width(), first.front().height());
    const int cells = finest[0].rows() - 1;
    const int bands = bandsOf(cells, densifyBand);
    const std::size_t scratch = densifyScratchSize(finest[0].search().patches.columns);
    weightedSums_.resize(static_cast<std::size_t>(2 * bands) * scratch);
    workers.run(2 * bands, [&](int task) {
        Field<MotionVector>& result = *results[static_cast<std::size_t>(task % 2)];
        const int band = task / 2;
        kernels.densify(finest[static_cast<std::size_t>(task % 2)].search(),
                        weightedSums_.data() + static_cast<std::size_t>(task) * scratch, result.row(0), result.width(),
                        band * densifyBand, std::min((band + 1) * densifyBand, cells));
    });
}

} // namespace flowtide::flow
