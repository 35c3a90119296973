// What typing does to the points of a curve, on values.
#pragma once

#include "core/speed_keyframe.h"
#include "core/time.h"

namespace flowtide::pointEdits {

/// Points stay this far apart, source seconds.
constexpr double leastDistance = 0.01;

/// Where a point stands among the user's points in the kept part of the clip.
struct Place {
    int number = 0; ///< 1 for the first; 0: it is not one of them
    int count = 0;
};
Place placeOf(const SpeedKeyframes& points, const Uuid& id, SourceRange trim, double duration);

const SpeedKeyframe* find(const SpeedKeyframes& points, const Uuid& id);

enum class TimeRefusal { none, outsideClip, nearAnother };
/// Whether a point can stand at a time. `duration`: of the clip, seconds.
TimeRefusal refusalOfTime(const SpeedKeyframes& points, const Uuid& id, double time, double duration);

SpeedKeyframes withTime(SpeedKeyframes points, const Uuid& id, double time);
SpeedKeyframes withValue(SpeedKeyframes points, const Uuid& id, double value);

} // namespace flowtide::pointEdits
