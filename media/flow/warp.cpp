// Bicubic sampling of both frames.
#include "media/flow/warp.h"

#include <array>
#include <cmath>
#include <cstring>
#include <type_traits>

namespace flowtide::flow {

namespace {

constexpr int fractions = 16; // sub-pixel positions a pixel

/// Catmull–Rom taps for each sub-pixel position.
std::array<std::array<float, 4>, fractions> makeTaps() {
    std::array<std::array<float, 4>, fractions> taps{};
    for (int i = 0; i < fractions; ++i) {
        const float t = static_cast<float>(i) / fractions;
        taps[static_cast<std::size_t>(i)] = {((-0.5F * t + 1) * t - 0.5F) * t, (1.5F * t - 2.5F) * t * t + 1,
                                             ((-1.5F * t + 2) * t + 0.5F) * t, (0.5F * t - 0.5F) * t * t};
    }
    return taps;
}
const std::array<std::array<float, 4>, fractions> taps = makeTaps();

/// One plane of a frame, with samples of one or two bytes.
template <typename Sample>
struct PlaneView {
    const std::uint8_t* data;
    std::ptrdiff_t stride;
    int width;
    int height;

    const Sample* row(int y) const { return reinterpret_cast<const Sample*>(data + y * stride); }

    float at(float x, float y) const {
        const int qx = static_cast<int>(std::lround(std::clamp(x, -8.0F, static_cast<float>(width + 8)) * fractions));
        const int qy = static_cast<int>(std::lround(std::clamp(y, -8.0F, static_cast<float>(height + 8)) * fractions));
        const int ix = qx >> 4;
        const int iy = qy >> 4;
        const auto& across = taps[static_cast<std::size_t>(qx & 15)];
        const auto& down = taps[static_cast<std::size_t>(qy & 15)];
        float sum = 0;
        if (ix >= 1 && iy >= 1 && ix + 2 < width && iy + 2 < height) {
            for (int j = 0; j < 4; ++j) {
                const Sample* line = row(iy - 1 + j) + ix - 1;
                sum += down[static_cast<std::size_t>(j)] *
                       (across[0] * static_cast<float>(line[0]) + across[1] * static_cast<float>(line[1]) +
                        across[2] * static_cast<float>(line[2]) + across[3] * static_cast<float>(line[3]));
            }
            return sum;
        }
        for (int j = 0; j < 4; ++j) {
            const Sample* line = row(std::clamp(iy - 1 + j, 0, height - 1));
            for (int i = 0; i < 4; ++i)
                sum += down[static_cast<std::size_t>(j)] * across[static_cast<std::size_t>(i)] *
                       static_cast<float>(line[std::clamp(ix - 1 + i, 0, width - 1)]);
        }
        return sum;
    }
};

/// Motion and share at a point of the half-resolution field.
struct FieldSample {
    Vector motion;
    float secondShare;
};

FieldSample sampled(const PhaseField& field, float x, float y) {
    const float px = std::clamp(x, 0.0F, static_cast<float>(field.motion.width() - 1));
    const float py = std::clamp(y, 0.0F, static_cast<float>(field.motion.height() - 1));
    const int ix = static_cast<int>(px);
    const int iy = static_cast<int>(py);
    const int nx = std::min(ix + 1, field.motion.width() - 1);
    const int ny = std::min(iy + 1, field.motion.height() - 1);
    const float fx = px - static_cast<float>(ix);
    const float fy = py - static_cast<float>(iy);
    const float w00 = (1 - fx) * (1 - fy);
    const float w01 = fx * (1 - fy);
    const float w10 = (1 - fx) * fy;
    const float w11 = fx * fy;
    const auto& m = field.motion;
    const auto& s = field.secondShare;
    return {w00 * m(ix, iy) + w01 * m(nx, iy) + w10 * m(ix, ny) + w11 * m(nx, ny),
            w00 * s(ix, iy) + w01 * s(nx, iy) + w10 * s(ix, ny) + w11 * s(nx, ny)};
}

template <typename Sample>
void warpPlane(const VideoFrame& first, const VideoFrame& second, const PhaseField& field, float phase,
               std::size_t plane, WritableFrame& result) {
    const PixelLayout layout = first.layout;
    const int width = planeWidth(layout, first.width, plane);
    const int height = planeHeight(layout, first.height, plane);
    const PlaneView<Sample> a{first.planes[plane].data, first.planes[plane].stride, width, height};
    const PlaneView<Sample> b{second.planes[plane].data, second.planes[plane].stride, width, height};
    const float stepX = plane > 0 && layout.horizontalChromaShift() ? 2 : 1; // luma pixels a sample
    const float stepY = plane > 0 && layout.verticalChromaShift() ? 2 : 1;
    // Luma pixel 2k and 2k + 1 share the half-resolution pixel k between them. Left-sited chroma lies on even luma
    // columns, and midway between rows.
    const float originX = -0.25F;
    const float originY = stepY > 1 ? 0 : -0.25F;
    const float largest = static_cast<float>((1 << layout.bitDepth) - 1);
    for (int y = 0; y < height; ++y) {
        auto* out = reinterpret_cast<Sample*>(result.planes[plane] + y * result.frame.planes[plane].stride);
        const float py = static_cast<float>(y);
        for (int x = 0; x < width; ++x) {
            const float px = static_cast<float>(x);
            const FieldSample here = sampled(field, px * stepX / 2 + originX, py * stepY / 2 + originY);
            const float vx = 2 * here.motion.x / stepX;
            const float vy = 2 * here.motion.y / stepY;
            const float one = a.at(px - phase * vx, py - phase * vy);
            const float other = b.at(px + (1 - phase) * vx, py + (1 - phase) * vy);
            const float value = one + here.secondShare * (other - one);
            out[x] = static_cast<Sample>(std::clamp(value + 0.5F, 0.0F, largest));
        }
    }
}

} // namespace

VideoFrame warped(const VideoFrame& first, const VideoFrame& second, const PhaseField& field, float phase,
                  FramePool& pool) {
    WritableFrame result = pool.take();
    for (std::size_t plane = 0; plane < result.planes.size(); ++plane) {
        if (first.layout.bytesPerSample() == 1)
            warpPlane<std::uint8_t>(first, second, field, phase, plane, result);
        else
            warpPlane<std::uint16_t>(first, second, field, phase, plane, result);
    }
    return result.frame;
}

} // namespace flowtide::flow
