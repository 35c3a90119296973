// Filling of vectors that the consistency check does not trust, such as those of what the other frame hides.
#pragma once

#include "media/flow/field.h"
#include "media/flow/gray_image.h"
#include "media/flow/kernels/kernels.h"
#include "media/flow/worker_pool.h"

#include <vector>

namespace flowtide::flow {

/// Pull-push interpolation of scattered data (Gortler, Grzeszczuk, Szeliski and Cohen, "The Lumigraph", 1996), weighted
/// by confidence; its push is a joint bilateral upsampling guided by luma (Kopf, Cohen, Lischinski and Uyttendaele,
/// 2007). Vectors that match the images far better than the filling stay. Keeps its memory from one field to the next.
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
