// A one-line progress bar for a terminal.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace flowtide {

/// Draws an export's progress over itself on one line. Used from one thread.
class ProgressBar {
public:
    using Clock = std::function<std::chrono::steady_clock::time_point()>;
    using Output = std::function<void(const std::string&)>;

    /// `columns`: the terminal's width.
    ProgressBar(std::int64_t frameCount, int columns, Output output, Clock clock = std::chrono::steady_clock::now);
    /// Clears the line.
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    /// Takes 0...1; 1 means that the file is being verified. Redraws at most ten times a second.
    void update(double fraction);

private:
    std::string text(double fraction, double elapsedSeconds) const;

    std::int64_t frameCount_;
    int columns_;
    Output output_;
    Clock clock_;
    std::chrono::steady_clock::time_point start_;
    std::optional<std::chrono::steady_clock::time_point> drawn_;
    bool verifying_ = false;
};

/// The width of the terminal on standard error; nothing when it is none.
std::optional<int> standardErrorColumns();

} // namespace flowtide
