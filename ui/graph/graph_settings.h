// What is fixed of the graph, whatever it shows.
#pragma once

namespace flowtide::graphSettings {

constexpr double padding = 40;               ///< pixels left and right of the plot, within the timeline's own margin
constexpr int bottomControlsHeight = 30;     ///< pixels of the line under the graph
constexpr double curveHitRadius = 18;        ///< pixels: so near to a point or the curve hits it
constexpr double clickMovementTolerance = 4; ///< pixels: a press that moves less is a click
constexpr double minKeyframeSpacing = 0.01;  ///< source seconds

} // namespace flowtide::graphSettings
