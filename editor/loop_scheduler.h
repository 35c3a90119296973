// A main loop for programs without a window.
#pragma once

#include "editor/background_queues.h"
#include "editor/scheduler.h"

#include <condition_variable>
#include <deque>
#include <functional>
#include <map>
#include <mutex>

namespace flowtide {

/// The thread that calls run() is the main thread. Its destructor waits for the jobs in the background.
class LoopScheduler : public Scheduler {
public:
    double now() const override;
    ReferenceDate date() const override { return ReferenceDate::now(); }
    void post(Task task) override;
    void background(BackgroundQueue queue, Task task) override { queues_.run(queue, std::move(task)); }
    TaskID after(double seconds, Task task) override;
    TaskID every(double seconds, Task task) override;
    void cancel(TaskID id) override;

    /// Runs turns until `isDone`, which is asked after each.
    void run(const std::function<bool()>& isDone);

private:
    struct Repeating {
        TaskID id;
        double interval; ///< seconds; 0: once
        Task task;
    };
    TaskID add(double seconds, double interval, Task task);
    void runTimers();

    std::mutex lock_; ///< guards posted_
    std::condition_variable posts_;
    std::deque<Task> posted_;
    std::multimap<double, Repeating> timers_; ///< by their time, of now(); the main thread's alone
    TaskID lastID_ = 0;
    BackgroundQueues queues_; ///< last: its jobs post
};

} // namespace flowtide
