// Cleaning, boundaries, evaluation.
#include "editor/curve_points.h"

#include "core/clamp.h"
#include "core/distinct_ids.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <vector>

namespace flowtide {

namespace {

void keepUsable(SpeedKeyframes& points, const CurveDomain& domain) {
    std::erase_if(points,
                  [](const SpeedKeyframe& point) { return !std::isfinite(point.time) || !std::isfinite(point.speed); });
    if (!haveDistinctIDs(points)) {
        std::set<Uuid> seen;
        std::erase_if(points, [&](const SpeedKeyframe& point) { return !seen.insert(point.id).second; });
    }
    for (SpeedKeyframe& point : points) {
        point.time = clamped(point.time, 0, domain.duration);
        point.speed = clamped(point.speed, domain.limits.lower, domain.limits.upper);
    }
    sortByTime(points);
}

} // namespace

std::optional<SpeedKeyframes> boundedPoints(SpeedKeyframes points, SourceRange trim, const CurveDomain& domain,
                                            std::optional<KeyframeRules::BoundaryValues> boundaryValues) {
    keepUsable(points, domain);
    const auto valueAt = [&](double time) {
        return points.empty() ? domain.restValue : CurveEngine::value(time, points, domain.smoothing, domain.limits);
    };
    if (!boundaryValues) boundaryValues = KeyframeRules::BoundaryValues{valueAt(trim.lower), valueAt(trim.upper)};
    SpeedKeyframes bounded =
        KeyframeRules::applyingTrimBoundaries(points, domain.duration, trim, domain.restValue, boundaryValues);
    if (bounded.empty()) { // whatever the points at a former trim said goes on
        bounded = KeyframeRules::curveForSourceRange({}, domain.duration, trim, boundaryValues->start);
        bounded.back().speed = boundaryValues->end;
    }
    sortByTime(bounded);
    if (bounded.size() > mostKeyframes) return std::nullopt;
    return bounded;
}

SpeedKeyframes playedCurve(const SpeedKeyframes& points, SourceRange trim, const CurveDomain& domain) {
    SpeedKeyframes played = KeyframeRules::curveForSourceRange(points, domain.duration, trim, domain.restValue);
    if (!domain.isHeldAtEnds || points.empty()) return played;
    const auto isOurs = [&](const SpeedKeyframe& end) {
        return std::any_of(points.begin(), points.end(),
                           [&](const SpeedKeyframe& point) { return point.id == end.id; });
    };
    if (!isOurs(played.back())) played.pop_back();
    if (!played.empty() && !isOurs(played.front())) played.erase(played.begin());
    return played.empty() ? points : played;
}

double playedValue(const SpeedKeyframes& points, double time, SourceRange trim, const CurveDomain& domain) {
    const bool isKept = time >= trim.lower && time <= trim.upper;
    return CurveEngine::value(time, isKept ? playedCurve(points, trim, domain) : points, domain.smoothing,
                              domain.limits);
}

} // namespace flowtide
