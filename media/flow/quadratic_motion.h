// Quadratic motion: the acceleration between two frames, estimated from the pairs around them, and the displacement
// that it adds to the straight line. Method: Xu, Siyao, Sun, Yin and Yang, "Quadratic Video Interpolation", 2019.
#pragma once

#include "media/flow/field.h"
#include "media/flow/flow_pair.h"

namespace flowtide::flow {

/// A displacement or an acceleration, in half-resolution pixels.
struct Vector {
    float x = 0;
    float y = 0;
    friend Vector operator+(Vector a, Vector b) { return {a.x + b.x, a.y + b.y}; }
    friend Vector operator*(float factor, Vector v) { return {factor * v.x, factor * v.y}; }
};

/// Acceleration of what is seen, in half-resolution pixels a pair², one value for each cell of a frame.
using Acceleration = Field<Vector>;

/// The second difference of the positions of what a frame shows, x(1) - 2 x(0) + x(-1): `onwards` and `backwards` are
/// the motions from that frame to the next and to the previous one. Weighted least squares with the confidences, drawn
/// towards no acceleration where they are low.
Acceleration acceleration(const DirectedFlow& onwards, const DirectedFlow& backwards);

/// The accelerations at a pair's two frames. One alone would say too little: where frames were dropped or doubled, the
/// motion stumbles, and only both together show that it goes on as before.
struct PairAcceleration {
    Acceleration first;
    Acceleration second;
};

/// What is added to each pixel's places in both frames when its path from one to the other isn't straight: a t (1 - t)
/// / 2 at phase t. `motion` is the pixels' motion from the first frame to the second.
void quadraticShift(const PairAcceleration& accelerations, const Field<MotionVector>& motion, double phase,
                    WorkerPool& workers, Field<MotionVector>& shift);

} // namespace flowtide::flow
