// The threads' loop.
#include "editor/background_queues.h"

#include <utility>

namespace flowtide {

BackgroundQueues::~BackgroundQueues() {
    for (Queue& queue : queues_) {
        {
            const std::scoped_lock guard(queue.lock);
            queue.isEnding = true;
        }
        queue.changed.notify_one();
        if (queue.thread.joinable()) queue.thread.join();
    }
}

void BackgroundQueues::run(BackgroundQueue name, Scheduler::Task task) {
    Queue& queue = queues_.at(static_cast<std::size_t>(name));
    if (!queue.thread.joinable()) queue.thread = std::thread([&queue] { work(queue); });
    {
        const std::scoped_lock guard(queue.lock);
        queue.tasks.push_back(std::move(task));
    }
    queue.changed.notify_one();
}

void BackgroundQueues::work(Queue& queue) {
    std::unique_lock guard(queue.lock);
    while (true) {
        queue.changed.wait(guard, [&] { return queue.isEnding || !queue.tasks.empty(); });
        if (queue.tasks.empty()) return;
        const Scheduler::Task task = std::move(queue.tasks.front());
        queue.tasks.pop_front();
        guard.unlock();
        task();
        guard.lock();
    }
}

} // namespace flowtide
