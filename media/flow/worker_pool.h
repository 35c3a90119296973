// A fixed set of threads that share out the parts of one job, so that an in-between frame takes all cores.
#pragma once

#include "media/thread_starter.h"

#include <condition_variable>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace flowtide::flow {

/// Runs the tasks of one job at a time on the calling thread and on its own. Used by one thread at a time.
class WorkerPool {
public:
    /// `threads` counts the calling one; 0: as many as the machine has cores. Where the system refuses a thread the
    /// pool has those that it got, in the worst case the calling one alone: slower, with the same results.
    explicit WorkerPool(int threads = 0, const ThreadStarter& start = startThread);
    ~WorkerPool();
    WorkerPool(const WorkerPool&) = delete;
    WorkerPool& operator=(const WorkerPool&) = delete;

    /// Calls work(0) … work(tasks - 1), each once, in any order and on any of the threads, and waits for all of them.
    /// Throws what a task threw, if one did.
    void run(int tasks, const std::function<void(int task)>& work);
    /// Shares out `rows` rows in bands that do not depend on the number of threads.
    void runBands(int rows, const std::function<void(int begin, int end)>& work);

private:
    struct NoThreads {};
    explicit WorkerPool(NoThreads) {}

    /// A job that is being worked on.
    struct Job {
        const std::function<void(int)>* work = nullptr;
        int tasks = 0;
        int next = 0;
        int running = 0;
        std::exception_ptr error;
    };

    void serve();
    /// Takes tasks until none are left; the lock is held on entry and on return.
    void takeTasks(std::unique_lock<std::mutex>& guard);

    std::mutex lock_; ///< guards job_ and isStopping_
    std::condition_variable wake_;
    std::condition_variable done_;
    Job job_;
    bool isStopping_ = false;
    std::vector<std::jthread> threads_;
};

} // namespace flowtide::flow
