// A flag that the main thread raises and a job hears.
#pragma once

#include "media/cancel_check.h"

#include <atomic>
#include <memory>

namespace flowtide {

/// Belongs to one job after another. Raised when it goes.
class CancelFlag {
public:
    CancelFlag() = default;
    ~CancelFlag() { raise(); }
    CancelFlag(const CancelFlag&) = delete;
    CancelFlag& operator=(const CancelFlag&) = delete;

    /// For a new job, which has begun once it asks; the one before is cancelled.
    CancelCheck renewed() {
        raise();
        state_ = std::make_shared<std::atomic<State>>(State::waiting);
        return [state = state_] {
            State before = State::waiting;
            state->compare_exchange_strong(before, State::begun);
            return before == State::raised;
        };
    }
    /// Whether the job is one that waits: it will do nothing.
    bool raise() { return state_ && state_->exchange(State::raised) == State::waiting; }

private:
    enum class State { waiting, begun, raised };
    std::shared_ptr<std::atomic<State>> state_;
};

} // namespace flowtide
