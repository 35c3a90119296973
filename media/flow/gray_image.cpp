// Reading luma from frames of any depth, edge padding, and halving.
#include "media/flow/gray_image.h"

#include <algorithm>
#include <cstring>

namespace flowtide::flow {

namespace {

constexpr int smallestSide = 16;

GrayImage fullLuma(const VideoFrame& frame) {
    GrayImage image(frame.width, frame.height);
    const int shift = frame.layout.bitDepth - 8;
    for (int y = 0; y < frame.height; ++y) {
        const std::uint8_t* source = frame.planes[0].data + y * frame.planes[0].stride;
        std::uint8_t* target = image.row(y);
        if (frame.layout.bytesPerSample() == 1) {
            std::memcpy(target, source, static_cast<std::size_t>(frame.width));
            continue;
        }
        for (int x = 0; x < frame.width; ++x) {
            std::uint16_t sample = 0;
            std::memcpy(&sample, source + 2 * x, sizeof sample);
            target[x] = static_cast<std::uint8_t>(std::min(sample >> shift, 255));
        }
    }
    image.pad();
    return image;
}

} // namespace

GrayImage::GrayImage(int width, int height)
    : width_(width)
    , height_(height)
    , stride_((width + 2 * padding + 15) / 16 * 16)
    , data_(static_cast<std::size_t>(stride_) * static_cast<std::size_t>(height + 2 * padding)) {}

void GrayImage::pad() {
    for (int y = 0; y < height_; ++y) {
        std::uint8_t* line = row(y);
        std::memset(line - padding, line[0], padding);
        std::memset(line + width_, line[width_ - 1], static_cast<std::size_t>(stride_ - padding - width_));
    }
    for (int y = 1; y <= padding; ++y) {
        std::memcpy(row(-y) - padding, row(0) - padding, static_cast<std::size_t>(stride_));
        std::memcpy(row(height_ - 1 + y) - padding, row(height_ - 1) - padding, static_cast<std::size_t>(stride_));
    }
}

GrayImage halved(const GrayImage& image) {
    GrayImage half((image.width() + 1) / 2, (image.height() + 1) / 2);
    std::vector<int> columns(static_cast<std::size_t>(image.width()) + 4);
    for (int y = 0; y < half.height(); ++y) {
        const std::uint8_t* rows[4];
        for (int i = 0; i < 4; ++i)
            rows[i] = image.row(2 * y - 1 + i) - 1;
        for (int x = 0; x < image.width() + 3; ++x)
            columns[static_cast<std::size_t>(x)] = rows[0][x] + 3 * (rows[1][x] + rows[2][x]) + rows[3][x];
        std::uint8_t* target = half.row(y);
        for (int x = 0; x < half.width(); ++x) {
            const int* c = columns.data() + 2 * x;
            target[x] = static_cast<std::uint8_t>((c[0] + 3 * (c[1] + c[2]) + c[3] + 32) >> 6);
        }
    }
    half.pad();
    return half;
}

std::vector<GrayImage> lumaPyramid(const VideoFrame& frame) {
    std::vector<GrayImage> levels;
    levels.push_back(halved(fullLuma(frame)));
    while (std::min(levels.back().width(), levels.back().height()) >= 2 * smallestSide)
        levels.push_back(halved(levels.back()));
    return levels;
}

} // namespace flowtide::flow
