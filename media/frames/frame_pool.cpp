// The planes of a frame in one block of memory, and the list of blocks that wait for the next frame.
#include "media/frames/frame_pool.h"

#include <mutex>
#include <new>
#include <utility>
#include <vector>

namespace flowtide {

namespace {

std::size_t aligned(std::size_t size) {
    return (size + FramePool::alignment - 1) / FramePool::alignment * FramePool::alignment;
}

} // namespace

void AlignedDelete::operator()(std::uint8_t* bytes) const {
    ::operator delete(bytes, std::align_val_t(FramePool::alignment));
}

AlignedBytes alignedBytes(std::size_t size) {
    return AlignedBytes(static_cast<std::uint8_t*>(::operator new(size, std::align_val_t(FramePool::alignment))));
}

struct FramePool::Memory {
    std::mutex lock; ///< guards everything below
    std::vector<AlignedBytes> free;
};

FramePool::FramePool(PixelLayout layout, int width, int height)
    : layout_(layout)
    , width_(width)
    , height_(height)
    , memory_(std::make_shared<Memory>()) {
    for (std::size_t plane = 0; plane < offsets_.size(); ++plane) {
        const std::size_t stride = aligned(planeRowBytes(layout, width, plane));
        strides_[plane] = static_cast<std::ptrdiff_t>(stride);
        offsets_[plane] = size_;
        size_ += aligned(stride * static_cast<std::size_t>(planeHeight(layout, height, plane)));
    }
}

FramePool::~FramePool() = default;

WritableFrame FramePool::take() {
    AlignedBytes bytes;
    {
        const std::scoped_lock guard(memory_->lock);
        if (!memory_->free.empty()) {
            bytes = std::move(memory_->free.back());
            memory_->free.pop_back();
        }
    }
    if (!bytes) bytes = alignedBytes(size_);

    WritableFrame result;
    result.frame.layout = layout_;
    result.frame.width = width_;
    result.frame.height = height_;
    for (std::size_t plane = 0; plane < offsets_.size(); ++plane) {
        result.planes[plane] = bytes.get() + offsets_[plane];
        result.frame.planes[plane] = {result.planes[plane], strides_[plane]};
    }
    result.frame.owner = std::shared_ptr<const void>(bytes.release(), [memory = memory_](const void* raw) {
        AlignedBytes returned(static_cast<std::uint8_t*>(const_cast<void*>(raw)));
        const std::scoped_lock guard(memory->lock);
        memory->free.push_back(std::move(returned));
    });
    return result;
}

} // namespace flowtide
