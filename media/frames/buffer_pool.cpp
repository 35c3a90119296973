// The free list behind the pool.
#include "media/frames/buffer_pool.h"

#include <mutex>
#include <new>
#include <utility>
#include <vector>

namespace flowtide {

void AlignedDelete::operator()(std::uint8_t* bytes) const {
    ::operator delete(bytes, std::align_val_t(bufferAlignment));
}

AlignedBytes alignedBytes(std::size_t size) {
    return AlignedBytes(static_cast<std::uint8_t*>(::operator new(size, std::align_val_t(bufferAlignment))));
}

struct BufferPool::Memory {
    std::mutex lock; ///< guards everything below
    std::vector<AlignedBytes> free;
};

BufferPool::BufferPool(std::size_t size)
    : size_(size)
    , memory_(std::make_shared<Memory>()) {}

std::shared_ptr<std::uint8_t> BufferPool::take() {
    AlignedBytes bytes;
    {
        const std::scoped_lock guard(memory_->lock);
        if (!memory_->free.empty()) {
            bytes = std::move(memory_->free.back());
            memory_->free.pop_back();
        }
    }
    if (!bytes) bytes = alignedBytes(size_);
    return {bytes.release(), [memory = memory_](std::uint8_t* raw) {
                AlignedBytes returned(raw);
                const std::scoped_lock guard(memory->lock);
                memory->free.push_back(std::move(returned));
            }};
}

} // namespace flowtide
