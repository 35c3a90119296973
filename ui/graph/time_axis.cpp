#include "ui/graph/time_axis.h"

#include <QCoreApplication>
#include <algorithm>
#include <array>
#include <cmath>

namespace flowtide {

namespace {

constexpr double labelDistance = 64; ///< pixels
constexpr double tickDistance = 6;   ///< pixels
constexpr double edgePanPixels = 24; ///< from an edge, where panning begins
constexpr double fastestPan = 1.5;   ///< axis widths a second

constexpr double minute = 60;
constexpr double hour = 3600;
constexpr std::array steps{
    RulerSteps{0.1, 5},         RulerSteps{0.2, 4},        RulerSteps{0.5, 5},        RulerSteps{1, 5},
    RulerSteps{2, 4},           RulerSteps{5, 5},          RulerSteps{10, 5},         RulerSteps{30, 6},
    RulerSteps{minute, 6},      RulerSteps{2 * minute, 4}, RulerSteps{5 * minute, 5}, RulerSteps{10 * minute, 5},
    RulerSteps{30 * minute, 6}, RulerSteps{hour, 6},       RulerSteps{2 * hour, 4},   RulerSteps{6 * hour, 6},
    RulerSteps{12 * hour, 6},   RulerSteps{24 * hour, 6},
};

constexpr std::array tickSteps{0.1, 0.25, 0.5, 1.0, 2.0, 5.0, 10.0};

TimeAxis placed(TimeAxis axis, double start) {
    axis.start = std::clamp(start, 0.0, std::max(axis.duration - axis.span, 0.0));
    return axis;
}

} // namespace

TimeAxis TimeAxis::of(double duration, double left, double width, double zoom, double center) {
    TimeAxis axis{duration, left, std::max(width, 1.0), 0, duration > 0 ? duration / std::max(zoom, 1.0) : 1};
    return placed(axis, center * duration - axis.span / 2);
}

TimeAxis TimeAxis::zoomedAround(double x, double factor, double largestZoom) const {
    const double anchor = timeAt(x);
    TimeAxis axis = *this;
    axis.span = std::clamp(span / factor, duration / largestZoom, duration);
    return placed(axis, anchor - (x - left) / width * axis.span);
}

TimeAxis TimeAxis::panned(double seconds) const {
    return placed(*this, start + seconds);
}

RulerSteps rulerSteps(double pixelsPerSecond) {
    for (const RulerSteps& step : steps)
        if (step.major * pixelsPerSecond >= labelDistance) return step;
    RulerSteps last = steps.back();
    while (last.major * pixelsPerSecond < labelDistance && std::isfinite(last.major))
        last.major *= 2;
    return last;
}

QString rulerLabel(double seconds, double step) {
    const int decimals = step < 1 ? 1 : 0;
    if (seconds < minute - 1e-9) {
        const bool isWhole = std::abs(seconds - std::round(seconds)) < 1e-9;
        return QCoreApplication::translate("TimeAxis", "%1 s").arg(seconds, 0, 'f', isWhole ? 0 : 1);
    }
    const auto whole = static_cast<qint64>(std::floor(seconds + 1e-9));
    const double rest = std::max(seconds - static_cast<double>(whole - whole % 60), 0.0);
    const QString tail = QStringLiteral("%1").arg(rest, decimals ? 4 : 2, 'f', decimals, QLatin1Char('0'));
    if (whole < 3600) return QStringLiteral("%1:%2").arg(whole / 60).arg(tail);
    return QStringLiteral("%1:%2:%3").arg(whole / 3600).arg(whole / 60 % 60, 2, 10, QLatin1Char('0')).arg(tail);
}

double outputTickStep(double pixelsPerOutputSecond) {
    for (const double step : tickSteps)
        if (step * pixelsPerOutputSecond >= tickDistance) return step;
    double step = 2 * tickSteps.back();
    while (step * pixelsPerOutputSecond < tickDistance && std::isfinite(step))
        step *= 2;
    return step;
}

double edgePanSpeed(double x, const TimeAxis& axis) {
    const double beyond = std::max(axis.left + edgePanPixels - x, x - (axis.right() - edgePanPixels));
    if (beyond <= 0) return 0;
    const double speed = fastestPan * std::min(beyond / (2 * edgePanPixels), 1.0);
    return x < axis.left + axis.width / 2 ? -speed : speed;
}

} // namespace flowtide
