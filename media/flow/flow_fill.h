// Filling of vectors that cannot be trusted.
#pragma once

#include "media/flow/field.h"
#include "media/flow/gray_image.h"
#include "media/flow/kernels/kernels.h"
#include "media/flow/worker_pool.h"

#include <vector>

namespace flowtide::flow {

/// Replaces vectors of low confidence by what surrounds them, likely luma counting more; found vectors that fit the
/// images far better than the filling stay. Keeps its memory from one field to the next.
class FlowFill {
public:
    FlowFill();
    ~FlowFill();

    /// `result` gets the motion of `flow`, filled.
    void fill(const MotionView& flow, const GrayImage& from, const GrayImage& to, const Kernels& kernels,
              WorkerPool& workers, Field<MotionVector>& result);

private:
    class Level;
    std::vector<Level> levels_;
    Field<MotionVector> filled_;
};

} // namespace flowtide::flow
