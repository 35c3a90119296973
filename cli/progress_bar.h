// A one-line progress bar for a terminal.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace flowtide {

/// Draws an export's progress over itself on one line. Used by one thread at a time.
class ProgressBar {
public:
    using Clock = std::function<std::chrono::steady_clock::time_point()>;
    using Columns = std::function<int()>;
    using Output = std::function<void(const std::string&)>;

    /// `columns` tells the terminal's width, asked anew for every drawing.
    ProgressBar(std::int64_t frameCount, Columns columns, Output output, Clock clock = std::chrono::steady_clock::now);
    /// Clears the line.
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    /// Takes 0...1; 1 means that the file is being verified. Redraws at most ten times a second.
    void update(double fraction);
    /// Clears the line, prints something in its place and draws the bar again below.
    void printAbove(const std::function<void()>& print);

private:
    void draw(std::string line);
    void clear();
    std::string line(double fraction, double elapsedSeconds) const;

    std::int64_t frameCount_;
    Columns columns_;
    Output output_;
    Clock clock_;
    std::chrono::steady_clock::time_point start_;
    std::optional<std::chrono::steady_clock::time_point> drawnAt_;
    std::string shown_; ///< what the line holds now; empty before the first drawing
    bool verifying_ = false;
};

/// Whether standard error is a terminal.
bool standardErrorIsTerminal();
/// Its width, or the usual 80 where it does not tell.
int standardErrorColumns();

} // namespace flowtide
