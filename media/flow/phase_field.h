// Where each pixel of an in-between frame comes from.
#pragma once

#include "media/flow/bend.h"
#include "media/flow/flow_pair.h"

#include <optional>

namespace flowtide::flow {

/// For one phase, at half resolution: the motion from the first frame to the second through each pixel of the
/// in-between frame, and how much of the pixel the second frame gives.
struct PhaseField {
    Field<MotionVector> motion;
    Field<MotionVector> shift;       ///< by which both places lie beside the straight line; empty: nowhere
    Field<std::int16_t> secondShare; ///< in shareUnits

    PhasePlanes planes() {
        return {motion.width(), motion.height(), motion.row(0), shift.width() > 0 ? shift.row(0) : nullptr,
                secondShare.row(0)};
    }
};

/// `phase`: 0 (the first frame) to 1 (the second), exclusive.
PhaseField phaseField(FlowPair& pair, const std::optional<Bend>& bend, double phase, const Kernels& kernels,
                      WorkerPool& workers);

} // namespace flowtide::flow
