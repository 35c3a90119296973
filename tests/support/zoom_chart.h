// A still chart whose edges can be measured to a hundredth of a pixel: slanted soft edges on flat grey.
#pragma once

#include "media/video_frame.h"

#include <cmath>
#include <memory>
#include <vector>

namespace flowtide::test {

/// Edge positions along a row y: base + slope × y, one every `pitch` pixels; the picture alternates between two greys.
struct ZoomChart {
    double pitch = 160;
    double slope = 0.13;
    double softness = 1.4; ///< pixels; wide enough for any sampling to be free of aliasing
    double dark = 40;      ///< in 8-bit codes
    double bright = 210;

    double edge(int number, double y) const { return pitch * (number + 0.5) + slope * y; }

    /// The chart's value at a point (pixels from the picture's corner), in 8-bit codes.
    double valueAt(double x, double y) const {
        const double along = x - slope * y;
        const int nearest = static_cast<int>(std::floor(along / pitch));
        const double toEdge = along - pitch * (nearest + 0.5);
        const double rise = 0.5 + 0.5 * std::tanh(toEdge / softness);
        const bool startsDark = nearest % 2 == 0;
        return startsDark ? dark + (bright - dark) * rise : bright - (bright - dark) * rise;
    }

    /// Each plane samples the same chart at its own siting, so that a shift of chroma against luma shows.
    VideoFrame frame(PixelLayout layout, int width, int height) const {
        auto bytes = std::make_shared<std::vector<std::uint8_t>>();
        std::array<std::size_t, 3> offsets{};
        const int bytesPerSample = layout.bytesPerSample();
        for (std::size_t plane = 0; plane < 3; ++plane) {
            offsets[plane] = bytes->size();
            const double stepX = plane == 0 ? 1 : 1 << layout.horizontalChromaShift();
            const double stepY = plane == 0 ? 1 : 1 << layout.verticalChromaShift();
            for (int row = 0; row < planeHeight(layout, height, plane); ++row)
                for (int column = 0; column < planeWidth(layout, width, plane); ++column) {
                    const double value =
                        valueAt(column * stepX + 0.5, (row + 0.5) * stepY) * (1 << (layout.bitDepth - 8));
                    const auto code = static_cast<unsigned>(std::lround(value));
                    bytes->push_back(static_cast<std::uint8_t>(code & 0xFF));
                    if (bytesPerSample == 2) bytes->push_back(static_cast<std::uint8_t>(code >> 8));
                }
        }
        VideoFrame result;
        result.layout = layout;
        result.width = width;
        result.height = height;
        for (std::size_t plane = 0; plane < 3; ++plane)
            result.planes[plane] = {bytes->data() + offsets[plane], planeWidth(layout, width, plane) * bytesPerSample};
        result.owner = bytes;
        return result;
    }
};

inline double sampleOf(const VideoFrame& frame, std::size_t plane, int column, int row) {
    const std::uint8_t* line = frame.planes[plane].data + row * frame.planes[plane].stride;
    const int code = frame.layout.bytesPerSample() == 1 ? line[column] : line[2 * column] | (line[2 * column + 1] << 8);
    return static_cast<double>(code) / (1 << (frame.layout.bitDepth - 8));
}

/// Where a row crosses the middle grey nearest to `expected`, in luma pixels from the picture's left; NaN when it does
/// not within a few pixels.
inline double crossingNear(const ZoomChart& chart, const VideoFrame& frame, std::size_t plane, int row,
                           double expected) {
    const int step = plane == 0 ? 1 : 1 << frame.layout.horizontalChromaShift();
    const double middle = (chart.dark + chart.bright) / 2;
    double best = std::nan("");
    for (int column = 0; column + 1 < planeWidth(frame.layout, frame.width, plane); ++column) {
        const double a = sampleOf(frame, plane, column, row) - middle;
        const double b = sampleOf(frame, plane, column + 1, row) - middle;
        if ((a < 0) == (b < 0)) continue;
        const double x = (column + a / (a - b)) * step + 0.5;
        if (std::abs(x - expected) < 6 && !(std::abs(best - expected) < std::abs(x - expected))) best = x;
    }
    return best;
}

} // namespace flowtide::test
