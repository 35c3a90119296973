// Dense motion between two luma pyramids, by matching overlapping patches from coarse to fine.
#pragma once

#include "media/flow/field.h"
#include "media/flow/gray_image.h"
#include "media/flow/kernels/kernels.h"
#include "media/flow/worker_pool.h"

#include <vector>

namespace flowtide::flow {

/// For each pixel of one image's finest level, where it lies in the other.
struct PairMotion {
    Field<MotionVector> forward; ///< from the first image to the second
    Field<MotionVector> backward;
};

/// Both pyramids have the same sizes. The result does not depend on the number of workers.
PairMotion patchFlow(const std::vector<GrayImage>& first, const std::vector<GrayImage>& second, const Kernels& kernels,
                     WorkerPool& workers);

} // namespace flowtide::flow
