// Turns.
#include "editor/loop_scheduler.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace flowtide {

double LoopScheduler::now() const {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

void LoopScheduler::post(Task task) {
    {
        const std::scoped_lock guard(lock_);
        posted_.push_back(std::move(task));
    }
    posts_.notify_one();
}

Scheduler::TaskID LoopScheduler::after(double seconds, Task task) {
    return add(seconds, 0, std::move(task));
}

Scheduler::TaskID LoopScheduler::every(double seconds, Task task) {
    return add(seconds, seconds, std::move(task));
}

Scheduler::TaskID LoopScheduler::add(double seconds, double interval, Task task) {
    timers_.emplace(now() + seconds, Repeating{++lastID_, interval, std::move(task)});
    return lastID_;
}

void LoopScheduler::cancel(TaskID id) {
    std::erase_if(timers_, [&](const auto& timer) { return timer.second.id == id; });
}

void LoopScheduler::runTimers() {
    const double time = now();
    while (!timers_.empty() && timers_.begin()->first <= time) {
        Repeating timer = std::move(timers_.extract(timers_.begin()).mapped());
        const Task task = timer.task;
        if (timer.interval > 0) timers_.emplace(time + timer.interval, std::move(timer));
        task();
    }
}

void LoopScheduler::run(const std::function<bool()>& isDone) {
    while (!isDone()) {
        runTimers();
        std::deque<Task> turn;
        {
            std::unique_lock guard(lock_);
            constexpr double idle = 0.1; // seconds: `isDone` may look at something that nobody posts
            const double next = timers_.empty() ? idle : std::min(timers_.begin()->first - now(), idle);
            if (next > 0) posts_.wait_for(guard, std::chrono::duration<double>(next), [&] { return !posted_.empty(); });
            turn.swap(posted_);
        }
        for (Task& task : turn)
            task();
    }
}

} // namespace flowtide
