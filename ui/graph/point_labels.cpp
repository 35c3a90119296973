#include "ui/graph/point_labels.h"

#include <algorithm>

namespace flowtide {

namespace {

constexpr double levelPixels = 1.5; ///< a neighbor within this height is level
constexpr double nearBottom = 22;   ///< pixels from the plot's bottom, where there is no room below
constexpr double ascent = 10;       ///< pixels of the text above its baseline
constexpr double descent = 3;       ///< pixels of the text below it
constexpr double betweenLabels = 3; ///< pixels
constexpr double crowded = 10;      ///< pixels between points whose marks overlap

enum class Side { center, left, right };
struct Place {
    Side side;
    double dx;
    double dy;
};

constexpr Place above{Side::center, 0, -12};
constexpr Place below{Side::center, 0, 20};
constexpr Place leftAbove{Side::left, -9, -6};
constexpr Place rightAbove{Side::right, 9, -6};
constexpr Place rightBelow{Side::right, 9, 15};

/// How a curve goes from one point to the next: up, level or down.
int slope(QPointF from, QPointF to) {
    const double rise = from.y() - to.y();
    if (rise > levelPixels) return 1;
    return rise < -levelPixels ? -1 : 0;
}

Place placeFor(int before, int after, double roomBelow) {
    if (roomBelow < nearBottom) {
        if (after == 0 && before != 0) return rightAbove;
        if (before == 0 && after != 0) return leftAbove;
        return above;
    }
    if (before == 0 && after > 0) return rightBelow;
    if (before < 0 && after > 0) return below;
    if (before > 0 && after > 0) return leftAbove;
    if (before < 0) return rightAbove;
    return above;
}

} // namespace

bool isCrowded(double before, double place, double after) {
    return place - before < crowded && after - place < crowded;
}

std::vector<PointLabel> placedLabels(const std::vector<LabelledPoint>& points, double plotLeft, double plotBottom) {
    std::vector<PointLabel> wanted;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const LabelledPoint& point = points[i];
        if (point.isSilent) continue;
        const int before = i > 0 ? slope(points[i - 1].place, point.place) : 0;
        const int after = i + 1 < points.size() ? slope(point.place, points[i + 1].place) : 0;
        const Place place = placeFor(before, after, plotBottom - point.place.y());
        double left = point.place.x() + place.dx;
        if (place.side == Side::center) left -= point.textWidth / 2;
        if (place.side == Side::left) left -= point.textWidth;
        left = std::max(left, plotLeft);
        const double base = point.place.y() + place.dy;
        wanted.push_back({i, {left, base}, QRectF(left, base - ascent, point.textWidth, ascent + descent)});
    }
    std::vector<PointLabel> placed;
    for (const bool selected : {true, false})
        for (const PointLabel& label : wanted) {
            if (points[label.point].isSelected != selected) continue;
            const QRectF room = label.box.adjusted(-betweenLabels, 0, betweenLabels, 0);
            const bool isFree = std::none_of(placed.begin(), placed.end(),
                                             [&](const PointLabel& other) { return other.box.intersects(room); });
            if (selected || isFree) placed.push_back(label);
        }
    return placed;
}

} // namespace flowtide
