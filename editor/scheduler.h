// The session's clock, its timers, and the way to other threads and back.
#pragma once

#include "project/reference_date.h"

#include <cstdint>
#include <functional>
#include <utility>

namespace flowtide {

/// Work off the main thread; each queue runs its jobs one after another, in order.
enum class BackgroundQueue {
    projects, ///< every access to the project store
    clips,    ///< probing and fingerprints
    jobs,     ///< exports, proxies, tracking
    renders,  ///< previews rendered ahead of playback
    sound,    ///< the open clip's, decoded
    frames,   ///< single frames of the open clip
    count,    ///< how many there are
};

/// What the session needs of a main loop. The window brings Qt's, tests one whose time they set. Must outlive every
/// session that it was given to, and the jobs that these have started.
class Scheduler {
public:
    using Task = std::function<void()>;
    using TaskID = std::uint64_t; ///< from 1 up, never used twice

    virtual ~Scheduler() = default;

    /// Seconds of a steady clock.
    virtual double now() const = 0;
    /// The date on the wall.
    virtual ReferenceDate date() const = 0;

    /// Runs a task in a later turn of the main loop, in order. From any thread.
    virtual void post(Task task) = 0;
    /// Runs a task off the main thread. The task must not throw. From the main thread.
    virtual void background(BackgroundQueue queue, Task task) = 0;

    // From the main thread, to run on it:
    virtual TaskID after(double seconds, Task task) = 0;
    virtual TaskID every(double seconds, Task task) = 0;
    /// A task that has run, or that was cancelled before, may be named again.
    virtual void cancel(TaskID id) = 0;
};

/// Owns a timer: cancels it when it is replaced or goes.
class Timer {
public:
    Timer() = default;
    Timer(Scheduler& scheduler, Scheduler::TaskID id)
        : scheduler_(&scheduler)
        , id_(id) {}
    Timer(Timer&& other) noexcept
        : scheduler_(std::exchange(other.scheduler_, nullptr))
        , id_(other.id_) {}
    Timer& operator=(Timer&& other) noexcept {
        cancel();
        scheduler_ = std::exchange(other.scheduler_, nullptr);
        id_ = other.id_;
        return *this;
    }
    ~Timer() { cancel(); }

    void cancel() {
        if (auto* scheduler = std::exchange(scheduler_, nullptr)) scheduler->cancel(id_);
    }

private:
    Scheduler* scheduler_ = nullptr;
    Scheduler::TaskID id_ = 0;
};

} // namespace flowtide
