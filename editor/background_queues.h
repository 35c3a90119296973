// The threads behind a scheduler's background work.
#pragma once

#include "editor/scheduler.h"

#include <array>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <thread>

namespace flowtide {

/// A thread for each queue, started when it is first needed. Its destructor lets every job that was given to it come to
/// its end, so that no save is lost.
class BackgroundQueues {
public:
    BackgroundQueues() = default;
    ~BackgroundQueues();
    BackgroundQueues(const BackgroundQueues&) = delete;
    BackgroundQueues& operator=(const BackgroundQueues&) = delete;

    /// From one thread. Throws std::system_error when the machine refuses a thread.
    void run(BackgroundQueue name, Scheduler::Task task);

private:
    struct Queue {
        std::mutex lock; ///< guards everything below but the thread
        std::condition_variable changed;
        std::deque<Scheduler::Task> tasks;
        bool isEnding = false;
        std::thread thread;
    };
    static void work(Queue& queue);

    std::array<Queue, static_cast<std::size_t>(BackgroundQueue::count)> queues_;
};

} // namespace flowtide
