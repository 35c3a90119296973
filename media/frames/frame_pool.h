// Reused memory for rendered frames.
#pragma once

#include "media/video_frame.h"

#include <cstddef>
#include <memory>

namespace flowtide {

/// Uninitialised memory that begins on a FramePool::alignment boundary.
struct AlignedDelete {
    void operator()(std::uint8_t* bytes) const;
};
using AlignedBytes = std::unique_ptr<std::uint8_t, AlignedDelete>;
AlignedBytes alignedBytes(std::size_t size);

/// Where a writable frame's planes are.
struct WritableFrame {
    VideoFrame frame;
    std::array<std::uint8_t*, 3> planes{};
};

/// Hands out frames of one layout and size; their memory comes back when the last share is gone. Planes and strides
/// are aligned for any SIMD. Thread-safe; frames may outlive the pool.
class FramePool {
public:
    static constexpr std::size_t alignment = 64; ///< bytes: a cache line, and the widest vector

    FramePool(PixelLayout layout, int width, int height);
    ~FramePool();
    FramePool(const FramePool&) = delete;
    FramePool& operator=(const FramePool&) = delete;

    PixelLayout layout() const { return layout_; }
    int width() const { return width_; }
    int height() const { return height_; }

    /// A frame whose pixels nobody else sees yet. Throws std::bad_alloc.
    WritableFrame take();

private:
    struct Memory;

    PixelLayout layout_;
    int width_;
    int height_;
    std::array<std::ptrdiff_t, 3> strides_{};
    std::array<std::size_t, 3> offsets_{};
    std::size_t size_ = 0;
    std::shared_ptr<Memory> memory_;
};

} // namespace flowtide
