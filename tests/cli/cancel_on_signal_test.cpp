// Which signals cancel, which end the process, and what is left as it was.
#include "cli/cancel_on_signal.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <future>

namespace flowtide {
namespace {

TEST(CancelOnSignalDeathTest, FirstCancelsSecondEndsTheProcess) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    for (const int signal : {SIGINT, SIGTERM, SIGQUIT}) {
        EXPECT_EXIT(
            {
                ::signal(signal, SIG_DFL); // whatever this test was started with
                std::promise<void> cancelled;
                const CancelOnSignal cancelOnSignal([&] { cancelled.set_value(); });
                ::kill(::getpid(), signal);
                cancelled.get_future().wait();
                ::kill(::getpid(), SIGHUP); // a terminal that closes, which is no second thought
                ::kill(::getpid(), signal);
                for (;;)
                    ::pause();
            },
            testing::KilledBySignal(signal), "");
    }
}

TEST(CancelOnSignalDeathTest, AClosedTerminalMaySaySoTwice) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            ::signal(SIGHUP, SIG_DFL);
            {
                std::promise<void> cancelled;
                const CancelOnSignal cancelOnSignal([&] { cancelled.set_value(); });
                ::kill(::getpid(), SIGHUP);
                cancelled.get_future().wait();
                ::kill(::getpid(), SIGHUP);
            } // has waited for the thread, so that what is let through has arrived
            std::_Exit(3);
        },
        testing::ExitedWithCode(3), "");
}

TEST(CancelOnSignal, StrayWakeUpsDoNotStopIt) {
    std::promise<void> cancelled;
    const CancelOnSignal cancelOnSignal([&] { cancelled.set_value(); });
    ::kill(::getpid(), SIGUSR1);
    ::kill(::getpid(), SIGTERM);
    cancelled.get_future().wait();
}

TEST(CancelOnSignalDeathTest, IgnoredSignalsStayIgnored) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            ::signal(SIGHUP, SIG_IGN); // as nohup does
            std::promise<void> cancelled;
            {
                const CancelOnSignal cancelOnSignal([&] { cancelled.set_value(); });
                ::kill(::getpid(), SIGHUP);
            }
            const bool heard = cancelled.get_future().wait_for(std::chrono::seconds(0)) == std::future_status::ready;
            std::exit(heard ? 1 : 0);
        },
        testing::ExitedWithCode(0), "");
}

TEST(CancelOnSignal, EndsWithoutASignalAndRestoresTheMask) {
    sigset_t before;
    pthread_sigmask(SIG_SETMASK, nullptr, &before);
    {
        const CancelOnSignal cancelOnSignal([] { FAIL(); });
    }
    sigset_t after;
    pthread_sigmask(SIG_SETMASK, nullptr, &after);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGUSR1})
        EXPECT_EQ(sigismember(&after, signal), sigismember(&before, signal)) << signal;
}

} // namespace
} // namespace flowtide
