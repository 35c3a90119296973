// Reused memory of one size.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace flowtide {

/// Uninitialised memory that begins on a boundary of `bufferAlignment` bytes.
struct AlignedDelete {
    void operator()(std::uint8_t* bytes) const;
};
using AlignedBytes = std::unique_ptr<std::uint8_t, AlignedDelete>;
constexpr std::size_t bufferAlignment = 64; ///< bytes: a cache line, and the widest vector
AlignedBytes alignedBytes(std::size_t size);

/// The next multiple of the alignment.
constexpr std::size_t alignedSize(std::size_t size) {
    return (size + bufferAlignment - 1) / bufferAlignment * bufferAlignment;
}

/// Hands out buffers of one size; their memory comes back when the last share is gone. Thread-safe; buffers may outlive
/// the pool.
class BufferPool {
public:
    explicit BufferPool(std::size_t size);

    std::size_t size() const { return size_; }

    /// Uninitialised memory that nobody else sees yet. Throws std::bad_alloc.
    std::shared_ptr<std::uint8_t> take();

private:
    struct Memory;

    std::size_t size_;
    std::shared_ptr<Memory> memory_;
};

} // namespace flowtide
