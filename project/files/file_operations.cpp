// The operating system's calls, interrupted ones made again.
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
#include <utility>

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
    int createFile(const std::filesystem::path& path, mode_t mode) override {
        // NFS grants a shared lock only on what is open for reading.
        constexpr int flags = O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
        return retried([&] { return ::open(path.c_str(), flags, mode); });
    }
    int openLockFile(const std::filesystem::path& path) override {
        return openPrivate(path, O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK);
    }
    int openExisting(const std::filesystem::path& path) override {
        constexpr int flags = O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
        // NFS grants an exclusive lock only on what is open for writing.
        const int descriptor = retried([&] { return ::open(path.c_str(), O_RDWR | flags); });
        return descriptor >= 0 ? descriptor : retried([&] { return ::open(path.c_str(), O_RDONLY | flags); });
    }
    int openFolder(const std::filesystem::path& path) override {
        return retried([&] { return ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); });
    }
    int lock(int descriptor) override {
        return retried([&] { return ::flock(descriptor, LOCK_EX); });
    }
    int tryLock(int descriptor) override {
        return retried([&] { return ::flock(descriptor, LOCK_EX | LOCK_NB); });
    }
    int shareLock(int descriptor) override {
        // SMB would keep the exclusive lock beside the shared one.
        ::flock(descriptor, LOCK_UN);
        return retried([&] { return ::flock(descriptor, LOCK_SH | LOCK_NB); });
    }
    int status(int descriptor, struct stat& result) override { return ::fstat(descriptor, &result); }
    int status(const std::filesystem::path& path, struct stat& result) override {
        return ::lstat(path.c_str(), &result);
    }
    int changeMode(int descriptor, mode_t mode) override { return ::fchmod(descriptor, mode); }
    ssize_t writeAt(int descriptor, std::span<const std::byte> bytes, std::int64_t offset) override {
        return retried([&] { return ::pwrite(descriptor, bytes.data(), bytes.size(), offset); });
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

void Descriptor::close() {
    if (value_ >= 0) operations_.close(std::exchange(value_, -1));
}

void Descriptor::reset(int value) {
    close();
    value_ = value;
}

void Descriptor::writeAll(std::span<const std::byte> bytes, std::int64_t offset) const {
    while (!bytes.empty()) {
        const ssize_t written = operations_.writeAt(value_, bytes, offset);
        if (written < 0) throw std::system_error(lastSystemError());
        if (written == 0) throw std::system_error(EIO, std::generic_category());
        offset += written;
        bytes = bytes.subspan(static_cast<std::size_t>(written));
    }
}

std::filesystem::path folderOf(const std::filesystem::path& path) {
    return path.has_parent_path() ? path.parent_path() : std::filesystem::path(".");
}

std::error_code flushFolder(FileOperations& operations, const std::filesystem::path& folder) {
    const Descriptor descriptor(operations, operations.openFolder(folder));
    if (!descriptor.isOpen() || (operations.flush(descriptor.get()) < 0 && errno != EINVAL)) return lastSystemError();
    return {};
}

std::error_code lastSystemError() {
    return {errno, std::generic_category()};
}

void throwSystemError(const std::error_code& error) {
    throw ProjectError::invalid(fmt::format("{} (error {})", error.message(), error.value()));
}

} // namespace flowtide
