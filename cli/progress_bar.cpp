// Draws the bar, its figures and its forecast into the terminal's width.
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
constexpr double longestForecast = 359'999; // 99:59:59
constexpr const char* clearLine = "\r\033[K";

std::string minutesAndSeconds(double seconds) {
    const long long whole = std::llround(std::min(seconds, longestForecast));
    if (whole >= 3600) return fmt::format("{}:{:02}:{:02}", whole / 3600, whole / 60 % 60, whole % 60);
    return fmt::format("{}:{:02}", whole / 60, whole % 60);
}

} // namespace

ProgressBar::ProgressBar(std::int64_t frameCount, Columns columns, Output output, Clock clock)
    : frameCount_(frameCount)
    , columns_(std::move(columns))
    , output_(std::move(output))
    , clock_(std::move(clock))
    , start_(clock_()) {}

ProgressBar::~ProgressBar() {
    clear();
}

void ProgressBar::update(double fraction) {
    if (verifying_) return;
    const auto now = clock_();
    verifying_ = fraction >= 1;
    if (verifying_) {
        draw("Verifying export…");
    } else if (!drawnAt_ || now - *drawnAt_ >= redrawInterval) {
        drawnAt_ = now;
        draw(line(fraction, std::chrono::duration<double>(now - start_).count()));
    }
}

void ProgressBar::printAbove(const std::function<void()>& print) {
    clear();
    print();
    if (!shown_.empty()) draw(shown_);
}

void ProgressBar::draw(std::string line) {
    shown_ = std::move(line);
    output_(clearLine + shown_);
}

void ProgressBar::clear() {
    if (!shown_.empty()) output_(clearLine);
}

std::string ProgressBar::line(double fraction, double elapsedSeconds) const {
    std::string figures = fmt::format("{:3.0f} %", std::floor(fraction * 100));
    if (elapsedSeconds >= settlingSeconds && fraction > 0)
        figures += fmt::format("  {:.1f} fps  {} left", fraction * static_cast<double>(frameCount_) / elapsedSeconds,
                               minutesAndSeconds(elapsedSeconds / fraction - elapsedSeconds));
    // One column stays free: a full last column makes some terminals wrap.
    const int columns = std::max(columns_() - 1, 1);
    const int room = std::min(columns - static_cast<int>(figures.size()) - 1, longestBar);
    if (room < shortestBar) return figures.substr(0, static_cast<std::size_t>(columns));
    const int filled = static_cast<int>(std::floor(fraction * room));
    std::string bar;
    for (int i = 0; i < room; ++i)
        bar += i < filled ? "█" : "░";
    return bar + ' ' + figures;
}

bool standardErrorIsTerminal() {
    return ::isatty(STDERR_FILENO) == 1;
}

int standardErrorColumns() {
    constexpr int usualColumns = 80;
    winsize size{};
    const bool known = ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return known ? size.ws_col : usualColumns;
}

} // namespace flowtide
