#include "ui/graph/timeline_layout.h"

#include <algorithm>

namespace flowtide {

namespace {

constexpr int soundFrom = 780; ///< window heights
constexpr int filmFrom = 680;
constexpr int hintFrom = 600;

int clipHeight(int windowHeight) {
    using Layout = TimelineLayout;
    if (windowHeight < filmFrom) return Layout::trimBarHeight;
    return Layout::filmHeight + (windowHeight < soundFrom ? 0 : Layout::soundHeight);
}

int hintHeightIn(int windowHeight) {
    return windowHeight < hintFrom ? 0 : TimelineLayout::hintHeight;
}

} // namespace

int TimelineLayout::lowestHeight(int windowHeight) {
    return headHeight + rulerHeight + airAbovePlot + lowestPlot + laneAir + thinLane + laneAir +
           clipHeight(windowHeight) + laneGap + zoomHeight + laneGap + hintHeightIn(windowHeight);
}

TimelineLayout TimelineLayout::of(QSize size, int windowHeight) {
    TimelineLayout layout;
    layout.showsFilm = windowHeight >= filmFrom;
    layout.showsSound = windowHeight >= soundFrom;
    layout.plotHeight = lowestPlot + std::max(size.height() - lowestHeight(windowHeight), 0);
    int y = 0;
    const auto row = [&](int height) {
        const QRect rect(0, y, size.width(), height);
        y += height;
        return rect;
    };
    layout.head = row(headHeight);
    layout.ruler = row(rulerHeight);
    layout.graph = row(airAbovePlot + layout.plotHeight + groundBelowPlot);
    layout.thin = row(laneAir - groundBelowPlot + thinLane + laneAir);
    layout.clip = row(clipHeight(windowHeight));
    y += laneGap;
    layout.zoom = row(zoomHeight);
    y += laneGap;
    layout.hint = row(hintHeightIn(windowHeight));
    return layout;
}

} // namespace flowtide
