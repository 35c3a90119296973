#include "ui/panes/point_edits.h"

#include "ui/graph/curve_graph_geometry.h"

#include <algorithm>
#include <cmath>

namespace flowtide::pointEdits {

namespace {

SpeedKeyframe* find(SpeedKeyframes& points, const Uuid& id) {
    const auto found = std::ranges::find(points, id, &SpeedKeyframe::id);
    return found == points.end() ? nullptr : &*found;
}

} // namespace

const SpeedKeyframe* find(const SpeedKeyframes& points, const Uuid& id) {
    const auto found = std::ranges::find(points, id, &SpeedKeyframe::id);
    return found == points.end() ? nullptr : &*found;
}

Place placeOf(const SpeedKeyframes& points, const Uuid& id, SourceRange trim, double duration) {
    Place place;
    for (const SpeedKeyframe& point : points) {
        if (point.role != SpeedKeyframeRole::curve || !isPlayed(point, trim, duration)) continue;
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
