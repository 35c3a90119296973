// Turns Ctrl-C, a closed terminal and termination requests into a call.
#pragma once

#include <signal.h>

#include <atomic>
#include <functional>
#include <thread>

namespace flowtide {

/// While it lives, the first SIGINT, SIGTERM, SIGHUP or SIGQUIT calls a function (on a thread of its own) instead of
/// ending the process, and a second one ends it, but for SIGHUP: a closed terminal sends that twice, from the shell and
/// from the system. Signals that the process was started to ignore stay ignored. Made before any other thread starts,
/// so that every thread inherits the blocked signals.
class CancelOnSignal {
public:
    explicit CancelOnSignal(std::function<void()> cancel);
    ~CancelOnSignal();
    CancelOnSignal(const CancelOnSignal&) = delete;
    CancelOnSignal& operator=(const CancelOnSignal&) = delete;

private:
    void wait();

    std::function<void()> cancel_;
    sigset_t requests_{}; ///< the signals that cancel
    sigset_t previousMask_{};
    std::atomic<bool> ending_ = false;
    std::atomic<bool> isRequested_ = false;
    std::thread waiter_;
};

} // namespace flowtide
