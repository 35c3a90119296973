// Opens a file once and reads from its descriptor, so that what was checked is what is read.
#include "project/files/read_only_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace flowtide {

ReadOnlyFile::ReadOnlyFile(const std::filesystem::path& path, Links links) {
    const int flags = O_RDONLY | O_NONBLOCK | O_CLOEXEC | (links == Links::refused ? O_NOFOLLOW : 0);
    do {
        descriptor_ = ::open(path.c_str(), flags);
    } while (descriptor_ < 0 && errno == EINTR);
}

ReadOnlyFile::~ReadOnlyFile() {
    if (descriptor_ >= 0) ::close(descriptor_);
}

std::optional<std::uint64_t> ReadOnlyFile::regularFileSize() const {
    struct stat status {};
    if (::fstat(descriptor_, &status) != 0 || !S_ISREG(status.st_mode) || status.st_size < 0) return std::nullopt;
    return static_cast<std::uint64_t>(status.st_size);
}

std::optional<std::size_t> ReadOnlyFile::read(std::span<char> bytes) const {
    ssize_t count;
    do {
        count = ::read(descriptor_, bytes.data(), bytes.size());
    } while (count < 0 && errno == EINTR);
    if (count < 0) return std::nullopt;
    return static_cast<std::size_t>(count);
}

std::optional<std::size_t> ReadOnlyFile::readAt(std::uint64_t offset, std::span<char> bytes) const {
    std::size_t done = 0;
    while (done < bytes.size()) {
        const auto position = static_cast<off_t>(offset + done);
        const ssize_t count = ::pread(descriptor_, bytes.data() + done, bytes.size() - done, position);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return std::nullopt;
        if (count == 0) break;
        done += static_cast<std::size_t>(count);
    }
    return done;
}

} // namespace flowtide
