// The time axis that the graph, the ruler and all lanes share.
#pragma once

#include "ui/graph/graph_settings.h"

#include <QString>

namespace flowtide {

/// Between source seconds and pixels of the timeline.
struct TimeAxis {
    static constexpr double margin = graphSettings::padding + 4; ///< pixels left and right of the axis

    double duration = 0; ///< source seconds of the clip
    double left = 0;     ///< pixels
    double width = 1;    ///< pixels
    double start = 0;    ///< source seconds at the left edge
    double span = 1;     ///< source seconds from edge to edge

    /// `zoom`: 1 shows the whole clip; `center`: fraction of the clip. Never shows what is beyond the clip's ends.
    static TimeAxis of(double duration, double left, double width, double zoom, double center);

    double right() const { return left + width; }
    double end() const { return start + span; }
    double pixelsPerSecond() const { return width / span; }
    double xOf(double seconds) const { return left + (seconds - start) / span * width; }
    double timeAt(double x) const { return start + (x - left) / width * span; }
    bool shows(double seconds) const { return seconds >= start && seconds <= end(); }
    bool isMagnified() const { return span < duration; }
    /// The fraction of the clip in the middle.
    double center() const { return duration > 0 ? (start + span / 2) / duration : 0.5; }
    double zoom() const { return duration > 0 ? duration / span : 1; }

    /// Magnified, with the time at `x` staying where it is; at most `largestZoom`.
    TimeAxis zoomedAround(double x, double factor, double largestZoom) const;
    TimeAxis panned(double seconds) const;

    friend bool operator==(const TimeAxis&, const TimeAxis&) = default;
};

struct RulerSteps {
    double major = 1;   ///< seconds
    int minorCount = 5; ///< minor steps in a major one
};

/// The finest steps whose labels have room.
RulerSteps rulerSteps(double pixelsPerSecond);
/// "2.5 s", from a minute on "1:30", from an hour on "1:02:00".
QString rulerLabel(double seconds, double step);

/// Output seconds between two ticks: the smallest step that keeps them apart where an output second is as narrow as
/// that.
double outputTickStep(double pixelsPerOutputSecond);

/// How fast the axis moves while something is dragged at its edges: axis widths a second, negative to the left.
double edgePanSpeed(double x, const TimeAxis& axis);

} // namespace flowtide
