// How the points of the graph look.
#pragma once

#include <QColor>
#include <QPainter>
#include <QPointF>

namespace flowtide {

enum class PointMark {
    plain,
    hovered,
    hoverHalo, ///< behind the point, as the other halos and rings
    selected,
    dragHalo,
    keyboardRing,
    edge, ///< of the trim
    selectedEdge,
    former, ///< where a dragged point came from
    outside ///< of the trim
};

/// Drawn once for each color and scale, and copied from then on.
void drawPointMark(QPainter& painter, QPointF place, PointMark mark, QColor color);

/// A point's value on a ground that keeps the curve off it, drawn once for each text and scale. `baseline`: its left
/// end.
void drawPointLabel(QPainter& painter, QPointF baseline, const QString& words, bool isSelected);

} // namespace flowtide
