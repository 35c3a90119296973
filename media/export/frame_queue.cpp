// Where the worker that renders and the worker that encodes wait for each other.
#include "media/export/frame_queue.h"

#include <utility>

namespace flowtide {

bool FrameQueue::push(VideoFrame frame) {
    std::unique_lock guard(lock_);
    changed_.wait(guard, [&] { return isStopped_ || frames_.size() < capacity_; });
    if (isStopped_) return false;
    frames_.push_back(std::move(frame));
    changed_.notify_all();
    return true;
}

void FrameQueue::close() {
    const std::scoped_lock guard(lock_);
    isClosed_ = true;
    changed_.notify_all();
}

std::optional<VideoFrame> FrameQueue::pop() {
    std::unique_lock guard(lock_);
    changed_.wait(guard, [&] { return isClosed_ || !frames_.empty(); });
    if (frames_.empty()) return std::nullopt;
    VideoFrame frame = std::move(frames_.front());
    frames_.pop_front();
    changed_.notify_all();
    return frame;
}

void FrameQueue::stop() {
    const std::scoped_lock guard(lock_);
    isStopped_ = true;
    frames_.clear();
    changed_.notify_all();
}

} // namespace flowtide
