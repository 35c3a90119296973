// The system calls behind FileOperations.
#include "project/files/file_operations.h"

#include "project/files/project_error.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
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

constexpr mode_t privateFile = 0600;
constexpr mode_t privateFolder = 0700;

/// A umask can take rights away that the user needs, hence the second step. Best effort: the file may be another's.
int openPrivate(const std::filesystem::path& path, int flags) {
    const int descriptor = retried([&] { return ::open(path.c_str(), flags | O_CLOEXEC, privateFile); });
    if (descriptor >= 0) ::fchmod(descriptor, privateFile);
    return descriptor;
}

class SystemFileOperations : public FileOperations {
public:
    int makeFolder(const std::filesystem::path& path) override {
        const int result = ::mkdir(path.c_str(), privateFolder);
        if (result == 0) ::chmod(path.c_str(), privateFolder);
        return result;
    }
    int createFile(const std::filesystem::path& path) override {
        return openPrivate(path, O_WRONLY | O_CREAT | O_EXCL);
    }
    int openLockFile(const std::filesystem::path& path) override {
        return openPrivate(path, O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK);
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
    throw ProjectError::invalid(fmt::format("{} (error {})", std::generic_category().message(error), error));
}

} // namespace flowtide
