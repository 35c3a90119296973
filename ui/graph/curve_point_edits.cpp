#include "ui/graph/curve_point_edits.h"

#include "core/keyframe_rules.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace flowtide::curvePointEdits {

namespace {

constexpr double spacing = graphSettings::minKeyframeSpacing - 1e-9;

bool isInside(double time, const Span& span) {
    return time >= span.kept.lower && time <= span.kept.upper;
}

} // namespace

const SpeedKeyframe* pointNear(const SpeedKeyframes& points, double time, const Span& span) {
    const SpeedKeyframe* nearest = nullptr;
    for (const SpeedKeyframe& point : points) {
        const double away = std::abs(point.time - time);
        if (away >= spacing || !isPlayed(point, span.kept, span.duration)) continue;
        if (!nearest || away < std::abs(nearest->time - time)) nearest = &point;
    }
    return nearest;
}

std::optional<Added> withPoint(const SpeedKeyframes& points, double time, double value, const Span& span) {
    if (!isInside(time, span) || pointNear(points, time, span)) return {};
    Added added{points, {}};
    const Uuid id = Uuid::random();
    added.points.push_back({id, time, value, SpeedKeyframeRole::curve});
    added.ids.insert(id);
    sortByTime(added.points);
    return added;
}

SpeedKeyframes withoutPoints(const SpeedKeyframes& points, const PointSelection::Ids& ids,
                             const CurveEditorAxis& axis) {
    SpeedKeyframes left;
    for (SpeedKeyframe point : points) {
        const bool isChosen = ids.contains(point.id);
        if (isChosen && point.role == SpeedKeyframeRole::curve) continue;
        if (isChosen) point.speed = axis.boundaryValue;
        left.push_back(point);
    }
    if (left.empty() && !points.empty()) left.push_back(points.front());
    return left;
}

SpeedKeyframes withValue(SpeedKeyframes points, const PointSelection::Ids& ids, double value) {
    for (SpeedKeyframe& point : points)
        if (ids.contains(point.id)) point.speed = value;
    return points;
}

SpeedKeyframes copied(const SpeedKeyframes& points, const PointSelection::Ids& ids) {
    SpeedKeyframes chosen;
    for (const SpeedKeyframe& point : points)
        if (ids.contains(point.id)) chosen.push_back(point);
    if (chosen.empty()) return chosen;
    const double first = chosen.front().time;
    for (SpeedKeyframe& point : chosen) {
        point.time -= first;
        point.role = SpeedKeyframeRole::curve;
    }
    return chosen;
}

Added pasted(const SpeedKeyframes& points, const SpeedKeyframes& copied, double time, const Span& span) {
    Added added{points, {}};
    SpeedKeyframes fresh;
    for (SpeedKeyframe copy : copied) {
        copy.id = Uuid::random();
        copy.time += time;
        const bool meetsEdge = std::any_of(points.begin(), points.end(), [&](const SpeedKeyframe& point) {
            return point.role != SpeedKeyframeRole::curve && std::abs(point.time - copy.time) < spacing;
        });
        if (isInside(copy.time, span) && !meetsEdge) fresh.push_back(copy);
    }
    std::erase_if(added.points, [&](const SpeedKeyframe& point) {
        return point.role == SpeedKeyframeRole::curve &&
               std::any_of(fresh.begin(), fresh.end(),
                           [&](const SpeedKeyframe& copy) { return std::abs(copy.time - point.time) < spacing; });
    });
    for (const SpeedKeyframe& copy : fresh) {
        added.points.push_back(copy);
        added.ids.insert(copy.id);
    }
    sortByTime(added.points);
    return added;
}

std::optional<Uuid> steppedSelection(const SpeedKeyframes& points, const PointSelection::Ids& selected, double time,
                                     int step, const Span& span) {
    const SpeedKeyframes played = playedPoints(points, span.kept, span.duration);
    if (played.empty()) return {};
    double from = time;
    bool hasSelection = false;
    for (const SpeedKeyframe& point : played) {
        if (!selected.contains(point.id)) continue;
        from = !hasSelection ? point.time : step < 0 ? std::min(from, point.time) : std::max(from, point.time);
        hasSelection = true;
    }
    const SpeedKeyframe* found = nullptr;
    for (const SpeedKeyframe& point : played) {
        const bool isBeyond = step < 0 ? point.time < from : point.time > from;
        if (!isBeyond && (hasSelection || point.time != from)) continue;
        if (!found || (step < 0 ? point.time > found->time : point.time < found->time)) found = &point;
    }
    if (found) return found->id;
    return step < 0 ? played.front().id : played.back().id;
}

} // namespace flowtide::curvePointEdits
