// The session's main loop and timers on Qt's.
#pragma once

#include "editor/background_queues.h"
#include "editor/scheduler.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>
#include <memory>
#include <unordered_map>
#include <utility>

namespace flowtide {

/// Made and destroyed on the thread of the application object. Its destructor lets the jobs in the background come to
/// their ends; what they post is dropped then.
class QtScheduler final : public Scheduler {
public:
    QtScheduler();
    ~QtScheduler() override;

    double now() const override;
    ReferenceDate date() const override { return ReferenceDate::now(); }
    void post(Task task) override;
    void background(BackgroundQueue queue, Task task) override { queues_.run(queue, std::move(task)); }
    TaskID after(double seconds, Task task) override { return add(seconds, std::move(task), true); }
    TaskID every(double seconds, Task task) override { return add(seconds, std::move(task), false); }
    void cancel(TaskID id) override { timers_.erase(id); }

private:
    TaskID add(double seconds, Task task, bool isOnce);

    QElapsedTimer clock_;
    QObject receiver_; ///< calls that were posted end with it
    std::unordered_map<TaskID, std::unique_ptr<QTimer, void (*)(QTimer*)>> timers_;
    TaskID lastID_ = 0;
    BackgroundQueues queues_; ///< last: its jobs post
};

} // namespace flowtide
