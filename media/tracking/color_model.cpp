// Counts colours, and sums their probabilities over boxes.
#include "media/tracking/color_model.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace flowtide::tracking {

namespace {

constexpr int levels = 16; ///< of each component
constexpr std::size_t binCount = static_cast<std::size_t>(levels) * levels * levels;
constexpr int mapSide = 64; ///< samples along a window's side
constexpr double mapMiddle = mapSide / 2.0;
constexpr int samplesPerCell = mapSide / gridSide;
constexpr double certainlyInside = 0.8; ///< of the box's sides: its corners show what is behind the object
constexpr double certainlyOutside = 1.1;
/// Of a histogram that sums to 1: a colour that was hardly ever seen tells little.
constexpr float unseen = 1e-3F;

using ColorMap = std::array<std::uint16_t, static_cast<std::size_t>(mapSide* mapSide)>;

/// The bins of the window's samples.
void readColors(const SubjectPicture& picture, const SearchWindow& window, ColorMap& colors) {
    const double step = window.side / mapSide;
    const BytePlane& luma = picture.luma[0];
    std::array<int, mapSide> columns;
    const auto place = [&](double center, int i, int count) {
        return std::clamp(static_cast<int>(std::floor(center + (i + 0.5 - mapMiddle) * step)), 0, count - 1);
    };
    for (int i = 0; i < mapSide; ++i)
        columns[static_cast<std::size_t>(i)] = place(window.centerX, i, luma.width);
    std::size_t next = 0;
    for (int j = 0; j < mapSide; ++j) {
        const int y = place(window.centerY, j, luma.height);
        const int chromaY = std::min(y / 2, picture.chroma[0].height - 1);
        const std::uint8_t* row = luma.data + y * luma.stride;
        const std::uint8_t* cb = picture.chroma[0].data + chromaY * picture.chroma[0].stride;
        const std::uint8_t* cr = picture.chroma[1].data + chromaY * picture.chroma[1].stride;
        // Most colours are weak: the steps of chroma are half as large, and end where colours are strong.
        const auto chromaLevel = [](int code) { return std::clamp((code - 64) >> 3, 0, levels - 1); };
        for (const int x : columns) {
            const int chromaX = std::min(x / 2, picture.chroma[0].width - 1);
            colors[next++] = static_cast<std::uint16_t>((row[x] >> 4) << 8 | chromaLevel(cb[chromaX]) << 4 |
                                                        chromaLevel(cr[chromaX]));
        }
    }
}

/// Samples from `begin` to `end` of a map that a stretch `length` long covers around a position, both in samples.
struct Span {
    int begin;
    int end;
};
Span spanAround(double center, double length) {
    const auto inside = [](double value) { return std::clamp(static_cast<int>(std::lround(value)), 0, mapSide); };
    return {inside(center - length / 2), inside(center + length / 2)};
}

void blend(std::vector<float>& histogram, const std::vector<float>& counts, float total, double rate) {
    if (histogram.empty()) histogram.assign(binCount, 0);
    if (!(total > 0)) return;
    const auto gain = static_cast<float>(rate);
    for (std::size_t i = 0; i < binCount; ++i)
        histogram[i] += gain * (counts[i] / total - histogram[i]);
}

} // namespace

void ColorModel::learn(const SubjectPicture& picture, const PixelBox& box, double rate) {
    const SearchWindow window = SearchWindow::around(box);
    ColorMap colors;
    readColors(picture, window, colors);
    const double scale = mapSide / window.side;
    const Span columns = spanAround(mapMiddle, certainlyInside * box.width * scale);
    const Span rows = spanAround(mapMiddle, certainlyInside * box.height * scale);
    const Span farColumns = spanAround(mapMiddle, certainlyOutside * box.width * scale);
    const Span farRows = spanAround(mapMiddle, certainlyOutside * box.height * scale);
    std::vector<float> inside(binCount);
    std::vector<float> outside(binCount);
    float insideCount = 0;
    float outsideCount = 0;
    const auto holds = [](Span span, int i) { return i >= span.begin && i < span.end; };
    for (int y = 0; y < mapSide; ++y)
        for (int x = 0; x < mapSide; ++x) {
            const std::size_t bin = colors[static_cast<std::size_t>(y * mapSide + x)];
            if (holds(columns, x) && holds(rows, y)) {
                ++inside[bin];
                ++insideCount;
            } else if (!holds(farColumns, x) || !holds(farRows, y)) {
                ++outside[bin];
                ++outsideCount;
            }
        }
    blend(inside_, inside, insideCount, rate);
    blend(outside_, outside, outsideCount, rate);
}

void ColorModel::respond(const SubjectPicture& picture, const SearchWindow& window, const PixelBox& box,
                         std::vector<float>& response) const {
    ColorMap colors;
    readColors(picture, window, colors);
    // Sums over rectangles, by the sums from the corner.
    constexpr std::size_t stride = mapSide + 1;
    std::vector<double> sums(stride * stride);
    for (std::size_t y = 0; y < mapSide; ++y) {
        double row = 0;
        for (std::size_t x = 0; x < mapSide; ++x) {
            const std::size_t bin = colors[y * mapSide + x];
            row += (inside_[bin] + unseen / 2) / (inside_[bin] + outside_[bin] + unseen);
            sums[(y + 1) * stride + x + 1] = sums[y * stride + x + 1] + row;
        }
    }
    const double scale = mapSide / window.side;
    const double width = std::max(1.0, box.width * scale);
    const double height = std::max(1.0, box.height * scale);
    const auto sum = [&](int x, int y) {
        return sums[static_cast<std::size_t>(y) * stride + static_cast<std::size_t>(x)];
    };
    response.resize(static_cast<std::size_t>(gridSide * gridSide));
    std::size_t next = 0;
    for (int j = 0; j < gridSide; ++j) {
        const Span rows = spanAround(j * samplesPerCell, height);
        for (int i = 0; i < gridSide; ++i) {
            const Span columns = spanAround(i * samplesPerCell, width);
            const double inBox = sum(columns.end, rows.end) - sum(columns.begin, rows.end) -
                                 sum(columns.end, rows.begin) + sum(columns.begin, rows.begin);
            response[next++] = static_cast<float>(inBox / (width * height));
        }
    }
}

} // namespace flowtide::tracking
