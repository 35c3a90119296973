// A main loop whose time a test sets, with background queues that run when it says so.
#pragma once

#include "editor/scheduler.h"

#include <deque>
#include <map>
#include <utility>

namespace flowtide::test {

class VirtualScheduler final : public Scheduler {
public:
    double now() const override { return now_; }
    ReferenceDate date() const override { return {7e8 + now_ + 1e-3 * static_cast<double>(++datesAsked_)}; }
    void post(Task task) override { posted_.push_back(std::move(task)); }
    void background(BackgroundQueue queue, Task task) override { queues_[queue].push_back(std::move(task)); }
    TaskID after(double seconds, Task task) override { return add(seconds, 0, std::move(task)); }
    TaskID every(double seconds, Task task) override { return add(seconds, seconds, std::move(task)); }
    void cancel(TaskID id) override {
        std::erase_if(timers_, [&](const auto& timer) { return timer.second.id == id; });
    }

    /// One turn: what has been posted before it.
    void turn() {
        for (std::size_t count = posted_.size(); count > 0; --count)
            take(posted_)();
    }
    /// The next job of a queue; its result waits to be brought home. Whether there was one.
    bool runJob(BackgroundQueue queue) {
        auto& jobs = queues_[queue];
        if (jobs.empty()) return false;
        take(jobs)();
        return true;
    }
    /// Everything that can happen without time passing.
    void settle() {
        bool isBusy = true;
        while (isBusy) {
            isBusy = !posted_.empty();
            turn();
            for (int queue = 0; queue < static_cast<int>(BackgroundQueue::count); ++queue)
                isBusy = runJob(static_cast<BackgroundQueue>(queue)) || isBusy;
        }
    }
    /// Lets time pass; timers run in the order of their times.
    void advance(double seconds) {
        const double end = now_ + seconds;
        while (!timers_.empty() && timers_.begin()->first <= end) {
            const auto next = timers_.begin();
            now_ = next->first;
            Timer timer = next->second;
            timers_.erase(next);
            if (timer.interval > 0) timers_.emplace(now_ + timer.interval, timer);
            timer.task();
        }
        now_ = end;
    }
    std::size_t jobCount(BackgroundQueue queue) { return queues_[queue].size(); }

private:
    struct Timer {
        TaskID id;
        double interval;
        Task task;
    };
    TaskID add(double seconds, double interval, Task task) {
        timers_.emplace(now_ + seconds, Timer{++lastID_, interval, std::move(task)});
        return lastID_;
    }
    static Task take(std::deque<Task>& tasks) {
        Task task = std::move(tasks.front());
        tasks.pop_front();
        return task;
    }

    double now_ = 0;
    mutable int datesAsked_ = 0;
    TaskID lastID_ = 0;
    std::deque<Task> posted_;
    std::multimap<double, Timer> timers_;
    std::map<BackgroundQueue, std::deque<Task>> queues_;
};

} // namespace flowtide::test
