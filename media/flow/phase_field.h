// Where each pixel of an in-between frame comes from.
#pragma once

#include "media/flow/flow_pair.h"

namespace flowtide::flow {

/// For one phase, at half resolution: the motion from the first frame to the second through each pixel of the
/// in-between frame, and how much of the pixel the second frame gives.
struct PhaseField {
    Field<Vector> motion;
    Field<float> secondShare; ///< 0...1
};

/// `phase`: 0 (the first frame) to 1 (the second), exclusive.
PhaseField phaseField(const FlowPair& pair, float phase);

} // namespace flowtide::flow
