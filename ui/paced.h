// Work that comes often and is done a few times a second.
#pragma once

#include <QTimer>
#include <functional>
#include <utility>

namespace flowtide {

/// Runs at once when it has not run for a while, otherwise at the end of that while. Texts of progress must be
/// readable.
class Paced {
public:
    static constexpr int milliseconds = 250;

    explicit Paced(std::function<void()> work)
        : work_(std::move(work)) {
        timer_.setSingleShot(true);
        QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] {
            if (isWanted_) runNow();
        });
    }

    void request() {
        isWanted_ = true;
        if (!timer_.isActive()) runNow();
    }
    void runNow() {
        isWanted_ = false;
        timer_.start(milliseconds);
        work_();
    }

private:
    std::function<void()> work_;
    QTimer timer_;
    bool isWanted_ = false;
};

} // namespace flowtide
