// Work off the main thread whose results come home to the session, if it is still there.
#pragma once

#include "editor/scheduler.h"

#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>

namespace flowtide {

/// What a job came to: its result, or what it threw.
template <typename Result>
class Outcome {
public:
    template <typename Work>
    static Outcome of(Work& work) {
        Outcome outcome;
        try {
            outcome.value_.template emplace<Result>(work());
        } catch (...) {
            outcome.value_.template emplace<std::exception_ptr>(std::current_exception());
        }
        return outcome;
    }

    /// The result; throws what the job threw.
    Result& get() {
        if (auto* thrown = std::get_if<std::exception_ptr>(&value_)) std::rethrow_exception(*thrown);
        return std::get<Result>(value_);
    }

private:
    std::variant<std::monostate, Result, std::exception_ptr> value_;
};

/// The sentence for a job that threw; nothing when it was cancelled, which is no failure.
std::optional<std::string> failureToShow(const std::exception& error);

/// What jobs that have nothing to say come to.
struct Nothing {};

/// Starts jobs and brings what they say to the main thread. Nothing arrives any more once this is destroyed. Main
/// thread only, apart from what home() makes.
class SessionJobs {
public:
    explicit SessionJobs(Scheduler& scheduler)
        : scheduler_(scheduler) {}
    ~SessionJobs() { *isAlive_ = false; }
    SessionJobs(const SessionJobs&) = delete;
    SessionJobs& operator=(const SessionJobs&) = delete;

    Scheduler& scheduler() const { return scheduler_; }

    /// Runs `work` in a queue, then `done(outcome)` on the main thread. `work` must own, or share, all that it uses.
    template <typename Work, typename Done>
    void start(BackgroundQueue queue, Work work, Done done) {
        using Result = std::invoke_result_t<Work&>;
        scheduler_.background(queue, [work = std::move(work), done = std::move(done), &scheduler = scheduler_,
                                      isAlive = isAlive_]() mutable {
            auto outcome = std::make_shared<Outcome<Result>>(Outcome<Result>::of(work));
            scheduler.post([outcome, done = std::move(done), isAlive]() mutable {
                if (*isAlive) done(*outcome);
            });
        });
    }

    /// A function for jobs to call from their thread: `receive` runs on the main thread with what they give.
    template <typename Value>
    std::function<void(Value)> home(std::function<void(Value)> receive) const {
        return [receive = std::move(receive), &scheduler = scheduler_, isAlive = isAlive_](Value value) {
            scheduler.post([receive, value = std::move(value), isAlive] {
                if (*isAlive) receive(value);
            });
        };
    }

private:
    Scheduler& scheduler_;
    std::shared_ptr<bool> isAlive_ = std::make_shared<bool>(true); ///< looked at on the main thread alone
};

} // namespace flowtide
