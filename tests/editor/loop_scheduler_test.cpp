// The main loop of programs without a window, and the threads beside it.
#include "editor/loop_scheduler.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <string>
#include <vector>

namespace flowtide::test {
namespace {

using testing::ElementsAre;

TEST(LoopScheduler, TimersRunInTheirOrderUntilTheyAreCancelled) {
    LoopScheduler loop;
    std::vector<std::string> ran;
    const auto note = [&](const char* what) { return [&ran, what] { ran.emplace_back(what); }; };
    loop.after(0.002, note("later"));
    loop.after(0.001, note("sooner"));
    const auto never = loop.after(0.0015, note("never"));
    loop.cancel(never);
    loop.cancel(never); // may be named again
    int ticks = 0;
    Scheduler::TaskID ticking = 0;
    ticking = loop.every(0.003, [&] {
        if (++ticks == 3) loop.cancel(ticking);
    });
    loop.after(1.1, note("end")); // by then whatever ran again would have
    loop.run([&] { return !ran.empty() && ran.back() == "end"; });
    EXPECT_THAT(ran, ElementsAre("sooner", "later", "end"));
    EXPECT_EQ(ticks, 3);
}

TEST(LoopScheduler, JobsRunInOrderAndReachTheLoopInItsNextTurn) {
    std::vector<int> order;
    std::atomic<int> count = 0;
    {
        LoopScheduler loop;
        loop.post([&] {
            loop.post([&] { order.push_back(2); });
            order.push_back(1);
        });
        loop.background(BackgroundQueue::jobs, [&] { loop.post([&] { order.push_back(3); }); });
        loop.run([&] { return order.size() == 3; });
        EXPECT_EQ(std::count(order.begin(), order.end(), 3), 1);
        EXPECT_LT(std::find(order.begin(), order.end(), 1), std::find(order.begin(), order.end(), 2));
        // What nobody posts is seen all the same, however far the next timer is.
        loop.after(3600, [] {});
        loop.background(BackgroundQueue::jobs, [&] { ++count; });
        loop.run([&] { return count == 1; });
        order.clear();
        for (int i = 0; i < 100; ++i)
            loop.background(BackgroundQueue::renders, [&, i] { order.push_back(i); });
    } // waits for them
    EXPECT_EQ(order.size(), 100U);
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
}

} // namespace
} // namespace flowtide::test
