// The flow brought to the time of an in-between frame: where each of its pixels comes from, and how much from which.
#pragma once

#include "media/flow/flow_pair.h"
#include "media/flow/quadratic_motion.h"

#include <optional>

namespace flowtide::flow {

/// For one phase, at half resolution: the motion from the first frame to the second through each pixel of the
/// in-between frame, and how much of the pixel the second frame gives.
struct PhaseField {
    Field<MotionVector> motion;
    Field<MotionVector> shift;        ///< by which both places lie beside the straight line
    bool isShifted = false;           ///< whether they do
    Field<std::int16_t> secondWeight; ///< in fractionUnits

    PhasePlanes planes() {
        return {motion.width(), motion.height(), motion.row(0), isShifted ? shift.row(0) : nullptr,
                secondWeight.row(0)};
    }
};

/// Intermediate flow by forward splatting, as in Baker, Scharstein, Lewis, Roth, Black and Szeliski, "A Database and
/// Evaluation Methodology for Optical Flow", 2011 (its interpolation algorithm), from both frames, with blend weights
/// by occlusion. For pairs of one size; keeps its memory from one phase to the next.
class PhaseEstimator {
public:
    PhaseEstimator(const Kernels& kernels, WorkerPool& workers)
        : kernels_(kernels)
        , workers_(workers) {}

    /// `phase`: 0 (the first frame) to 1 (the second), exclusive. The result is good until the next call.
    PhaseField& at(FlowPair& pair, const std::optional<PairAcceleration>& accelerations, double phase);

private:
    /// One direction's motion at a phase.
    struct Projected {
        Field<std::uint64_t> cells;
        Field<MotionVector> motion;
        Field<std::uint8_t> confidence;

        Projection view() { return {motion.row(0), confidence.row(0)}; }
    };

    void project(DirectedFlow& flow, int phase, bool reversed, Projected& result);

    const Kernels& kernels_;
    WorkerPool& workers_;
    Projected forward_;
    Projected backward_;
    Field<MotionVector> fused_;
    PhaseField field_;
};

} // namespace flowtide::flow
