// Draws the graph from values.
#pragma once

#include "ui/graph/curve_graph_geometry.h"

#include <QPainter>
#include <functional>
#include <optional>
#include <span>
#include <vector>

namespace flowtide {

/// Everything that the graph shows. Pixels are the graph's own.
struct CurveGraphPicture {
    struct Band {
        SourceRange range;
        bool isOn = true;
    };
    struct OutputTick {
        double x = 0;
        bool isTall = false;
    };
    /// The points in the hand and where they came from.
    struct Drag {
        SpeedKeyframes before;
        std::vector<QPointF> curveBefore;
        PointSelection::Ids moved;
        Uuid grabbed;
        std::optional<double> snappedTo;
        std::optional<double> blockedAt; ///< source seconds
    };

    CurveEditorAxis axis;
    CurveGraphGeometry geometry;
    SourceRange trim;
    SpeedKeyframes points;
    std::vector<QPointF> edited; ///< the curve that the points make
    std::vector<QPointF> seen;   ///< the one that will be seen, where it is another one
    std::vector<Band> bands;
    std::vector<OutputTick> ticks;
    std::optional<double> guideSpeed;
    PointSelection::Ids selected;
    std::optional<Uuid> hovered;
    std::optional<Uuid> keyboardPoint; ///< what the keyboard works on, while it does
    std::optional<Drag> drag;
    QRectF marquee;
};

/// A curve as a line with a vertex for every pixel and every point. `from`, `to`: source seconds.
std::vector<QPointF> curveLine(const std::function<double(double seconds)>& value, const SpeedKeyframes& points,
                               const CurveGraphGeometry& geometry, SourceRange range);

/// `rect`: the whole graph; `clip`: what has to be drawn.
void paintCurveGraph(QPainter& painter, const CurveGraphPicture& picture, const QRectF& rect, const QRectF& clip);

} // namespace flowtide
