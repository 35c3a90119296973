// Runs the real program as a person would.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace flowtide::test {

/// How a run of the program ended.
struct ProgramResult {
    int status = -1; ///< exit status; -signal when a signal ended it
    std::string standardOutput;
    std::string standardError;
};

/// A started program; waited for on destruction.
class RunningProgram {
public:
    /// `prepareChild` runs in the child before the program does (limits, user); async-signal-safe calls only.
    RunningProgram(const std::vector<std::string>& arguments, const std::function<void()>& prepareChild = {});
    ~RunningProgram();
    RunningProgram(const RunningProgram&) = delete;
    RunningProgram& operator=(const RunningProgram&) = delete;

    pid_t pid() const { return pid_; }
    /// Reads standard output until it holds `text` or ends; whether it does.
    bool waitForOutput(const std::string& text);
    /// Kills it after a delay unless it has ended by then.
    void killAfter(std::chrono::microseconds delay);
    ProgramResult wait();

private:
    void readAvailable(bool untilEnd, const std::string& text);

    pid_t pid_ = -1;
    int output_ = -1;
    int error_ = -1;
    ProgramResult result_;
    bool waited_ = false;
};

/// Runs Flowtide with arguments to its end.
ProgramResult runProgram(const std::vector<std::string>& arguments, const std::function<void()>& prepareChild = {});

} // namespace flowtide::test
