// Scenes drawn by a formula at any time, so that the true frame between two others is known, and how far a frame is
// from it.
#pragma once

#include "media/frames/frame_interpolation.h"
#include "tests/support/zoom_chart.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

namespace flowtide::test {

/// A frame drawn by a function of luma coordinates (8-bit codes); every plane shows it at its own siting.
template <typename Picture>
VideoFrame drawn(PixelLayout layout, int width, int height, const Picture& picture) {
    VideoFrame frame = ZoomChart().frame(layout, width, height);
    for (std::size_t plane = 0; plane < 3; ++plane) {
        const int stepX = plane == 0 ? 1 : 1 << layout.horizontalChromaShift();
        const int stepY = plane == 0 ? 1 : 1 << layout.verticalChromaShift();
        for (int row = 0; row < planeHeight(layout, height, plane); ++row)
            for (int column = 0; column < planeWidth(layout, width, plane); ++column) {
                const double x = column * stepX;
                const double y = row * stepY + (stepY - 1) * 0.5;
                const auto code = static_cast<std::uint16_t>(
                    std::lround(std::clamp(picture(x, y), 0.0, 255.0) * (1 << (layout.bitDepth - 8))));
                auto* line = const_cast<std::uint8_t*>(frame.planes[plane].data) + row * frame.planes[plane].stride;
                if (layout.bytesPerSample() == 1)
                    line[column] = static_cast<std::uint8_t>(code);
                else
                    std::memcpy(line + 2 * column, &code, sizeof code);
            }
    }
    return frame;
}

/// Whether every sample is the same.
inline bool samePixels(const VideoFrame& a, const VideoFrame& b) {
    for (std::size_t plane = 0; plane < 3; ++plane)
        for (int row = 0; row < planeHeight(a.layout, a.height, plane); ++row)
            if (std::memcmp(
                    a.planes[plane].data + row * a.planes[plane].stride,
                    b.planes[plane].data + row * b.planes[plane].stride,
                    static_cast<std::size_t>(planeWidth(a.layout, a.width, plane) * a.layout.bytesPerSample())) != 0)
                return false;
    return true;
}

/// A texture with detail at every scale down to a few pixels.
inline double texture(double x, double y) {
    return 128 + 30 * std::sin(x * 0.11 + 0.7 * std::sin(y * 0.05)) + 25 * std::sin(y * 0.17 + 0.03 * x) +
           20 * std::sin(0.61 * x + 0.43 * y) + 12 * std::sin(0.9 * x - 1.1 * y);
}
/// Another one, that looks like no place of the first.
inline double otherTexture(double x, double y) {
    return 120 + 40 * std::sin(0.23 * x - 0.19 * y) + 30 * std::sin(0.53 * y + 0.08 * x) + 20 * std::sin(0.77 * x);
}

struct Point {
    double x;
    double y;
};
inline Point turned(Point p, double angle, double scale = 1) {
    return {scale * (p.x * std::cos(angle) - p.y * std::sin(angle)),
            scale * (p.x * std::sin(angle) + p.y * std::cos(angle))};
}

/// A scene of 8-bit luma at a time; frames lie at whole numbers.
struct DrawnScene {
    static constexpr int width = 320;
    static constexpr int height = 200;

    const char* name;
    std::function<double(double x, double y, double time)> luma;

    VideoFrame at(double time, PixelLayout layout = {ChromaSubsampling::yuv420, 8, false}, int columns = width,
                  int rows = height) const {
        return drawn(layout, columns, rows, [&](double x, double y) { return luma(x, y, time); });
    }
    /// The frames around times between 0 and 1.
    template <typename... Format>
    FramePair pair(Format... format) const {
        const auto timed = [&](double time) { return TimedFrame{at(time, format...), {time}}; };
        return {timed(0), timed(1), timed(-1), timed(2)};
    }
};

/// What frame interpolation meets: every kind of motion, what is hidden and uncovered, a fade and a cut.
inline std::vector<DrawnScene> drawnScenes() {
    constexpr Point middle{DrawnScene::width / 2.0, DrawnScene::height / 2.0};
    const auto inDisc = [](Point p, double radius) { return p.x * p.x + p.y * p.y < radius * radius; };
    return {
        {"drifting", [](double x, double y, double t) { return texture(x - 6.3 * t, y + 2.6 * t); }},
        {"texture over texture",
         [=](double x, double y, double t) {
             const Point disc{x - 150 - 13 * t, y - 90 + 5 * t};
             return inDisc(disc, 42) ? otherTexture(disc.x, disc.y) : texture(x + 5 * t, y - 2 * t);
         }},
        {"turning",
         [=](double x, double y, double t) {
             const Point p = turned({x - middle.x, y - middle.y}, 0.04 * t);
             return texture(p.x, p.y);
         }},
        {"zooming",
         [=](double x, double y, double t) {
             const Point p = turned({x - middle.x, y - middle.y}, 0, std::pow(0.94, t));
             return texture(p.x, p.y);
         }},
        {"speeding up", [](double x, double y, double t) { return texture(x - 3 * t - t * t, y + 0.8 * t * t); }},
        {"crossing",
         [=](double x, double y, double t) {
             const Point one{x - 120 - 12 * t, y - 80};
             const Point other{x - 195 + 9 * t, y - 115 + 4 * t};
             if (inDisc(one, 34)) return otherTexture(one.x, one.y);
             if (inDisc(other, 40)) return 250 - otherTexture(other.y, other.x);
             return texture(x, y);
         }},
        {"fading", [](double x, double y, double t) { return (0.85 + 0.04 * t) * texture(x - 3 * t, y - 1.5 * t); }},
        {"cut", [](double x, double y, double t) { return t < 0.5 ? texture(x, y) : otherTexture(x, y); }},
    };
}

inline DrawnScene sceneNamed(const std::string& name) {
    const std::vector<DrawnScene> scenes = drawnScenes();
    return *std::find_if(scenes.begin(), scenes.end(), [&](const DrawnScene& scene) { return scene.name == name; });
}

inline double decibels(double meanSquare) {
    return 10 * std::log10(255 * 255 / std::max(meanSquare, 1e-6));
}

/// The mean squared difference of a part of a plane, in 8-bit codes.
inline double meanSquare(const VideoFrame& a, const VideoFrame& b, std::size_t plane, int left, int top, int right,
                         int bottom) {
    double sum = 0;
    for (int row = top; row < bottom; ++row)
        for (int column = left; column < right; ++column)
            sum += std::pow(sampleOf(a, plane, column, row) - sampleOf(b, plane, column, row), 2);
    return sum / ((right - left) * (bottom - top));
}

inline double psnr(const VideoFrame& a, const VideoFrame& b, std::size_t plane, int margin) {
    return decibels(meanSquare(a, b, plane, margin, margin, planeWidth(a.layout, a.width, plane) - margin,
                               planeHeight(a.layout, a.height, plane) - margin));
}

/// The PSNR of the worst twentieth of the luma's 16 × 16 blocks.
inline double worstBlocks(const VideoFrame& a, const VideoFrame& b) {
    std::vector<double> blocks;
    for (int top = 0; top + 16 <= a.height; top += 16)
        for (int left = 0; left + 16 <= a.width; left += 16)
            blocks.push_back(meanSquare(a, b, 0, left, top, left + 16, top + 16));
    std::sort(blocks.begin(), blocks.end(), std::greater<>());
    const std::size_t worst = blocks.size() / 20;
    double sum = 0;
    for (std::size_t i = 0; i < worst; ++i)
        sum += blocks[i];
    return decibels(sum / static_cast<double>(worst));
}

} // namespace flowtide::test
