// A thread that waits for signals.
#include "cli/cancel_on_signal.h"

#include <pthread.h>

#include <utility>

namespace flowtide {

namespace {
// Ends the waiting thread; sent to it alone.
constexpr int wakeUp = SIGUSR1;
} // namespace

CancelOnSignal::CancelOnSignal(std::function<void()> cancel) {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGTERM, wakeUp})
        sigaddset(&signals, signal);
    pthread_sigmask(SIG_BLOCK, &signals, &previousMask_);
    waiter_ = std::thread([signals, cancel = std::move(cancel)] {
        int signal = 0;
        if (sigwait(&signals, &signal) != 0 || signal == wakeUp) return;
        cancel();
        sigset_t requests = signals;
        sigdelset(&requests, wakeUp);
        // This thread takes the next request, with its default action: the end of the process.
        pthread_sigmask(SIG_UNBLOCK, &requests, nullptr);
        sigset_t wake;
        sigemptyset(&wake);
        sigaddset(&wake, wakeUp);
        sigwait(&wake, &signal);
    });
}

CancelOnSignal::~CancelOnSignal() {
    pthread_kill(waiter_.native_handle(), wakeUp);
    waiter_.join();
    pthread_sigmask(SIG_SETMASK, &previousMask_, nullptr);
}

} // namespace flowtide
