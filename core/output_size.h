// The size of an encoded picture.
#pragma once

#include <cmath>
#include <cstdint>

namespace flowtide {

/// Width and height in pixels.
struct OutputSize {
    std::int64_t width = 0;
    std::int64_t height = 0;

    /// A side of a scaled size: even, and the round multiple of 10 where one is within a quarter of a percent.
    static std::int64_t capped(double scale, double side) {
        const double scaled = scale * side;
        const double tens = std::round(scaled / 10) * 10;
        if (std::abs(tens - scaled) <= 0.0025 * scaled) return static_cast<std::int64_t>(tens);
        const auto even = 2 * static_cast<std::int64_t>(std::round(scaled / 2));
        return even < 2 ? 2 : even;
    }

    friend bool operator==(const OutputSize&, const OutputSize&) = default;
};

} // namespace flowtide
