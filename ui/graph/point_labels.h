// Where the values of points are written, so that neither the curve nor each other strikes them through.
#pragma once

#include <QPointF>
#include <QRectF>
#include <vector>

namespace flowtide {

/// A point as the placing of its label sees it; pixels.
struct LabelledPoint {
    QPointF place;
    double textWidth = 0;
    bool isSelected = false;
    bool isSilent = false; ///< has no label, as the edges of the trim
};

struct PointLabel {
    std::size_t point = 0; ///< which one of the points
    QPointF baseline;      ///< left end
    QRectF box;
};

/// Whether points lie so densely around the middle one of three that none can be told which label is its own: pixels
/// from left to right.
bool isCrowded(double before, double place, double after);

/// `points` from left to right. None reaches left of the plot, where its axis is; labels that would touch another one
/// are left out, those of selected points never.
std::vector<PointLabel> placedLabels(const std::vector<LabelledPoint>& points, double plotLeft, double plotBottom);

} // namespace flowtide
