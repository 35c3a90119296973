// A child process with its two output pipes.
#include "tests/support/program.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <ctime>
#include <utility>

namespace flowtide::test {

RunningProgram::RunningProgram(const std::vector<std::string>& arguments, const std::function<void()>& prepareChild) {
    std::array<int, 2> output{};
    std::array<int, 2> error{};
    if (::pipe2(output.data(), O_CLOEXEC) != 0 || ::pipe2(error.data(), O_CLOEXEC) != 0) return;
    std::vector<char*> words{const_cast<char*>(FLOWTIDE_PROGRAM)};
    for (const auto& argument : arguments)
        words.push_back(const_cast<char*>(argument.c_str()));
    words.push_back(nullptr);
    pid_ = ::fork();
    if (pid_ == 0) {
        ::dup2(output[1], STDOUT_FILENO);
        ::dup2(error[1], STDERR_FILENO);
        if (prepareChild) prepareChild();
        ::execv(words[0], words.data());
        ::_exit(127);
    }
    ::close(output[1]);
    ::close(error[1]);
    output_ = output[0];
    error_ = error[0];
}

RunningProgram::~RunningProgram() {
    if (!waited_) {
        ::kill(pid_, SIGKILL);
        wait();
    }
}

void RunningProgram::readAvailable(bool untilEnd, const std::string& text) {
    while (output_ >= 0 || error_ >= 0) {
        if (!untilEnd && result_.standardOutput.find(text) != std::string::npos) return;
        std::array<pollfd, 2> files{{{output_, POLLIN, 0}, {error_, POLLIN, 0}}};
        if (::poll(files.data(), files.size(), -1) < 0 && errno != EINTR) return;
        const auto drain = [](pollfd& file, int& descriptor, std::string& into) {
            if (descriptor < 0 || file.revents == 0) return;
            std::array<char, 4096> buffer{};
            const ssize_t count = ::read(descriptor, buffer.data(), buffer.size());
            if (count > 0)
                into.append(buffer.data(), static_cast<std::size_t>(count));
            else if (count == 0 || errno != EINTR)
                ::close(std::exchange(descriptor, -1));
        };
        drain(files[0], output_, result_.standardOutput);
        drain(files[1], error_, result_.standardError);
    }
}

bool RunningProgram::waitForOutput(const std::string& text) {
    readAvailable(false, text);
    return result_.standardOutput.find(text) != std::string::npos;
}

void RunningProgram::killAfter(std::chrono::microseconds delay) {
    const timespec time{static_cast<time_t>(delay.count() / 1'000'000),
                        static_cast<long>(delay.count() % 1'000'000) * 1000};
    ::nanosleep(&time, nullptr);
    ::kill(pid_, SIGKILL);
}

ProgramResult RunningProgram::wait() {
    if (std::exchange(waited_, true)) return result_;
    readAvailable(true, {});
    int status = 0;
    while (::waitpid(pid_, &status, 0) < 0 && errno == EINTR) {
    }
    result_.status = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    return result_;
}

ProgramResult runProgram(const std::vector<std::string>& arguments, const std::function<void()>& prepareChild) {
    return RunningProgram(arguments, prepareChild).wait();
}

} // namespace flowtide::test
