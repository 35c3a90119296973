// Dense motion between two luma pyramids, by matching overlapping patches from coarse to fine.
#pragma once

#include "media/flow/field.h"
#include "media/flow/gray_image.h"
#include "media/flow/kernels/kernels.h"
#include "media/flow/worker_pool.h"

#include <vector>

namespace flowtide::flow {

/// Finds the motion between images of one size; keeps its memory from one pair to the next.
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
    std::vector<float> votes_;
};

} // namespace flowtide::flow
