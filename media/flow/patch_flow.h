// Dense optical flow between two luma pyramids, by matching overlapping patches from coarse to fine.
#pragma once

#include "media/flow/field.h"
#include "media/flow/gray_image.h"
#include "media/flow/kernels/kernels.h"
#include "media/flow/worker_pool.h"

#include <vector>

namespace flowtide::flow {

/// Dense inverse search (Kroeger, Timofte, Dai and Van Gool, "Fast Optical Flow using Dense Inverse Search", 2016) with
/// what it leaves out: candidates are propagated between neighbouring patches (Barnes, Shechtman, Finkelstein and
/// Goldman, "PatchMatch", 2009) and the patches' displacements are regularised on each level before the next one
/// starts. Keeps its memory from one pair to the next.
class PatchFlow {
public:
    PatchFlow();
    ~PatchFlow();

    /// For each pixel of one pyramid's finest level, where it lies in the other: `forward` from the first to the
    /// second. Both pyramids have the same sizes. The result does not depend on the number of workers.
    void estimate(const std::vector<GrayImage>& first, const std::vector<GrayImage>& second, const Kernels& kernels,
                  WorkerPool& workers, Field<MotionVector>& forward, Field<MotionVector>& backward);

private:
    class Level;
    /// Both directions of one level, the first image's first.
    struct LevelPair;

    std::vector<LevelPair> levels_; ///< finest first
    std::vector<float> weightedSums_;
};

} // namespace flowtide::flow
