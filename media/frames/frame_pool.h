// Reused memory for rendered frames.
#pragma once

#include "media/frames/buffer_pool.h"
#include "media/video_frame.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace flowtide {

/// Where a writable frame's planes are.
struct WritableFrame {
    VideoFrame frame;
    std::array<std::uint8_t*, 3> planes{};
};

/// Hands out frames of one layout and size; their memory comes back when the last share is gone. Planes and strides
/// are aligned for any SIMD. Thread-safe; frames may outlive the pool.
class FramePool {
public:
    FramePool(PixelLayout layout, int width, int height);

    PixelLayout layout() const { return layout_; }
    int width() const { return width_; }
    int height() const { return height_; }

    /// A frame whose pixels nobody else sees yet. Throws std::bad_alloc.
    WritableFrame take();

private:
    PixelLayout layout_;
    int width_;
    int height_;
    BufferPool buffers_;
};

} // namespace flowtide
