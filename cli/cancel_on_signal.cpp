// Waits for termination requests on a thread of its own, since hardly anything may be called from a signal handler.
#include "cli/cancel_on_signal.h"

#include <pthread.h>

#include <array>
#include <utility>

namespace flowtide {

namespace {

/// What asks a process to end and leaves it the time to tidy up.
constexpr std::array terminationRequests{SIGINT, SIGTERM, SIGHUP, SIGQUIT};

// Ends the waiting thread; sent to it alone.
constexpr int wakeUp = SIGUSR1;

bool isIgnored(int signal) {
    struct sigaction action {};
    return ::sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

/// Of a signal that is blocked.
void discardPending(int signal) {
    sigset_t pending;
    if (sigpending(&pending) != 0 || sigismember(&pending, signal) != 1) return;
    sigset_t awaited;
    sigemptyset(&awaited);
    sigaddset(&awaited, signal);
    sigwait(&awaited, &signal);
}

} // namespace

CancelOnSignal::CancelOnSignal(std::function<void()> cancel)
    : cancel_(std::move(cancel)) {
    sigemptyset(&requests_);
    for (const int signal : terminationRequests)
        if (!isIgnored(signal)) sigaddset(&requests_, signal);
    sigset_t blocked = requests_;
    sigaddset(&blocked, wakeUp);
    pthread_sigmask(SIG_BLOCK, &blocked, &previousMask_);
    waiter_ = std::thread([this] { wait(); });
}

CancelOnSignal::~CancelOnSignal() {
    ending_ = true;
    pthread_kill(waiter_.native_handle(), wakeUp);
    waiter_.join();
    // A hangup after the first request was kept from the process, and would end it now.
    if (isRequested_ && sigismember(&requests_, SIGHUP) == 1) discardPending(SIGHUP);
    pthread_sigmask(SIG_SETMASK, &previousMask_, nullptr);
}

void CancelOnSignal::wait() {
    sigset_t awaited = requests_;
    sigaddset(&awaited, wakeUp);
    while (!ending_) {
        int signal = 0;
        if (sigwait(&awaited, &signal) != 0 || signal == wakeUp) continue;
        isRequested_ = true;
        cancel_();
        // From here on this thread takes the next request, with its default action: the end of the process.
        sigset_t repeated = requests_;
        sigdelset(&repeated, SIGHUP);
        pthread_sigmask(SIG_UNBLOCK, &repeated, nullptr);
        sigemptyset(&awaited);
        sigaddset(&awaited, wakeUp);
    }
}

} // namespace flowtide
