// The colour tags of a clip, and the HDR data that travels with its pictures.
#pragma once

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
