// The colour tags of a clip, and the HDR data that travels with its pictures.
#pragma once

#include "core/output_size.h"

#include <array>
#include <optional>
#include <string>

namespace flowtide {

/// The colour tags that a track carries; each value is the tag's standard name, such as "bt709".
struct ColorProperties {
    std::optional<std::string> primaries;
    std::optional<std::string> transferFunction;
    std::optional<std::string> matrix;

    bool complete() const { return primaries && transferFunction && matrix; }
    friend bool operator==(const ColorProperties&, const ColorProperties&) = default;
};

/// The tags kept as they are, the missing ones inferred: BT.2020 where the primaries or the matrix say so or the
/// transfer function is one of its HDR pair, PQ and HLG (BT.2100); else BT.601 for standard definition and BT.709 above
/// it.
ColorProperties completedColor(const ColorProperties& tags, OutputSize size);

/// HDR mastering and light-level data that travels beside the pictures, in the units of the HEVC standard.
struct MasteringDisplay {
    std::array<std::array<double, 2>, 3> primaries{}; ///< red, green, blue: CIE 1931 x, y
    std::array<double, 2> whitePoint{};
    double minimumLuminance = 0; ///< cd/m²
    double maximumLuminance = 0; ///< cd/m²
    friend bool operator==(const MasteringDisplay&, const MasteringDisplay&) = default;
};
struct ContentLightLevel {
    unsigned maximumContent = 0;      ///< cd/m²
    unsigned maximumFrameAverage = 0; ///< cd/m²
    friend bool operator==(const ContentLightLevel&, const ContentLightLevel&) = default;
};

} // namespace flowtide
