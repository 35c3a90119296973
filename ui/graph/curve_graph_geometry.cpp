#include "ui/graph/curve_graph_geometry.h"

#include "core/keyframe_rules.h"
#include "ui/graph/curve_drag_scale.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace flowtide {

namespace {

constexpr double pointDiameter = 10; ///< pixels: two that are nearer overlap
constexpr double labelHeight = 13;   ///< pixels from one axis label to the next

double distance(QPointF a, QPointF b) {
    return std::hypot(a.x() - b.x(), a.y() - b.y());
}

double distanceToSegment(QPointF place, QPointF a, QPointF b) {
    const QPointF along = b - a;
    const double length2 = QPointF::dotProduct(along, along);
    const double share = length2 > 0 ? std::clamp(QPointF::dotProduct(place - a, along) / length2, 0.0, 1.0) : 0;
    return distance(place, a + share * along);
}

} // namespace

double CurveGraphGeometry::yOf(double value) const {
    return bottom() - normalizedHeight(value, window, isLogScale) * height;
}

bool isPlayed(const SpeedKeyframe& point, const SourceRange& kept, double duration) {
    using namespace KeyframeRules;
    if (point.role != SpeedKeyframeRole::curve) return true;
    const bool trimmedAtStart = kept.lower > boundaryMatchTolerance;
    const bool trimmedAtEnd = kept.upper < duration - boundaryMatchTolerance;
    return (!trimmedAtStart || point.time > kept.lower + interiorMargin) &&
           (!trimmedAtEnd || point.time < kept.upper - interiorMargin);
}

SpeedKeyframes playedPoints(const SpeedKeyframes& points, const SourceRange& kept, double duration) {
    SpeedKeyframes played;
    std::copy_if(points.begin(), points.end(), std::back_inserter(played),
                 [&](const SpeedKeyframe& point) { return isPlayed(point, kept, duration); });
    return played;
}

std::optional<Uuid> pointUnder(QPointF place, const SpeedKeyframes& points, const CurveGraphGeometry& geometry,
                               const PointSelection::Ids& selected) {
    const SpeedKeyframe* nearest = nullptr;
    double least = graphSettings::curveHitRadius;
    for (const SpeedKeyframe& point : points) {
        const double away = distance(place, geometry.placeOf(point));
        if (away > least || !geometry.time.shows(point.time)) continue;
        least = away;
        nearest = &point;
    }
    if (!nearest) return {};
    for (const SpeedKeyframe& point : points)
        if (selected.contains(point.id) &&
            distance(geometry.placeOf(point), geometry.placeOf(*nearest)) < pointDiameter &&
            distance(place, geometry.placeOf(point)) <= graphSettings::curveHitRadius)
            return point.id;
    return nearest->id;
}

bool isOnCurve(QPointF place, std::span<const QPointF> line) {
    constexpr double radius = graphSettings::curveHitRadius;
    for (std::size_t i = 1; i < line.size(); ++i) {
        if (line[i].x() < place.x() - radius || line[i - 1].x() > place.x() + radius) continue;
        if (distanceToSegment(place, line[i - 1], line[i]) <= radius) return true;
    }
    return false;
}

PointSelection::Ids pointsWithin(const QRectF& rect, const SpeedKeyframes& points, const CurveGraphGeometry& geometry) {
    PointSelection::Ids ids;
    const QRectF area = rect.normalized();
    for (const SpeedKeyframe& point : points)
        if (area.contains(geometry.placeOf(point))) ids.insert(point.id);
    return ids;
}

ValueRange windowShowing(std::span<const double> values, const CurveEditorAxis& axis) {
    ValueRange window = axis.usualWindow();
    for (const double value : values) {
        if (value > window.upper) {
            const auto line = std::lower_bound(axis.gridValues.begin(), axis.gridValues.end(), value);
            window.upper = line == axis.gridValues.end() ? axis.limits.upper : *line;
        } else if (value < window.lower) {
            const auto line = std::upper_bound(axis.gridValues.begin(), axis.gridValues.end(), value);
            window.lower = line == axis.gridValues.begin() ? axis.limits.lower : *std::prev(line);
        }
    }
    return window;
}

ValueRange widenedTo(ValueRange window, std::span<const double> values) {
    for (const double value : values) {
        window.lower = std::min(window.lower, value);
        window.upper = std::max(window.upper, value);
    }
    return window;
}

ValueRange windowBetween(const ValueRange& from, const ValueRange& to, double share, bool isLogScale) {
    const auto between = [&](double a, double b) { return valueAtHeight(share, {a, b}, isLogScale); };
    return {between(from.lower, to.lower), between(from.upper, to.upper)};
}

std::vector<double> labelledGridValues(const CurveEditorAxis& axis, const CurveGraphGeometry& geometry) {
    std::vector<double> inView;
    std::copy_if(axis.gridValues.begin(), axis.gridValues.end(), std::back_inserter(inView), [&](double value) {
        const double height = normalizedHeight(value, geometry.window, geometry.isLogScale);
        return height > -1e-6 && height < 1 + 1e-6;
    });
    if (inView.empty()) return {};
    std::vector<double> order{axis.emphasizedGridValue, inView.front(), inView.back()};
    order.insert(order.end(), inView.begin(), inView.end());
    std::vector<double> labelled;
    for (const double value : order) {
        const bool isInView = std::find(inView.begin(), inView.end(), value) != inView.end();
        const bool hasRoom = std::none_of(labelled.begin(), labelled.end(), [&](double other) {
            return std::abs(geometry.yOf(other) - geometry.yOf(value)) < labelHeight;
        });
        if (isInView && hasRoom) labelled.push_back(value);
    }
    return labelled;
}

} // namespace flowtide
