// The planes of a frame in one block of pooled memory.
#include "media/frames/frame_pool.h"

namespace flowtide {

namespace {

std::size_t planeStride(PixelLayout layout, int width, std::size_t plane) {
    return alignedSize(planeRowBytes(layout, width, plane));
}

std::size_t planeSize(PixelLayout layout, int width, int height, std::size_t plane) {
    return planeStride(layout, width, plane) * static_cast<std::size_t>(planeHeight(layout, height, plane));
}

std::size_t frameSize(PixelLayout layout, int width, int height) {
    return planeSize(layout, width, height, 0) + 2 * planeSize(layout, width, height, 1);
}

} // namespace

FramePool::FramePool(PixelLayout layout, int width, int height)
    : layout_(layout)
    , width_(width)
    , height_(height)
    , buffers_(frameSize(layout, width, height)) {}

WritableFrame FramePool::take() {
    const std::shared_ptr<std::uint8_t> buffer = buffers_.take();
    WritableFrame result;
    result.frame.layout = layout_;
    result.frame.width = width_;
    result.frame.height = height_;
    std::uint8_t* next = buffer.get();
    for (std::size_t plane = 0; plane < result.planes.size(); ++plane) {
        result.planes[plane] = next;
        result.frame.planes[plane] = {next, static_cast<std::ptrdiff_t>(planeStride(layout_, width_, plane))};
        next += planeSize(layout_, width_, height_, plane);
    }
    result.frame.owner = buffer;
    return result;
}

} // namespace flowtide
