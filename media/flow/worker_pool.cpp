// Starting and stopping the threads, and the hand-over of tasks and errors between them.
#include "media/flow/worker_pool.h"

#include <algorithm>
#include <exception>
#include <system_error>
#include <utility>

namespace flowtide::flow {

namespace {
constexpr int bandRows = 32;
} // namespace

// Once the delegated constructor has returned, whatever is thrown here runs the destructor, which stops the threads
// that were made; without it they would be joined while they wait for work.
WorkerPool::WorkerPool(int threads, const ThreadStarter& start)
    : WorkerPool(NoThreads{}) {
    if (threads <= 0) threads = static_cast<int>(std::max(1U, std::thread::hardware_concurrency()));
    threads_.reserve(static_cast<std::size_t>(threads - 1));
    try {
        for (int i = 1; i < threads; ++i)
            threads_.push_back(start([this] { serve(); }));
    } catch (const std::system_error& error) {
        if (error.code() != std::errc::resource_unavailable_try_again) throw;
    }
}

WorkerPool::~WorkerPool() {
    const std::scoped_lock guard(lock_);
    isStopping_ = true;
    wake_.notify_all();
}

void WorkerPool::run(int tasks, const std::function<void(int task)>& work) {
    std::unique_lock guard(lock_);
    job_ = {&work, tasks, 0, 0, {}};
    if (tasks > 1) wake_.notify_all();
    takeTasks(guard);
    done_.wait(guard, [&] { return job_.running == 0; });
    job_.work = nullptr;
    if (job_.error) std::rethrow_exception(std::exchange(job_.error, {}));
}

void WorkerPool::runBands(int rows, const std::function<void(int begin, int end)>& work) {
    run((rows + bandRows - 1) / bandRows,
        [&](int band) { work(band * bandRows, std::min((band + 1) * bandRows, rows)); });
}

void WorkerPool::serve() {
    std::unique_lock guard(lock_);
    for (;;) {
        wake_.wait(guard, [&] { return isStopping_ || job_.next < job_.tasks; });
        if (isStopping_) return;
        takeTasks(guard);
    }
}

void WorkerPool::takeTasks(std::unique_lock<std::mutex>& guard) {
    while (job_.next < job_.tasks) {
        const int task = job_.next++;
        ++job_.running;
        guard.unlock();
        std::exception_ptr error;
        try {
            (*job_.work)(task);
        } catch (...) {
            error = std::current_exception();
        }
        guard.lock();
        if (error && !job_.error) job_.error = error;
        if (--job_.running == 0 && job_.next >= job_.tasks) done_.notify_one();
    }
}

} // namespace flowtide::flow
