// The system calls behind FileOperations.
#include "project/file_operations.h"

#include "project/project_error.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <string>
#include <system_error>

namespace flowtide {
namespace {

template <typename Call>
auto retried(Call call) {
    auto result = call();
    while (result < 0 && errno == EINTR)
        result = call();
    return result;
}

class SystemFileOperations : public FileOperations {
public:
    int makeFolder(const std::filesystem::path& path, mode_t mode) override { return ::mkdir(path.c_str(), mode); }
    int createFile(const std::filesystem::path& path, mode_t mode) override {
        return retried([&] { return ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode); });
    }
    int openLockFile(const std::filesystem::path& path) override {
        constexpr int flags = O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
        return retried([&] { return ::open(path.c_str(), flags, 0600); });
    }
    int openFolder(const std::filesystem::path& path) override {
        return retried([&] { return ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); });
    }
    int lock(int descriptor) override {
        return retried([&] { return ::flock(descriptor, LOCK_EX); });
    }
    ssize_t write(int descriptor, std::span<const char> bytes) override {
        return retried([&] { return ::write(descriptor, bytes.data(), bytes.size()); });
    }
    int flush(int descriptor) override {
        return retried([&] { return ::fsync(descriptor); });
    }
    // Linux releases the descriptor even when the call is interrupted; closing again could hit another file.
    int close(int descriptor) override { return ::close(descriptor); }
    int rename(const std::filesystem::path& from, const std::filesystem::path& to) override {
        return std::rename(from.c_str(), to.c_str());
    }
    int remove(const std::filesystem::path& path) override { return ::unlink(path.c_str()); }
};

} // namespace

FileOperations& systemFileOperations() {
    static SystemFileOperations operations;
    return operations;
}

void throwSystemError(int error) {
    throw ProjectError::invalid(std::generic_category().message(error) + " (error " + std::to_string(error) + ")");
}

} // namespace flowtide
