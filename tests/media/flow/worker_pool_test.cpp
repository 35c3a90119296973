// The pool of threads: every task once, errors to the caller, and no thread too many to go on without.
#include "media/flow/worker_pool.h"

#include <gtest/gtest.h>

#include <atomic>
#include <barrier>
#include <stdexcept>
#include <system_error>

namespace flowtide::flow {
namespace {

/// Starts threads until `limit` of them were made, then throws `Error`.
template <typename Error>
ThreadStarter limitedTo(int limit, const Error& error) {
    return [limit, error](std::function<void()> body) mutable {
        if (limit-- == 0) throw error;
        return startThread(std::move(body));
    };
}

std::vector<int> timesRun(WorkerPool& pool, int tasks) {
    std::vector<std::atomic<int>> counts(static_cast<std::size_t>(tasks));
    pool.run(tasks, [&](int task) { ++counts[static_cast<std::size_t>(task)]; });
    return {counts.begin(), counts.end()};
}

TEST(FlowWorkerPool, EveryTaskRunsOnceJobAfterJob) {
    for (const int threads : {0, 1, 2, 5}) {
        WorkerPool pool(threads);
        for (const int tasks : {0, 1, 2, 3, 100})
            EXPECT_EQ(timesRun(pool, tasks), std::vector<int>(static_cast<std::size_t>(tasks), 1)) << threads;
    }
}

TEST(FlowWorkerPool, TasksRunSideBySide) {
    WorkerPool pool(3);
    std::barrier together(3); // passed only by three threads at once
    for (int job = 0; job < 3; ++job)
        pool.run(3, [&](int) { together.arrive_and_wait(); });
}

TEST(FlowWorkerPool, BandsCoverTheRowsWhateverTheThreads) {
    for (const int rows : {0, 1, 31, 32, 33, 100})
        for (const int threads : {1, 3}) {
            std::vector<std::atomic<int>> ends(static_cast<std::size_t>(rows) + 1);
            WorkerPool(threads).runBands(rows,
                                         [&](int begin, int end) { ends[static_cast<std::size_t>(begin)] = end; });
            int row = 0;
            for (; row < rows; row = ends[static_cast<std::size_t>(row)]) {
                EXPECT_EQ(row % 32, 0);
                ASSERT_EQ(ends[static_cast<std::size_t>(row)], std::min(row + 32, rows));
            }
            EXPECT_EQ(row, rows);
        }
}

TEST(FlowWorkerPool, WhatATaskThrowsReachesTheCaller) {
    const auto caller = std::this_thread::get_id();
    for (const bool byCaller : {true, false}) {
        WorkerPool pool(2);
        std::barrier together(2); // one task for each thread
        EXPECT_THROW(pool.run(2,
                              [&](int) {
                                  together.arrive_and_wait();
                                  if ((std::this_thread::get_id() == caller) == byCaller)
                                      throw std::out_of_range("a task's");
                              }),
                     std::out_of_range);
        EXPECT_EQ(timesRun(pool, 50), std::vector<int>(50, 1)); // and is forgotten
    }
    std::atomic<int> others = 0;
    EXPECT_THROW(WorkerPool(3).run(20,
                                   [&](int task) {
                                       if (task == 0) throw std::out_of_range("the first");
                                       ++others;
                                   }),
                 std::out_of_range);
    EXPECT_EQ(others, 19);
}

TEST(FlowWorkerPool, GoesOnWithTheThreadsThatItGot) {
    const std::system_error refused(std::make_error_code(std::errc::resource_unavailable_try_again));
    for (const int limit : {0, 1, 3}) {
        WorkerPool pool(8, limitedTo(limit, refused));
        EXPECT_EQ(timesRun(pool, 100), std::vector<int>(100, 1)) << limit;
        std::barrier together(limit + 1);
        pool.run(limit + 1, [&](int) { together.arrive_and_wait(); });
    }
}

TEST(FlowWorkerPool, AnyOtherFailureStopsTheThreadsAndIsThrown) {
    for (const int limit : {0, 1, 3}) {
        EXPECT_THROW(WorkerPool(8, limitedTo(limit, std::bad_alloc())), std::bad_alloc);
        EXPECT_THROW(WorkerPool(8, limitedTo(limit, std::system_error(
                                                        std::make_error_code(std::errc::operation_not_permitted)))),
                     std::system_error);
    }
}

} // namespace
} // namespace flowtide::flow
