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

    /// For a new job; the one before is cancelled.
    CancelCheck renewed() {
        raise();
        isRaised_ = std::make_shared<std::atomic<bool>>(false);
        return [isRaised = isRaised_] { return isRaised->load(); };
    }
    void raise() {
        if (isRaised_) *isRaised_ = true;
    }

private:
    std::shared_ptr<std::atomic<bool>> isRaised_;
};

} // namespace flowtide
