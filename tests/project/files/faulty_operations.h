// File operations that fail, or end the process, at a chosen moment, and processes to end that way.
#pragma once

#include "project/files/file_operations.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace flowtide::test {

/// Passes everything on to the system until the operation number `at` (from 0); flushes apart, which take most of the
/// time and make a difference to power cuts alone.
class FaultyOperations : public FileOperations {
public:
    enum class Fault {
        none,
        fails,            ///< with `error`, once; nothing is done
        failsForever,     ///< from then on, as a full disk does
        shortWrite,       ///< half is written; the next write fails with `error`. As `fails` for the others
        killsBefore,      ///< the process ends
        killsAfter,       ///< the same, with the operation done
        killsHalfWritten, ///< a write ends the process in its middle. As `killsBefore` for the others
    };
    static constexpr int killedStatus = 42;

    explicit FaultyOperations(Fault fault = Fault::none, int at = 0, int error = 0)
        : fault_(fault)
        , at_(at)
        , error_(error) {}

    int count() const { return static_cast<int>(calls_.size()); }
    /// What was called, in order: the functions' names, flushes told apart as "flush file" and "flush folder".
    const std::vector<std::string>& calls() const { return calls_; }
    /// Called before each operation, with its name.
    std::function<void(const std::string& call)> onCall;
    /// A call that always fails, and its error.
    std::pair<std::string, int> failing;

    int makeFolder(const std::filesystem::path& path) override {
        return passed("makeFolder", [&] { return system_.makeFolder(path); });
    }
    int createFile(const std::filesystem::path& path, mode_t mode) override {
        return passed("createFile", [&] { return system_.createFile(path, mode); });
    }
    int openLockFile(const std::filesystem::path& path) override {
        return passed("openLockFile", [&] { return system_.openLockFile(path); });
    }
    int openExisting(const std::filesystem::path& path) override {
        return passed("openExisting", [&] { return system_.openExisting(path); });
    }
    int openFolder(const std::filesystem::path& path) override {
        return folder_ = passed("openFolder", [&] { return system_.openFolder(path); });
    }
    int lock(int descriptor) override {
        return passed("lock", [&] { return system_.lock(descriptor); });
    }
    int tryLock(int descriptor) override {
        return passed("tryLock", [&] { return system_.tryLock(descriptor); });
    }
    int shareLock(int descriptor) override {
        return passed("shareLock", [&] { return system_.shareLock(descriptor); });
    }
    int status(int descriptor, struct stat& result) override {
        return passed("status", [&] { return system_.status(descriptor, result); });
    }
    int status(const std::filesystem::path& path, struct stat& result) override {
        return passed("status", [&] { return system_.status(path, result); });
    }
    int changeMode(int descriptor, mode_t mode) override {
        return passed("changeMode", [&] { return system_.changeMode(descriptor, mode); });
    }
    ssize_t writeAt(int descriptor, std::span<const std::byte> bytes, std::int64_t offset) override {
        const auto half = [&] { return system_.writeAt(descriptor, bytes.first(bytes.size() / 2), offset); };
        if (count() == at_ && fault_ == Fault::killsHalfWritten) {
            half();
            ::_exit(killedStatus);
        }
        if (count() == at_ && fault_ == Fault::shortWrite) {
            fault_ = Fault::fails;
            ++at_;
            calls_.emplace_back("writeAt");
            return half();
        }
        return passed("writeAt", [&] { return system_.writeAt(descriptor, bytes, offset); });
    }
    int flush(int descriptor) override {
        return passed(descriptor == folder_ ? "flush folder" : "flush file", [] { return 0; });
    }
    /// A descriptor is gone even when closing it fails.
    int close(int descriptor) override {
        if (descriptor == folder_) folder_ = -1;
        const bool fails = isFailing();
        const int result = passed("close", [&] { return system_.close(descriptor); });
        if (fails) system_.close(descriptor);
        errno = error_;
        return result;
    }
    int rename(const std::filesystem::path& from, const std::filesystem::path& to) override {
        return passed("rename", [&] { return system_.rename(from, to); });
    }
    int remove(const std::filesystem::path& path) override {
        return passed("remove", [&] { return system_.remove(path); });
    }

private:
    bool isFailing() const {
        return fault_ == Fault::failsForever
                   ? count() >= at_
                   : count() == at_ && (fault_ == Fault::fails || fault_ == Fault::shortWrite);
    }

    template <typename Call>
    auto passed(const char* name, Call call) -> decltype(call()) {
        const bool now = count() == at_;
        const bool fails = isFailing();
        calls_.emplace_back(name);
        if (onCall) onCall(name);
        if (fails || failing.first == name) {
            errno = fails ? error_ : failing.second;
            return -1;
        }
        if (now && (fault_ == Fault::killsBefore || fault_ == Fault::killsHalfWritten)) ::_exit(killedStatus);
        const auto result = call();
        if (now && fault_ == Fault::killsAfter) ::_exit(killedStatus);
        return result;
    }

    FileOperations& system_ = systemFileOperations();
    Fault fault_;
    int at_;
    int error_;
    int folder_ = -1; ///< the open folder
    std::vector<std::string> calls_;
};

/// Runs `work` in a process of its own, whose status is 1 when it throws, else 0.
template <typename Work>
pid_t startProcess(const Work& work) {
    const pid_t child = ::fork();
    if (child != 0) return child;
    try {
        work();
    } catch (...) {
        ::_exit(1);
    }
    ::_exit(0);
}

inline int statusOf(pid_t child) {
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status));
    return WEXITSTATUS(status);
}

} // namespace flowtide::test
