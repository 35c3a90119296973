#include "ui/graph/curve_drag_scale.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace flowtide {

namespace {

/// Where distances on the axis are measured.
double place(double value, bool isLogScale) {
    return isLogScale ? std::log10(value) : value;
}

double valueOf(double place, bool isLogScale) {
    return isLogScale ? std::pow(10, place) : place;
}

} // namespace

double normalizedHeight(double value, const ValueRange& window, bool isLogScale) {
    const double low = place(window.lower, isLogScale);
    const double high = place(window.upper, isLogScale);
    return (place(value, isLogScale) - low) / (high - low);
}

double valueAtHeight(double normalized, const ValueRange& window, bool isLogScale) {
    const double low = place(window.lower, isLogScale);
    const double high = place(window.upper, isLogScale);
    return valueOf(low + (high - low) * normalized, isLogScale);
}

CurveDragScale CurveDragScale::of(const CurveEditorAxis& axis, const ValueRange& window, double height) {
    const double low = place(window.lower, axis.isLogScale);
    const double high = place(window.upper, axis.isLogScale);
    const double inside = (high - low) / height;
    const double above = place(axis.limits.upper, axis.isLogScale) - high;
    const double below = low - place(axis.limits.lower, axis.isLogScale);
    return {axis, window, height, std::max(inside, above / farthestPixels), std::max(inside, below / farthestPixels)};
}

double CurveDragScale::value(double normalizedHeight) const {
    double result = 0;
    if (normalizedHeight > 1) {
        const double top = place(std::min(window.upper, axis.limits.upper), axis.isLogScale);
        result = valueOf(top + (normalizedHeight - 1) * height * stepAbove, axis.isLogScale);
    } else if (normalizedHeight < 0) {
        const double bottom = place(window.lower, axis.isLogScale);
        result = valueOf(bottom + normalizedHeight * height * stepBelow, axis.isLogScale);
    } else {
        result = valueAtHeight(normalizedHeight, window, axis.isLogScale);
    }
    return std::clamp(result, axis.limits.lower, axis.limits.upper);
}

double CurveDragScale::normalized(double value) const {
    return normalizedHeight(value, window, axis.isLogScale);
}

SnappedValue snappedSpeed(double normalizedHeight, const CurveDragScale& scale, bool bypassesSnapping) {
    const double value = scale.value(normalizedHeight);
    if (bypassesSnapping) return {value, false};
    const double height = scale.normalized(value);
    constexpr double rounding = 1e-6; // of the edges of a window that has come to rest
    std::optional<double> nearest;
    double distance = snapBand;
    for (const double line : scale.axis.gridValues) {
        const double place = scale.normalized(line);
        if (place < -rounding || place > 1 + rounding) continue;
        const double away = std::abs(place - height);
        if (away > distance) continue;
        distance = away;
        nearest = line;
    }
    return nearest ? SnappedValue{*nearest, true} : SnappedValue{value, false};
}

double nudgedValue(double value, double gridSteps, const CurveEditorAxis& axis) {
    // At a grid line the step is that of the side to which it goes.
    const auto& grid = axis.gridValues;
    auto upper = gridSteps > 0 ? std::upper_bound(grid.begin(), grid.end(), value)
                               : std::lower_bound(grid.begin(), grid.end(), value);
    if (upper == grid.begin()) ++upper;
    if (upper == grid.end()) --upper;
    const ValueRange step{*std::prev(upper), *upper};
    const double place = normalizedHeight(value, step, axis.isLogScale) + gridSteps;
    return std::clamp(valueAtHeight(place, step, axis.isLogScale), axis.limits.lower, axis.limits.upper);
}

} // namespace flowtide
