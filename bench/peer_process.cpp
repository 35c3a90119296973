// Measured child processes.
#include "bench/peer_process.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <ctime>
#include <fstream>
#include <optional>

namespace flowtide::bench {

namespace {
double seconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

/// The most memory that a running process has held since it started its program. What the system accounts for at the
/// end starts before that, with the pages of the process it was forked from.
std::optional<double> peakMegabytesOf(const std::string& process) {
    std::ifstream status("/proc/" + process + "/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with("VmHWM:")) return std::stod(line.substr(6)) / 1024;
    return std::nullopt;
}

/// What the machine's cores have idled since it started.
double idleSecondsSoFar() {
    std::ifstream stat("/proc/stat");
    std::string label;
    double user = 0;
    double nice = 0;
    double system = 0;
    double idle = 0;
    double waiting = 0;
    stat >> label >> user >> nice >> system >> idle >> waiting;
    return (idle + waiting) / static_cast<double>(::sysconf(_SC_CLK_TCK));
}

// Longer than it takes to start a program, shorter than a peak lasts.
constexpr int samplingMilliseconds = 20;
} // namespace

ProcessCost runProcess(const std::vector<std::string>& words) {
    ProcessCost cost;
    std::array<int, 2> pipe{};
    if (::pipe2(pipe.data(), O_CLOEXEC) != 0) return cost;
    std::vector<char*> arguments;
    for (const auto& word : words)
        arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    const double idleBefore = idleSecondsSoFar();
    const auto start = std::chrono::steady_clock::now();
    const pid_t child = ::fork();
    if (child == 0) {
        ::dup2(pipe[1], STDOUT_FILENO);
        const int nothing = ::open("/dev/null", O_RDWR);
        ::dup2(nothing, STDERR_FILENO);
        ::dup2(nothing, STDIN_FILENO);
        ::execvp(arguments[0], arguments.data());
        ::_exit(127);
    }
    ::close(pipe[1]);
    std::array<char, 4096> buffer{};
    std::optional<double> peak;
    for (pollfd waiting{pipe[0], POLLIN, 0};;) {
        if (::poll(&waiting, 1, samplingMilliseconds) == 0) {
            if (const auto now = peakMegabytesOf(std::to_string(child))) peak = now;
            continue;
        }
        const ssize_t count = ::read(pipe[0], buffer.data(), buffer.size());
        if (count <= 0) break;
        cost.output.append(buffer.data(), static_cast<std::size_t>(count));
    }
    ::close(pipe[0]);
    int status = 0;
    rusage usage{};
    ::wait4(child, &status, 0, &usage);
    cost.wallSeconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    cost.idleSeconds = idleSecondsSoFar() - idleBefore;
    cost.cpuSeconds = seconds(usage.ru_utime) + seconds(usage.ru_stime);
    cost.peakMegabytes = peak.value_or(static_cast<double>(usage.ru_maxrss) / 1024);
    cost.succeeded = WIFEXITED(status) && WEXITSTATUS(status) == 0;
    return cost;
}

double cpuSeconds() {
    timespec time{};
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

double peakMegabytes() {
    return peakMegabytesOf("self").value_or(0);
}

double median(std::vector<double> values) {
    if (values.empty()) return 0;
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

} // namespace flowtide::bench
