// The optical flow between two frames, both ways, with its confidence, and whether they are a cut.
#pragma once

#include "media/flow/field.h"
#include "media/flow/flow_fill.h"
#include "media/flow/gray_image.h"
#include "media/flow/kernels/kernels.h"
#include "media/flow/patch_flow.h"
#include "media/flow/worker_pool.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace flowtide::flow {

/// A frame's luma at half resolution (first) and at all coarser levels.
using Pyramid = std::vector<GrayImage>;

/// Motion from one frame to the other, on half-resolution luma.
struct DirectedFlow {
    Field<MotionVector> motion;     ///< what could not be matched is filled in
    Field<std::uint8_t> confidence; ///< of the match before filling, 255: certain
    Field<std::uint8_t> visibility; ///< how sure it is that the pixel is seen in the other frame too, 255: certain

    MotionView view() { return {motion.width(), motion.height(), motion.row(0), confidence.row(0), visibility.row(0)}; }
};

/// Everything that the phases of a pair share.
struct FlowPair {
    std::shared_ptr<const Pyramid> first;
    std::shared_ptr<const Pyramid> second;
    DirectedFlow forward;  ///< from the first frame to the second
    DirectedFlow backward; ///< from the second to the first
    bool isCut = false;    ///< the frames show different scenes
};

/// Estimates the flow of pairs of one size: patch matching, the forward-backward consistency check, filling, and a shot
/// boundary where hardly any vector is consistent. Keeps its memory from one pair to the next.
class FlowEstimator {
public:
    FlowEstimator(const Kernels& kernels, WorkerPool& workers)
        : kernels_(kernels)
        , workers_(workers) {}

    /// Both directions, into a pair whose memory is used again. The result does not depend on the number of workers.
    void estimate(std::shared_ptr<const Pyramid> first, std::shared_ptr<const Pyramid> second, FlowPair& pair);

private:
    void checkConsistency(FlowPair& pair);
    void fill(DirectedFlow& flow, const Pyramid& from, const Pyramid& to);

    const Kernels& kernels_;
    WorkerPool& workers_;
    PatchFlow patchFlow_;
    FlowFill fill_;
    Field<MotionVector> filled_;
};

} // namespace flowtide::flow
