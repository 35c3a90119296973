#include "ui/panes/point_edits.h"

#include "core/keyframe_rules.h"

#include <algorithm>
#include <cmath>

namespace flowtide::pointEdits {

namespace {

constexpr double trimTolerance = 1e-6;

SpeedKeyframe* find(SpeedKeyframes& points, const Uuid& id) {
    const auto found = std::ranges::find(points, id, &SpeedKeyframe::id);
    return found == points.end() ? nullptr : &*found;
}

} // namespace

const SpeedKeyframe* find(const SpeedKeyframes& points, const Uuid& id) {
    const auto found = std::ranges::find(points, id, &SpeedKeyframe::id);
    return found == points.end() ? nullptr : &*found;
}

Place placeOf(const SpeedKeyframes& points, const Uuid& id, SourceRange trim) {
    Place place;
    const auto trimPoint = [&](SpeedKeyframeRole role) {
        return std::ranges::find(points, role, &SpeedKeyframe::role);
    };
    const bool isTrimmedAtStart = trimPoint(SpeedKeyframeRole::trimStart) != points.end();
    const bool isTrimmedAtEnd = trimPoint(SpeedKeyframeRole::trimEnd) != points.end();
    for (const SpeedKeyframe& point : points) {
        // Under a trim's own point another one has no part in the curve.
        const double fromStart = isTrimmedAtStart ? KeyframeRules::interiorMargin : -trimTolerance;
        const double fromEnd = isTrimmedAtEnd ? KeyframeRules::interiorMargin : -trimTolerance;
        const bool isInside = point.time - trim.lower > fromStart && trim.upper - point.time > fromEnd;
        if (point.role != SpeedKeyframeRole::curve || !isInside) continue;
        ++place.count;
        if (point.id == id) place.number = place.count;
    }
    return place;
}

TimeRefusal refusalOfTime(const SpeedKeyframes& points, const Uuid& id, double time, double duration) {
    if (!(time >= 0 && time <= duration)) return TimeRefusal::outsideClip;
    const bool isNear = std::ranges::any_of(points, [&](const SpeedKeyframe& point) {
        return point.id != id && std::abs(point.time - time) < leastDistance;
    });
    return isNear ? TimeRefusal::nearAnother : TimeRefusal::none;
}

SpeedKeyframes withTime(SpeedKeyframes points, const Uuid& id, double time) {
    if (SpeedKeyframe* point = find(points, id)) point->time = time;
    return points;
}

SpeedKeyframes withValue(SpeedKeyframes points, const Uuid& id, double value) {
    if (SpeedKeyframe* point = find(points, id)) point->speed = value;
    return points;
}

} // namespace flowtide::pointEdits
