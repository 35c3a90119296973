// Where points and curves lie in the graph, and what lies under the pointer.
#pragma once

#include "core/speed_keyframe.h"
#include "core/time.h"
#include "ui/graph/curve_editor_axis.h"
#include "ui/graph/graph_settings.h"
#include "ui/graph/time_axis.h"
#include "ui/point_selection.h"

#include <QPointF>
#include <QRectF>
#include <optional>
#include <span>
#include <vector>

namespace flowtide {

struct CurveGraphGeometry {
    TimeAxis time;
    ValueRange window; ///< the visible values
    bool isLogScale = false;
    double top = 0;    ///< of the plot, pixels
    double height = 1; ///< of the plot, pixels

    double bottom() const { return top + height; }
    QRectF plot() const { return {time.left, top, time.width, height}; }
    double yOf(double value) const;
    /// 0 at the plot's bottom, 1 at its top.
    double heightAt(double y) const { return (bottom() - y) / height; }
    QPointF placeOf(const SpeedKeyframe& point) const { return {time.xOf(point.time), yOf(point.speed)}; }

    friend bool operator==(const CurveGraphGeometry&, const CurveGraphGeometry&) = default;
};

/// Whether a point is played: inside the kept part, or its edge.
bool isPlayed(const SpeedKeyframe& point, const SourceRange& kept, double duration);
/// The points that are played and can be worked with.
SpeedKeyframes playedPoints(const SpeedKeyframes& points, const SourceRange& kept, double duration);

/// The point under a place, the nearest one within the hit radius; of several that overlap there, a selected one.
std::optional<Uuid> pointUnder(QPointF place, const SpeedKeyframes& points, const CurveGraphGeometry& geometry,
                               const PointSelection::Ids& selected);
/// Whether a place is as near to the curve, which is given as a line from left to right.
bool isOnCurve(QPointF place, std::span<const QPointF> line);
/// The points inside a rectangle.
PointSelection::Ids pointsWithin(const QRectF& rect, const SpeedKeyframes& points, const CurveGraphGeometry& geometry);

/// The usual window, widened to the grid line beyond each value outside of it.
ValueRange windowShowing(std::span<const double> values, const CurveEditorAxis& axis);
/// A window widened to just the values outside of it.
ValueRange widenedTo(ValueRange window, std::span<const double> values);
/// On the way from one window to another, `share` 0...1.
ValueRange windowBetween(const ValueRange& from, const ValueRange& to, double share, bool isLogScale);

/// The grid lines whose labels have room, the emphasized one and the outermost first.
std::vector<double> labelledGridValues(const CurveEditorAxis& axis, const CurveGraphGeometry& geometry);

} // namespace flowtide
