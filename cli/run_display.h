// What a headless run shows while it works: its lines, and below them the progress bar.
#pragma once

#include "cli/console.h"
#include "cli/progress_bar.h"

#include <memory>
#include <mutex>
#include <string_view>
#include <utility>

namespace flowtide {

/// Keeps lines and progress bar from running into each other. Any thread may use it.
class RunDisplay {
public:
    explicit RunDisplay(const Console& console)
        : console_(console) {}

    /// From now on progress is drawn; the line is cleared with the display.
    void show(std::unique_ptr<ProgressBar> bar) {
        const std::scoped_lock guard(lock_);
        bar_ = std::move(bar);
    }
    void hideBar() { show(nullptr); }
    void print(std::string_view line) {
        withoutBar([&] { console_.print(line); });
    }
    void warn(std::string_view line) {
        withoutBar([&] { console_.complain(line); });
    }
    void progress(double fraction) {
        const std::scoped_lock guard(lock_);
        if (bar_) bar_->update(fraction);
    }

private:
    template <typename Print>
    void withoutBar(const Print& print) {
        const std::scoped_lock guard(lock_);
        if (bar_)
            bar_->printAbove(print);
        else
            print();
    }

    Console console_;
    std::mutex lock_; ///< guards bar_ and the console's streams
    std::unique_ptr<ProgressBar> bar_;
};

} // namespace flowtide
