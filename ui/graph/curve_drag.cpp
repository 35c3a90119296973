#include "ui/graph/curve_drag.h"

#include "core/keyframe_rules.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace flowtide {

CurveDrag::CurveDrag(SpeedKeyframes points, const PointSelection::Ids& moved, const Uuid& grabbed, SourceRange kept,
                     double duration, const CurveEditorAxis& axis)
    : points_(std::move(points))
    , limits_(axis.limits)
    , isLogScale_(axis.isLogScale) {
    for (const SpeedKeyframe& point : points_) {
        if (point.id == grabbed) grabbed_ = point;
        if (moved.contains(point.id) && isPlayed(point, kept, duration)) moved_.insert(point.id);
    }
    findTimeLimits(kept, duration);
}

void CurveDrag::findTimeLimits(const SourceRange& kept, double duration) {
    constexpr double spacing = graphSettings::minKeyframeSpacing;
    const auto moves = [&](const SpeedKeyframe& point) {
        return point.role == SpeedKeyframeRole::curve && moved_.contains(point.id);
    };
    mostBack_ = -std::numeric_limits<double>::infinity();
    mostAhead_ = std::numeric_limits<double>::infinity();
    bool anyMoves = false;
    // The clip's own ends may be reached; a neighbor not quite.
    double limit = kept.lower;
    double stop = kept.lower;
    for (const SpeedKeyframe& point : points_) {
        if (!isPlayed(point, kept, duration)) continue;
        if (!moves(point)) {
            stop = point.time;
            limit = point.time + spacing;
        } else {
            anyMoves = true;
            if (limit - point.time > mostBack_) backStop_ = stop;
            mostBack_ = std::max(mostBack_, limit - point.time);
        }
    }
    limit = stop = kept.upper;
    for (std::size_t i = points_.size(); i-- > 0;) {
        const SpeedKeyframe& point = points_[i];
        if (!isPlayed(point, kept, duration)) continue;
        if (!moves(point)) {
            stop = point.time;
            limit = point.time - spacing;
        } else {
            if (limit - point.time < mostAhead_) aheadStop_ = stop;
            mostAhead_ = std::min(mostAhead_, limit - point.time);
        }
    }
    // Points that were nearer already when they came may stay so.
    mostBack_ = anyMoves ? std::min(mostBack_, 0.0) : 0;
    mostAhead_ = anyMoves ? std::max(mostAhead_, 0.0) : 0;
}

CurveDrag::Result CurveDrag::moved(double wantedShift, double grabbedValue) const {
    Result result{points_, std::clamp(wantedShift, mostBack_, mostAhead_), {}};
    if (grabbed_.role == SpeedKeyframeRole::curve) {
        if (wantedShift < mostBack_) result.blockedAt = backStop_;
        if (wantedShift > mostAhead_) result.blockedAt = aheadStop_;
    }

    double change = isLogScale_ ? grabbedValue / grabbed_.speed : grabbedValue - grabbed_.speed;
    for (const SpeedKeyframe& point : points_) {
        if (!moved_.contains(point.id)) continue;
        const double down = isLogScale_ ? limits_.lower / point.speed : limits_.lower - point.speed;
        const double up = isLogScale_ ? limits_.upper / point.speed : limits_.upper - point.speed;
        change = std::clamp(change, std::min(down, up), std::max(down, up));
    }
    for (SpeedKeyframe& point : result.points) {
        if (!moved_.contains(point.id)) continue;
        if (point.role == SpeedKeyframeRole::curve) point.time += result.shift;
        const double value = isLogScale_ ? point.speed * change : point.speed + change;
        // Exactly what was asked for, not what rounding makes of it.
        point.speed =
            std::clamp(point.id == grabbed_.id && std::abs(value - grabbedValue) < 1e-9 ? grabbedValue : value,
                       limits_.lower, limits_.upper);
    }
    sortByTime(result.points);
    return result;
}

} // namespace flowtide
