// The steps of an atomic write, in the order that makes it one.
#include "project/files/atomic_file.h"

#include "core/uuid.h"

#include <cerrno>
#include <string>
#include <system_error>
#include <utility>

namespace flowtide {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view temporaryPrefix = ".saving-";
constexpr std::size_t uuidLength = 36;

fs::path folderOf(const fs::path& path) {
    return path.has_parent_path() ? path.parent_path() : fs::path(".");
}

void check(int result) {
    if (result < 0) throwSystemError(errno);
}

/// An open descriptor; closed at the latest on destruction.
class Descriptor {
public:
    Descriptor(FileOperations& operations, int value)
        : operations_(operations)
        , value_(value) {
        check(value);
    }
    ~Descriptor() {
        if (value_ >= 0) operations_.close(value_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int get() const { return value_; }
    /// Some file systems report a failed write only here.
    void close() { check(operations_.close(std::exchange(value_, -1))); }

private:
    FileOperations& operations_;
    int value_;
};

void writeAll(FileOperations& operations, int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = operations.write(descriptor, std::span(bytes.data(), bytes.size()));
        if (written <= 0) throwSystemError(written < 0 ? errno : EIO);
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
}

void flushFolder(FileOperations& operations, const fs::path& folder) {
    Descriptor descriptor(operations, operations.openFolder(folder));
    // Some file systems cannot flush a folder and say so with EINVAL; there is nothing more to be had from them.
    if (operations.flush(descriptor.get()) < 0 && errno != EINVAL) throwSystemError(errno);
}

/// Removes a file on the way out unless told to keep it.
class Removal {
public:
    Removal(FileOperations& operations, const fs::path& path)
        : operations_(operations)
        , path_(path) {}
    ~Removal() {
        if (!kept_) operations_.remove(path_);
    }
    Removal(const Removal&) = delete;
    Removal& operator=(const Removal&) = delete;
    void keep() { kept_ = true; }

private:
    FileOperations& operations_;
    const fs::path& path_;
    bool kept_ = false;
};

bool isTemporaryName(const std::string& name) {
    return name.size() == temporaryPrefix.size() + uuidLength && name.starts_with(temporaryPrefix) &&
           Uuid::parse(std::string_view(name).substr(temporaryPrefix.size()));
}

} // namespace

void writeAtomically(FileOperations& operations, const fs::path& path, std::string_view bytes) {
    const fs::path folder = folderOf(path);
    const fs::path temporary = folder / (std::string(temporaryPrefix) + Uuid::random().text());
    Descriptor file(operations, operations.createFile(temporary));
    Removal removal(operations, temporary);
    writeAll(operations, file.get(), bytes);
    check(operations.flush(file.get()));
    file.close();
    check(operations.rename(temporary, path));
    removal.keep();
    flushFolder(operations, folder);
}

void makePrivateFolders(FileOperations& operations, const fs::path& path) {
    std::error_code ignored;
    if (path.empty() || fs::is_directory(path, ignored)) return;
    const fs::path parent = folderOf(path);
    if (parent != path) makePrivateFolders(operations, parent);
    if (operations.makeFolder(path) < 0) {
        // Another process may have been quicker.
        const int error = errno;
        if (error != EEXIST) throwSystemError(error);
        if (!fs::is_directory(path, ignored)) throwSystemError(ENOTDIR);
        return;
    }
    flushFolder(operations, parent);
}

void removeAbandonedFiles(FileOperations& operations, const fs::path& folder) {
    std::error_code ignored;
    for (fs::directory_iterator entry(folder, ignored), end; !ignored && entry != end; entry.increment(ignored))
        if (isTemporaryName(entry->path().filename().string())) operations.remove(entry->path());
}

FolderLock::FolderLock(FileOperations& operations, const fs::path& folder)
    : operations_(operations)
    , descriptor_(operations.openLockFile(folder / ".lock")) {
    check(descriptor_);
    holds_ = operations_.lock(descriptor_) == 0;
}

FolderLock::~FolderLock() {
    operations_.close(descriptor_);
}

} // namespace flowtide
