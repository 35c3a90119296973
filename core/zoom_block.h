// Zoom blocks, the stretches over which the picture is magnified, as values.
#pragma once

#include "core/uuid.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace flowtide {

/// Which ramps a block has.
enum class ZoomMode { inOut, zoomIn, zoomOut, constant };

/// The mode's stored name, that of its case.
constexpr std::string_view rawValue(ZoomMode mode) {
    switch (mode) {
    case ZoomMode::zoomIn:
        return "zoomIn";
    case ZoomMode::zoomOut:
        return "zoomOut";
    case ZoomMode::constant:
        return "constant";
    case ZoomMode::inOut:
        break;
    }
    return "inOut";
}

/// A focal point at a position within the block.
struct ZoomFocalKeyframe {
    double progress = 0; ///< 0 at the block's start, 1 at its end, in output time
    double x = 0.5;      ///< fraction of the frame's width, from the left
    double y = 0.5;      ///< fraction of the frame's height, from the top
    friend bool operator==(const ZoomFocalKeyframe&, const ZoomFocalKeyframe&) = default;
};

/// A stretch of the source over which the picture is magnified about a focal point.
struct ZoomBlock {
    Uuid id;
    double startTime = 0;      ///< source seconds
    double endTime = 0;        ///< source seconds, after startTime
    double amount = 1.2;       ///< full zoom factor, lowestZoomAmount to highestZoomAmount
    double rampDuration = 0.6; ///< each ramp, in output seconds, 0 (hard cut) to longestZoomRamp
    double focalX = 0.5;       ///< used when there are no focal keyframes
    double focalY = 0.5;
    std::vector<ZoomFocalKeyframe> focalKeyframes; ///< sorted by progress
    ZoomMode mode = ZoomMode::inOut;
    friend bool operator==(const ZoomBlock&, const ZoomBlock&) = default;
};

constexpr double lowestZoomAmount = 1.1;
constexpr double highestZoomAmount = 4;
constexpr double longestZoomRamp = 3;              ///< output seconds
constexpr std::size_t mostZoomBlocks = 999;        ///< of one project
constexpr std::size_t mostFocalKeyframes = 19'999; ///< of one stored block

/// All blocks of an export, sorted by start.
struct ZoomSettings {
    std::vector<ZoomBlock> blocks;
    friend bool operator==(const ZoomSettings&, const ZoomSettings&) = default;
};

} // namespace flowtide
