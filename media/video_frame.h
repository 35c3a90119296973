// A decoded or rendered picture, shared by reference.
#pragma once

#include "core/time.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace flowtide {

enum class ChromaSubsampling { yuv420, yuv422, yuv444 };

/// How a planar YCbCr frame stores its samples: one byte each below 10 bits, two (little-endian, low bits) from 10.
struct PixelLayout {
    ChromaSubsampling chroma = ChromaSubsampling::yuv420;
    int bitDepth = 8;
    bool fullRange = false;
    friend bool operator==(const PixelLayout&, const PixelLayout&) = default;

    constexpr int bytesPerSample() const { return bitDepth > 8 ? 2 : 1; }
    /// Right shifts from luma to chroma sizes.
    constexpr int horizontalChromaShift() const { return chroma == ChromaSubsampling::yuv444 ? 0 : 1; }
    constexpr int verticalChromaShift() const { return chroma == ChromaSubsampling::yuv420 ? 1 : 0; }
};

/// Samples in a row of plane 0 (luma), 1 or 2 (chroma) of a frame `width` luma samples wide.
constexpr int planeWidth(PixelLayout layout, int width, std::size_t plane) {
    const int shift = plane == 0 ? 0 : layout.horizontalChromaShift();
    return (width + (1 << shift) - 1) >> shift;
}
/// Rows of a plane of a frame `height` luma rows high.
constexpr int planeHeight(PixelLayout layout, int height, std::size_t plane) {
    const int shift = plane == 0 ? 0 : layout.verticalChromaShift();
    return (height + (1 << shift) - 1) >> shift;
}

/// Bytes of the samples in a row of a plane.
constexpr std::size_t planeRowBytes(PixelLayout layout, int width, std::size_t plane) {
    return static_cast<std::size_t>(planeWidth(layout, width, plane)) *
           static_cast<std::size_t>(layout.bytesPerSample());
}

/// Three planes and a share in the memory behind them. Copies are cheap and show the same pixels; nobody writes to a
/// frame once it has been handed on.
struct VideoFrame {
    struct Plane {
        const std::uint8_t* data = nullptr;
        std::ptrdiff_t stride = 0; ///< bytes from row to row
    };

    PixelLayout layout;
    int width = 0;
    int height = 0;
    std::array<Plane, 3> planes{};
    std::shared_ptr<const void> owner; ///< keeps the planes alive

    explicit operator bool() const { return owner != nullptr; }
};

/// A decoded frame and the source time from which it is shown.
struct TimedFrame {
    VideoFrame frame;
    SourceSeconds time;
};

/// A decoded frame and the stretch of its file during which it is shown, in seconds of the file.
struct SpannedFrame {
    VideoFrame frame;
    double time = 0; ///< its own
    double from = 0; ///< shown from here: its time, or minus infinity for a track's first frame
    double end = 0;  ///< up to here, exclusively; infinity for a track's last frame
};

} // namespace flowtide
