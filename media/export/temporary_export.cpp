// Temporary exports on POSIX files.
#include "media/export/temporary_export.h"

#include "core/uuid.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

namespace flowtide {

namespace {

constexpr std::string_view marker = "-export-";
constexpr std::size_t uuidLength = 36;

[[noreturn]] void throwLastError() {
    throw std::system_error(errno, std::generic_category());
}

std::filesystem::path folderOf(const std::filesystem::path& path) {
    return path.has_parent_path() ? path.parent_path() : std::filesystem::path(".");
}

bool isTemporaryExportName(const std::filesystem::path& name) {
    const std::string stem = name.stem().string();
    if (stem.size() < 1 + marker.size() + uuidLength || stem.front() != '.') return false;
    const std::string identifier = stem.substr(stem.size() - uuidLength);
    const auto parsed = Uuid::parse(identifier);
    return parsed && parsed->text() == identifier &&
           stem.compare(stem.size() - uuidLength - marker.size(), marker.size(), marker) == 0;
}

int openRetrying(const char* path, int flags, mode_t mode = 0) {
    int descriptor;
    do {
        descriptor = ::open(path, flags | O_CLOEXEC, mode);
    } while (descriptor < 0 && errno == EINTR);
    return descriptor;
}

bool namesOpenFile(const std::filesystem::path& path, int descriptor) {
    struct stat byName {};
    struct stat byDescriptor {};
    return ::lstat(path.c_str(), &byName) == 0 && ::fstat(descriptor, &byDescriptor) == 0 &&
           byName.st_dev == byDescriptor.st_dev && byName.st_ino == byDescriptor.st_ino;
}

class Descriptor {
public:
    explicit Descriptor(int value)
        : value_(value) {}
    ~Descriptor() {
        if (value_ >= 0) ::close(value_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int get() const { return value_; }

private:
    int value_;
};

void flushToDisk(int descriptor) {
    while (::fsync(descriptor) != 0)
        if (errno != EINTR) throwLastError();
}

} // namespace

std::filesystem::path temporaryExportURL(const std::filesystem::path& destination) {
    const std::string extension = destination.has_extension() ? destination.extension().string() : ".mov";
    const std::string name = destination.stem().string();
    return folderOf(destination) / ("." + name + std::string(marker) + Uuid::random().text() + extension);
}

void removeStaleTemporaryExports(const std::filesystem::path& destination) {
    std::error_code ignored;
    for (std::filesystem::directory_iterator entry(folderOf(destination), ignored), end; !ignored && entry != end;
         entry.increment(ignored)) {
        const auto& path = entry->path();
        if (!isTemporaryExportName(path.filename())) continue;
        const Descriptor file(openRetrying(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK));
        struct stat status {};
        if (file.get() < 0 || ::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) continue;
        // The writer's lock dies with its process, however it ended.
        if (::flock(file.get(), LOCK_EX | LOCK_NB) == 0 && namesOpenFile(path, file.get())) ::unlink(path.c_str());
    }
}

TemporaryExport::TemporaryExport(const std::filesystem::path& destination)
    : destination_(destination) {
    // Between its creation and its lock a file looks stale to another export's clean-up: take a new one if it is gone.
    for (;;) {
        path_ = temporaryExportURL(destination);
        descriptor_ = openRetrying(path_.c_str(), O_RDWR | O_CREAT | O_EXCL, 0666);
        if (descriptor_ < 0) throwLastError();
        // A file system without locks cannot have its leftovers cleaned up, but can be exported to.
        const bool locked = ::flock(descriptor_, LOCK_EX | LOCK_NB) == 0;
        if (locked ? namesOpenFile(path_, descriptor_) : errno != EWOULDBLOCK) return;
        closeAndRemove();
    }
}

TemporaryExport::~TemporaryExport() {
    closeAndRemove();
}

void TemporaryExport::closeAndRemove() noexcept {
    if (descriptor_ < 0) return;
    if (!inPlace_) ::unlink(path_.c_str());
    ::close(std::exchange(descriptor_, -1));
}

void TemporaryExport::write(std::span<const std::uint8_t> bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::pwrite(descriptor_, bytes.data(), bytes.size(), position_);
        if (written < 0) {
            if (errno == EINTR) continue;
            throwLastError();
        }
        position_ += written;
        size_ = std::max(size_, position_);
        bytes = bytes.subspan(static_cast<std::size_t>(written));
    }
}

void TemporaryExport::seek(std::int64_t position) {
    position_ = position;
}

std::int64_t TemporaryExport::size() const {
    return size_;
}

void TemporaryExport::moveIntoPlace() {
    flushToDisk(descriptor_);
    if (std::rename(path_.c_str(), destination_.c_str()) != 0) throwLastError();
    inPlace_ = true;
    const Descriptor folder(openRetrying(folderOf(destination_).c_str(), O_RDONLY | O_DIRECTORY));
    // The file is in place and whole; a folder that cannot be flushed (some network file systems) changes nothing.
    if (folder.get() >= 0) ::fsync(folder.get());
}

} // namespace flowtide
