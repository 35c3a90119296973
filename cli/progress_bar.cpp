// Drawing of the progress bar.
#include "cli/progress_bar.h"

#include <fmt/format.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace flowtide {

namespace {

constexpr auto redrawInterval = std::chrono::milliseconds(100);
constexpr double settlingSeconds = 1; // before it a forecast is only noise
constexpr int longestBar = 40;
constexpr int shortestBar = 10;
constexpr const char* clearLine = "\r\033[K";

std::string minutesAndSeconds(double seconds) {
    const auto whole = static_cast<std::int64_t>(std::llround(std::min(seconds, 359'999.0)));
    if (whole >= 3600) return fmt::format("{}:{:02}:{:02}", whole / 3600, whole / 60 % 60, whole % 60);
    return fmt::format("{}:{:02}", whole / 60, whole % 60);
}

} // namespace

ProgressBar::ProgressBar(std::int64_t frameCount, int columns, Output output, Clock clock)
    : frameCount_(frameCount)
    , columns_(columns)
    , output_(std::move(output))
    , clock_(std::move(clock))
    , start_(clock_()) {}

ProgressBar::~ProgressBar() {
    if (drawn_) output_(clearLine);
}

void ProgressBar::update(double fraction) {
    const auto now = clock_();
    if (fraction >= 1 && !std::exchange(verifying_, true)) {
        output_(std::string(clearLine) + "Verifying export…");
        drawn_ = now;
        return;
    }
    if (verifying_ || (drawn_ && now - *drawn_ < redrawInterval)) return;
    drawn_ = now;
    output_(clearLine + text(fraction, std::chrono::duration<double>(now - start_).count()));
}

std::string ProgressBar::text(double fraction, double elapsedSeconds) const {
    std::string figures = fmt::format(" {:3.0f} %", std::floor(fraction * 100));
    if (elapsedSeconds >= settlingSeconds && fraction > 0)
        figures += fmt::format("  {:.1f} fps  {} left", fraction * static_cast<double>(frameCount_) / elapsedSeconds,
                               minutesAndSeconds(elapsedSeconds / fraction - elapsedSeconds));
    // One column stays free: a full last column makes some terminals wrap.
    const int room = std::min(columns_ - 1 - static_cast<int>(figures.size()), longestBar);
    if (room < shortestBar) return figures.substr(1, static_cast<std::size_t>(std::max(columns_ - 1, 1)));
    const int filled = static_cast<int>(std::floor(fraction * room));
    std::string bar;
    for (int i = 0; i < room; ++i)
        bar += i < filled ? "█" : "░";
    return bar + figures;
}

std::optional<int> standardErrorColumns() {
    if (!::isatty(STDERR_FILENO)) return std::nullopt;
    constexpr int usualColumns = 80;
    winsize size{};
    const bool known = ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return known ? size.ws_col : usualColumns;
}

} // namespace flowtide
