// Resampling of a real-valued rectangle of one plane.
#pragma once

#include "media/frames/buffer_pool.h"
#include "media/video_frame.h"

#include <cstddef>
#include <cstdint>
#include <memory>

namespace flowtide {

/// A rectangle of a picture; (0, 0) is the picture's corner, not its first pixel's centre.
struct PictureRect {
    double left = 0;
    double top = 0;
    double width = 0;
    double height = 0;
    friend bool operator==(const PictureRect&, const PictureRect&) = default;
};

/// What the samples of a plane of a picture of layout `target` and `width` × `height` luma pixels cover of the same
/// plane of a picture of layout `source`, in that plane's own samples, when the target shows `rect` (in luma pixels) of
/// the source. Chroma is sited at the left of its luma pair and midway between rows, as H.264, HEVC and ProRes have it
/// unless they say otherwise.
PictureRect sitedRect(PixelLayout source, const PictureRect& rect, PixelLayout target, int width, int height,
                      std::size_t plane);

enum class ResampleFilter {
    lanczos,    ///< 3 lobes
    catmullRom, ///< cubic, B = 0, C = ½
    linear,
};

/// The samples of one plane: bytes up to 8 bits, two little-endian bytes above.
struct PlaneSamples {
    const std::uint8_t* data = nullptr;
    std::ptrdiff_t stride = 0; ///< bytes
    int width = 0;
    int height = 0;
    int bitDepth = 8;
};
/// Memory for the samples of one plane, rows and stride aligned to `bufferAlignment`.
struct WritablePlane {
    std::uint8_t* data = nullptr;
    std::ptrdiff_t stride = 0; ///< bytes
    int width = 0;
    int height = 0;
    int bitDepth = 8;
};

/// Draws a rectangle of a plane to fill another one, its filter widened where that makes the picture smaller. Codes are
/// multiplied by the power of two between the bit depths. Gives the same samples on every machine. Keeps what it can
/// reuse while sizes, depths, rectangle and filter stay the same; one thread at a time.
class PlaneResampler {
public:
    PlaneResampler();
    ~PlaneResampler();
    PlaneResampler(const PlaneResampler&) = delete;
    PlaneResampler& operator=(const PlaneResampler&) = delete;

    /// `rect` in the source's samples. False when the library refuses.
    [[nodiscard]] bool resample(const PlaneSamples& source, const PictureRect& rect, ResampleFilter filter,
                                const WritablePlane& target);

private:
    class Implementation;
    std::unique_ptr<Implementation> implementation_;
};

} // namespace flowtide
