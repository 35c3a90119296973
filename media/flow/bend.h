// How the motion between two frames bends, seen from the frames around them.
#pragma once

#include "media/flow/field.h"
#include "media/flow/flow_pair.h"

namespace flowtide::flow {

/// Acceleration of what is seen, in half-resolution pixels a pair², one value for each cell of a frame.
using Acceleration = Field<Vector>;

/// What the frame `from` of one pair does between the pairs on both of its sides; both motions start at that frame.
Acceleration acceleration(const DirectedFlow& onwards, const DirectedFlow& backwards);

/// The accelerations at a pair's two frames. One alone would say too little: where frames were dropped or doubled, the
/// motion stumbles, and only both together show that it goes on as before.
struct Bend {
    Acceleration first;
    Acceleration second;
};

/// By how much both places of each pixel lie beside the straight line at a phase; `motion` is the pixels' motion.
void shiftAt(const Bend& bend, const Field<MotionVector>& motion, double phase, WorkerPool& workers,
             Field<MotionVector>& shift);

} // namespace flowtide::flow
