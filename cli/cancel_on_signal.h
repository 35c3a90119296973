// Ctrl-C and termination requests as a call.
#pragma once

#include <signal.h>

#include <functional>
#include <thread>

namespace flowtide {

/// While it lives, the first SIGINT or SIGTERM calls a function instead of ending the process, and a second one ends
/// it. Made before any other thread starts, so that every thread inherits the blocked signals.
class CancelOnSignal {
public:
    explicit CancelOnSignal(std::function<void()> cancel);
    ~CancelOnSignal();
    CancelOnSignal(const CancelOnSignal&) = delete;
    CancelOnSignal& operator=(const CancelOnSignal&) = delete;

private:
    sigset_t previousMask_{};
    std::thread waiter_;
};

} // namespace flowtide
