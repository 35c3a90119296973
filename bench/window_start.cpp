#include "bench/window_start.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QGuiApplication>
#include <QImage>
#include <QPixmap>
#include <QScreen>
#include <chrono>
#include <fstream>
#include <sstream>
#include <thread>

namespace flowtide::bench {

namespace {

using Clock = std::chrono::steady_clock;

constexpr double longestStartSeconds = 30;
constexpr double longestUnrestSeconds = 15;
constexpr double restSeconds = 1;
constexpr double watchedSeconds = 5;
constexpr std::chrono::milliseconds betweenLooks{20};

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

/// Of a running process and its threads, those that have ended included.
double cpuSecondsOf(pid_t process) {
    std::ifstream stat("/proc/" + std::to_string(process) + "/stat");
    std::string line;
    std::getline(stat, line);
    std::istringstream fields(line.substr(line.rfind(')') + 1));
    std::string field;
    for (int i = 0; i < 11; ++i)
        fields >> field;
    double user = 0;
    double system = 0;
    fields >> user >> system;
    return (user + system) / static_cast<double>(::sysconf(_SC_CLK_TCK));
}

QImage screenPicture() {
    return QGuiApplication::primaryScreen()->grabWindow(0).toImage().scaled(64, 40);
}

/// Whether a window's picture covers most of what the screen showed before.
bool isPainted(const QImage& before) {
    const QImage now = screenPicture();
    int changed = 0;
    for (int y = 0; y < now.height(); ++y)
        for (int x = 0; x < now.width(); ++x)
            changed += now.pixel(x, y) != before.pixel(x, y);
    return changed * 2 > now.width() * now.height();
}

pid_t start(const std::vector<std::string>& words) {
    std::vector<char*> arguments;
    for (const auto& word : words)
        arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    const pid_t child = ::fork();
    if (child == 0) {
        const int nothing = ::open("/dev/null", O_RDWR);
        for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
            ::dup2(nothing, stream);
        ::execvp(arguments[0], arguments.data());
        ::_exit(127);
    }
    return child;
}

} // namespace

WindowStart startOnDisplay(const std::vector<std::string>& words) {
    WindowStart result;
    const QImage before = screenPicture();
    const Clock::time_point began = Clock::now();
    const pid_t program = start(words);
    while (!result.appeared && secondsSince(began) < longestStartSeconds) {
        std::this_thread::sleep_for(betweenLooks);
        result.appeared = isPainted(before);
    }
    result.firstPaintCpuSeconds = cpuSecondsOf(program);
    result.firstPaintWallSeconds = secondsSince(began);
    if (result.appeared) {
        double spent = cpuSecondsOf(program);
        for (Clock::time_point rested = Clock::now();
             secondsSince(rested) < restSeconds && secondsSince(began) < longestUnrestSeconds;) {
            std::this_thread::sleep_for(betweenLooks);
            const double now = cpuSecondsOf(program);
            // A tick now and then is what a blinking cursor costs.
            if (now - spent > 0.02) {
                spent = now;
                rested = Clock::now();
            }
        }
        result.settledCpuSeconds = cpuSecondsOf(program);
        std::this_thread::sleep_for(std::chrono::duration<double>(watchedSeconds));
        result.restingCpuShare = (cpuSecondsOf(program) - result.settledCpuSeconds) / watchedSeconds;
    }
    ::kill(program, SIGKILL);
    ::waitpid(program, nullptr, 0);
    while (isPainted(before))
        std::this_thread::sleep_for(betweenLooks);
    return result;
}

} // namespace flowtide::bench
