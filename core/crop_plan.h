// Where the vertical crop lies in every source frame of an export.
#pragma once

#include "core/crop_framing.h"
#include "core/output_size.h"
#include "core/time.h"
#include "core/time_map.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace flowtide {

/// The crop centre (0...1 of the travel) that the framing curve draws at a source time, unsmoothed. Keyframes sorted by
/// time; without any, centred.
double cropCenter(const SpeedKeyframes& keyframes, SourceSeconds time);

/// The crop centre for each output frame, one every `frameDuration` output seconds, glide applied; at least one. The
/// editor shows the same table that the export uses.
std::vector<double> glideTable(const SpeedKeyframes& keyframes, double glide, const TimeMap& timeMap,
                               double frameDuration);

/// What a glide table says at a source time, interpolated between its entries and held past its ends. `centers`: not
/// empty.
double glidedCenter(const std::vector<double>& centers, SourceSeconds time, const TimeMap& timeMap,
                    double frameDuration);

/// The crop of one export; fixed once built. All sizes and offsets are even.
struct CropPlan {
    /// The left edge of the crop, in pixels, for each source frame from `firstFrameNumber` on.
    struct SourceFrameCrops {
        std::int64_t firstFrameNumber = 0;
        std::vector<std::int64_t> cropX;

        /// The even offset at a source time, interpolated between the frames around it.
        std::int64_t offsetAt(SourceSeconds time, double frameDuration) const;
    };

    std::int64_t width = 0;
    std::int64_t height = 0;
    std::int64_t maxOffsetX = 0; ///< horizontal travel in pixels
    SpeedKeyframes keyframes;    ///< the framing curve, sorted by time
    double glide = 0;

    /// The plan for an unrotated source of a size in pixels; nothing when the source is not wider than the crop frame.
    /// `pixelAspectRatio`: a pixel's width ÷ height as displayed, by which the shape asked for holds on the screen.
    static std::optional<CropPlan> forSource(OutputSize source, const VerticalCropSettings& settings,
                                             double pixelAspectRatio = 1);

    /// The offsets for the map's trim range. `frameDuration`: seconds of a source frame.
    SourceFrameCrops cropXBySourceFrame(const TimeMap& timeMap, double frameDuration) const;
};

} // namespace flowtide
