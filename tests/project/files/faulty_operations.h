// File operations that fail, or end the process, at a chosen moment.
#pragma once

#include "project/files/file_operations.h"

#include <unistd.h>

#include <cerrno>

namespace flowtide::test {

/// Passes everything on to the system until the operation number `at` (from 0).
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

    FaultyOperations(Fault fault, int at, int error)
        : fault_(fault)
        , at_(at)
        , error_(error) {}

    int count() const { return count_; }
    int flushes() const { return flushes_; }

    int makeFolder(const std::filesystem::path& path) override {
        return passed([&] { return system_.makeFolder(path); });
    }
    int createFile(const std::filesystem::path& path) override {
        return passed([&] { return system_.createFile(path); });
    }
    int openLockFile(const std::filesystem::path& path) override {
        return passed([&] { return system_.openLockFile(path); });
    }
    int openFolder(const std::filesystem::path& path) override {
        return passed([&] { return system_.openFolder(path); });
    }
    int lock(int descriptor) override {
        return passed([&] { return system_.lock(descriptor); });
    }
    ssize_t write(int descriptor, std::span<const char> bytes) override {
        const auto half = [&] { return system_.write(descriptor, bytes.first(bytes.size() / 2)); };
        if (count_ == at_ && fault_ == Fault::killsHalfWritten) {
            half();
            ::_exit(killedStatus);
        }
        if (count_ == at_ && fault_ == Fault::shortWrite) {
            fault_ = Fault::fails;
            at_ = ++count_;
            return half();
        }
        return passed([&] { return system_.write(descriptor, bytes); });
    }
    int flush(int descriptor) override {
        ++flushes_;
        return passed([&] { return system_.flush(descriptor); });
    }
    /// A descriptor is gone even when closing it fails.
    int close(int descriptor) override {
        const bool fails = isFailing();
        const int result = passed([&] { return system_.close(descriptor); });
        if (fails) system_.close(descriptor);
        errno = error_;
        return result;
    }
    int rename(const std::filesystem::path& from, const std::filesystem::path& to) override {
        return passed([&] { return system_.rename(from, to); });
    }
    int remove(const std::filesystem::path& path) override {
        return passed([&] { return system_.remove(path); });
    }

private:
    bool isFailing() const {
        return fault_ == Fault::failsForever ? count_ >= at_
                                             : count_ == at_ && (fault_ == Fault::fails || fault_ == Fault::shortWrite);
    }

    template <typename Call>
    auto passed(Call call) -> decltype(call()) {
        const bool now = count_ == at_;
        if (isFailing()) {
            ++count_;
            errno = error_;
            return -1;
        }
        ++count_;
        if (now && (fault_ == Fault::killsBefore || fault_ == Fault::killsHalfWritten)) ::_exit(killedStatus);
        const auto result = call();
        if (now && fault_ == Fault::killsAfter) ::_exit(killedStatus);
        return result;
    }

    FileOperations& system_ = systemFileOperations();
    Fault fault_;
    int at_;
    int error_;
    int count_ = 0;
    int flushes_ = 0;
};

} // namespace flowtide::test
