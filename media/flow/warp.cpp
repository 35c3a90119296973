// Bicubic sampling of both frames.
#include "media/flow/warp.h"

#include "media/flow/parallel_rows.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include <array>
#include <cstring>

namespace flowtide::flow {

namespace {

constexpr int fractions = 16; // sub-pixel positions a pixel
constexpr int outside = 8;    // pixels beyond the edge after which every place looks like the edge

/// Four neighbouring values at once; compilers turn it into one vector register.
using Four = float __attribute__((vector_size(16)));

#if defined(__SSE2__)
// What the compilers make of the plain form below is many times slower.
Four fromWords(__m128i words) {
    return reinterpret_cast<Four>(_mm_cvtepi32_ps(_mm_unpacklo_epi16(words, _mm_setzero_si128())));
}
Four fourAt(const std::uint8_t* line) {
    std::int32_t bytes = 0;
    std::memcpy(&bytes, line, sizeof bytes);
    return fromWords(_mm_unpacklo_epi8(_mm_cvtsi32_si128(bytes), _mm_setzero_si128()));
}
Four fourAt(const std::uint16_t* line) {
    return fromWords(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(line)));
}
#else
template <typename Sample>
Four fourAt(const Sample* line) {
    return Four{static_cast<float>(line[0]), static_cast<float>(line[1]), static_cast<float>(line[2]),
                static_cast<float>(line[3])};
}
#endif

/// Catmull–Rom taps for each sub-pixel position.
std::array<Four, fractions> makeTaps() {
    std::array<Four, fractions> taps{};
    for (int i = 0; i < fractions; ++i) {
        const float t = static_cast<float>(i) / fractions;
        taps[static_cast<std::size_t>(i)] = Four{((-0.5F * t + 1) * t - 0.5F) * t, (1.5F * t - 2.5F) * t * t + 1,
                                                 ((-1.5F * t + 2) * t + 0.5F) * t, (0.5F * t - 0.5F) * t * t};
    }
    return taps;
}
const std::array<Four, fractions> taps = makeTaps();

/// A coordinate in sixteenths of a pixel, rounded; kept near the plane, where the edge repeats.
int sixteenths(float position, int size) {
    const float bounded = std::clamp(position, static_cast<float>(-outside), static_cast<float>(size + outside));
    return static_cast<int>(bounded * fractions + (outside * fractions + 0.5F)) - outside * fractions;
}

/// One plane of a frame, with samples of one or two bytes.
template <typename Sample>
struct PlaneView {
    const std::uint8_t* data;
    std::ptrdiff_t stride;
    int width;
    int height;

    const Sample* row(int y) const { return reinterpret_cast<const Sample*>(data + y * stride); }

    float at(float x, float y) const {
        const int qx = sixteenths(x, width);
        const int qy = sixteenths(y, height);
        const int ix = qx >> 4;
        const int iy = qy >> 4;
        const Four& across = taps[static_cast<std::size_t>(qx & 15)];
        const Four& down = taps[static_cast<std::size_t>(qy & 15)];
        Four sum{};
        if (ix >= 1 && iy >= 1 && ix + 2 < width && iy + 2 < height) {
            const auto* line = reinterpret_cast<const std::uint8_t*>(row(iy - 1) + ix - 1);
            for (int j = 0; j < 4; ++j, line += stride)
                sum += down[j] * fourAt(reinterpret_cast<const Sample*>(line));
        } else {
            for (int j = 0; j < 4; ++j) {
                const Sample* line = row(std::clamp(iy - 1 + j, 0, height - 1));
                Four values{};
                for (int i = 0; i < 4; ++i)
                    values[i] = static_cast<float>(line[std::clamp(ix - 1 + i, 0, width - 1)]);
                sum += down[j] * values;
            }
        }
        sum *= across;
        return (sum[0] + sum[1]) + (sum[2] + sum[3]);
    }
};

/// A place of the half-resolution field between two of its columns or rows.
struct Between {
    int low;
    int high;
    float fraction;

