// A short queue of rendered frames between the worker that makes them and the one that encodes them.
#pragma once

#include "media/video_frame.h"

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <optional>

namespace flowtide {

/// First in, first out, with one thread at each end. The producer waits while the queue is full, the consumer while it
/// is empty.
class FrameQueue {
public:
    explicit FrameQueue(std::size_t capacity)
        : capacity_(capacity) {}

    /// Adds a frame; false once the consumer has stopped, and the frame is dropped then.
    bool push(VideoFrame frame);
    /// The producer has no more frames.
    void close();
    /// The next frame; nothing when the producer has closed the queue and all its frames are taken.
    std::optional<VideoFrame> pop();
    /// The consumer takes no more frames.
    void stop();

private:
    const std::size_t capacity_;
    std::mutex lock_; ///< guards everything below
    std::condition_variable changed_;
    std::deque<VideoFrame> frames_;
    bool isClosed_ = false;
    bool isStopped_ = false;
};

} // namespace flowtide
