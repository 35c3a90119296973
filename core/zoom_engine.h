// How far, and about which point, a zoom block magnifies the picture at a time.
#pragma once

#include "core/time.h"
#include "core/time_map.h"
#include "core/zoom_block.h"

#include <cstdint>
#include <vector>

namespace flowtide::ZoomEngine {

/// A focal point as fractions of the frame's width and height.
struct FocalPoint {
    double x = 0.5;
    double y = 0.5;
    friend bool operator==(const FocalPoint&, const FocalPoint&) = default;
};

/// The zoom of one output frame; neutral by default.
struct ZoomState {
    double scale = 1; ///< 1 = no zoom
    FocalPoint focal;
    friend bool operator==(const ZoomState&, const ZoomState&) = default;
};

/// A ramp's length as a fraction of its block: `rampDuration` and `blockOutputDuration` in output seconds. At most half
/// the block where there are two ramps.
double rampFraction(double rampDuration, double blockOutputDuration, ZoomMode mode);

/// The zoom factor at a position (0...1) within the block.
double scale(double progress, const ZoomBlock& block, double rampFraction);

/// The focal point at a position (0...1) within the block.
FocalPoint focal(double progress, const ZoomBlock& block);

/// The zoom at an output time, for previews. `blocks` in stored order.
ZoomState stateAt(OutputSeconds time, const std::vector<ZoomBlock>& blocks, const TimeMap& timeMap);

/// The zoom of each of `frameCount` output frames from number `firstFrame` on, `frameDuration` seconds apart, for
/// exports.
std::vector<ZoomState> table(const std::vector<ZoomBlock>& blocks, const TimeMap& timeMap, std::int64_t frameCount,
                             double frameDuration, std::int64_t firstFrame = 0);

} // namespace flowtide::ZoomEngine