    Between(float position, int size) {
        const float inside = std::clamp(position, 0.0F, static_cast<float>(size - 1));
        low = static_cast<int>(inside);
        high = std::min(low + 1, size - 1);
        fraction = inside - static_cast<float>(low);
    }
};

/// One plane's part of the drawing.
template <typename Sample>
class PlaneWarp {
public:
    PlaneWarp(const VideoFrame& first, const VideoFrame& second, const PhaseField& field, float phase,
              std::size_t plane)
        : layout_(first.layout)
        , width_(planeWidth(layout_, first.width, plane))
        , height_(planeHeight(layout_, first.height, plane))
        , first_{first.planes[plane].data, first.planes[plane].stride, width_, height_}
        , second_{second.planes[plane].data, second.planes[plane].stride, width_, height_}
        , field_(field)
        , phase_(phase)
        , stepX_(plane > 0 && layout_.horizontalChromaShift() ? 2.0F : 1.0F)
        , stepY_(plane > 0 && layout_.verticalChromaShift() ? 2.0F : 1.0F) {
        // Luma columns 2k and 2k + 1 share column k of the field, which lies between them. Left-sited chroma lies on
        // the even luma columns.
        columns_.reserve(static_cast<std::size_t>(width_));
        for (int x = 0; x < width_; ++x)
            columns_.emplace_back(static_cast<float>(x) * stepX_ / 2 - 0.25F, field.motion.width());
    }

    int height() const { return height_; }

    void drawRow(int y, Sample* out) const {
        // Chroma rows of 4:2:0 lie midway between two luma rows: on a row of the field.
        const Between row(static_cast<float>(y) * stepY_ / 2 - (stepY_ > 1 ? 0.0F : 0.25F), field_.motion.height());
        const Vector* motionAbove = field_.motion.row(row.low);
        const Vector* motionBelow = field_.motion.row(row.high);
        const float* shareAbove = field_.secondShare.row(row.low);
        const float* shareBelow = field_.secondShare.row(row.high);
        const float largest = static_cast<float>((1 << layout_.bitDepth) - 1);
        const float py = static_cast<float>(y);
        for (int x = 0; x < width_; ++x) {
            const Between& column = columns_[static_cast<std::size_t>(x)];
            const float fx = column.fraction;
            const float w00 = (1 - fx) * (1 - row.fraction);
            const float w01 = fx * (1 - row.fraction);
            const float w10 = (1 - fx) * row.fraction;
            const float w11 = fx * row.fraction;
            const Vector motion = w00 * motionAbove[column.low] + w01 * motionAbove[column.high] +
                                  w10 * motionBelow[column.low] + w11 * motionBelow[column.high];
            const float share = w00 * shareAbove[column.low] + w01 * shareAbove[column.high] +
                                w10 * shareBelow[column.low] + w11 * shareBelow[column.high];
            const float px = static_cast<float>(x);
            const float vx = 2 * motion.x / stepX_;
            const float vy = 2 * motion.y / stepY_;
            const float one = first_.at(px - phase_ * vx, py - phase_ * vy);
            const float other = second_.at(px + (1 - phase_) * vx, py + (1 - phase_) * vy);
            out[x] = static_cast<Sample>(std::clamp(one + share * (other - one) + 0.5F, 0.0F, largest));
        }
    }

private:
    PixelLayout layout_;
    int width_;
    int height_;
    PlaneView<Sample> first_;
    PlaneView<Sample> second_;
    const PhaseField& field_;
    float phase_;
    float stepX_; // luma pixels a sample
    float stepY_;
    std::vector<Between> columns_;
};

template <typename Sample>
void warpPlane(const VideoFrame& first, const VideoFrame& second, const PhaseField& field, float phase,
               std::size_t plane, WritableFrame& result) {
    const PlaneWarp<Sample> warp(first, second, field, phase, plane);
    parallelRows(warp.height(), [&](int begin, int end) {
        for (int y = begin; y < end; ++y)
            warp.drawRow(y, reinterpret_cast<Sample*>(result.planes[plane] + y * result.frame.planes[plane].stride));
    });
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
