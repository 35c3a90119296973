// Where the parts of the timeline go.
#pragma once

#include "ui/graph/graph_settings.h"

#include <QRect>
#include <QSize>

namespace flowtide {

/// A function on values. Everything is as wide as the timeline; heights are those of rows.
struct TimelineLayout {
    static constexpr int headHeight = 36;
    static constexpr int rulerHeight = 24;
    static constexpr int airAbovePlot = 16;
    static constexpr int lowestPlot = 120;
    static constexpr int groundBelowPlot = 8; ///< then a hairline
    static constexpr int laneAir = 12;        ///< between the plot, the thin lane and the clip
    static constexpr int thinLane = 16;
    static constexpr int filmHeight = 32;
    static constexpr int soundHeight = 20;
    static constexpr int trimBarHeight = 12;
    static constexpr int laneGap = 4;
    static constexpr int zoomHeight = 28;
    static constexpr int hintHeight = graphSettings::bottomControlsHeight;

    QRect head;
    QRect ruler;
    QRect graph;                ///< with the air above the plot and the ground below it
    int plotTop = airAbovePlot; ///< within the graph
    int plotHeight = 0;
    QRect thin; ///< the flow lane or the coverage bar, with the air around it
    QRect clip;
    QRect zoom;
    QRect hint; ///< empty when there is no room
    bool showsFilm = true;
    bool showsSound = true;

    /// `windowHeight`: low windows do without some rows.
    static TimelineLayout of(QSize size, int windowHeight);
    /// The height that the timeline needs.
    static int lowestHeight(int windowHeight);
};

} // namespace flowtide
