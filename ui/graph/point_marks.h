// How the points of the graph look.
#pragma once

#include <QColor>
#include <QPainter>
#include <QPixmap>
#include <QPointF>
#include <array>
#include <cstddef>

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

/// The marks of one color in one painting. Each is drawn once for every scale, and copied from then on.
class PointMarks {
public:
    PointMarks(QPainter& painter, QColor color)
        : painter_(painter)
        , color_(color) {}

    void draw(QPointF place, PointMark mark);

private:
    QPainter& painter_;
    QColor color_;
    // To look one up in Qt's cache costs more than to copy it.
    std::array<QPixmap, static_cast<std::size_t>(PointMark::outside) + 1> pixmaps_;
};

/// A point's value on a ground that keeps the curve off it, drawn once for each text and scale. `baseline`: its left
/// end.
void drawPointLabel(QPainter& painter, QPointF baseline, const QString& words, bool isSelected);

} // namespace flowtide
