// Which value a height in the graph stands for, inside its edges and beyond them.
#pragma once

#include "ui/graph/curve_editor_axis.h"

namespace flowtide {

/// The place of a value in a window, 0 (bottom) to 1 (top); beyond them outside of it.
double normalizedHeight(double value, const ValueRange& window, bool isLogScale);
/// The value at such a place.
double valueAtHeight(double normalized, const ValueRange& window, bool isLogScale);

/// The mapping in force during one drag of values.
struct CurveDragScale {
    CurveEditorAxis axis;
    ValueRange window;    ///< visible when the drag began
    double height = 1;    ///< of the graph, pixels
    double stepAbove = 0; ///< change per pixel of drag above the top; in decades on a log scale
    double stepBelow = 0; ///< the same below the bottom

    /// Pixels beyond an edge within which a drag reaches the limit at the latest: there is not more room below the
    /// graph.
    static constexpr double farthestPixels = 120;

    /// Beyond the edges values go on at the rate that they have inside, faster where the limit is far.
    static CurveDragScale of(const CurveEditorAxis& axis, const ValueRange& window, double height);

    /// `normalizedHeight`: 0 at the bottom edge, 1 at the top. Within the axis' limits.
    double value(double normalizedHeight) const;
    /// The inverse inside the window.
    double normalized(double value) const;
};

struct SnappedValue {
    double value = 0;
    bool isSnapped = false;
};

/// Share of the graph's height within which a dragged value takes that of a grid line.
constexpr double snapBand = 0.02;

/// The value of a drag at that height; of the nearest grid line in view, if it is near enough.
SnappedValue snappedSpeed(double normalizedHeight, const CurveDragScale& scale, bool bypassesSnapping);

/// A value that many steps of the grid away: of those between the grid lines around it.
double nudgedValue(double value, double gridSteps, const CurveEditorAxis& axis);

} // namespace flowtide
