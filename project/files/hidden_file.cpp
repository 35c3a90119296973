// Creates, fills and renames hidden files, each step in the order that keeps the destination whole.
#include "project/files/hidden_file.h"

#include "core/uuid.h"
#include "project/files/project_error.h"

#include <algorithm>
#include <cerrno>
#include <utility>

namespace flowtide {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t maximumNameBytes = 255; // NAME_MAX of Linux's file systems
constexpr std::size_t uuidLength = 36;
constexpr mode_t permissionBits = 0777;

[[noreturn]] void throwLastError() {
    throw std::system_error(lastSystemError());
}

void check(int result) {
    if (result < 0) throwLastError();
}

/// The first bytes of a text, at most `length`, without cutting a UTF-8 character in two.
std::string_view shortened(std::string_view text, std::size_t length) {
    constexpr auto continues = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; };
    if (length >= text.size()) return text;
    while (length > 0 && continues(text[length]))
        --length;
    return text.substr(0, length);
}

/// Whether the name leads to the open file; nothing, with the reason in errno, when that cannot be told.
std::optional<bool> namesOpenFile(FileOperations& operations, const fs::path& path, int descriptor) {
    struct stat byName {};
    struct stat byDescriptor {};
    if (operations.status(descriptor, byDescriptor) < 0) return std::nullopt;
    if (operations.status(path, byName) < 0) return errno == ENOENT ? std::optional(false) : std::nullopt;
    return byName.st_dev == byDescriptor.st_dev && byName.st_ino == byDescriptor.st_ino;
}

/// The permission bits of a regular file; nothing when there is none of that name.
std::optional<mode_t> modeOf(FileOperations& operations, const fs::path& path) {
    struct stat status {};
    if (operations.status(path, status) < 0) {
        if (errno != ENOENT) throwLastError();
        return std::nullopt;
    }
    if (!S_ISREG(status.st_mode)) return std::nullopt;
    return status.st_mode & permissionBits;
}

} // namespace

bool HiddenName::fits(std::string_view extension, std::string_view marker) {
    return 1 + marker.size() + uuidLength + extension.size() <= maximumNameBytes;
}

fs::path HiddenName::newPathBeside(const fs::path& destination) const {
    const std::string rest = marker + Uuid::random().text() + extension;
    const std::size_t room = maximumNameBytes - std::min(maximumNameBytes, 1 + rest.size());
    return folderOf(destination) / ("." + std::string(shortened(stem, room)) + rest);
}

std::optional<HiddenName> HiddenName::parse(const std::string& name, std::string_view marker) {
    const fs::path path(name);
    const std::string beforeExtension = path.stem().string();
    if (beforeExtension.size() < 1 + marker.size() + uuidLength || beforeExtension.front() != '.') return std::nullopt;
    const std::size_t uuidStart = beforeExtension.size() - uuidLength;
    const std::size_t markerStart = uuidStart - marker.size();
    const std::string uuid = beforeExtension.substr(uuidStart);
    const auto parsed = Uuid::parse(uuid);
    if (!parsed || parsed->text() != uuid || beforeExtension.substr(markerStart, marker.size()) != marker)
        return std::nullopt;
    return HiddenName{beforeExtension.substr(1, markerStart - 1), std::string(marker), path.extension().string()};
}

// With this constructor done, the other one's failures run the destructor.
HiddenFile::HiddenFile(FileOperations& operations, fs::path destination)
    : operations_(operations)
    , destination_(std::move(destination))
    , descriptor_(operations, -1) {}

HiddenFile::HiddenFile(FileOperations& operations, const fs::path& destination,
                       const std::function<fs::path()>& newPath, Access access)
    : HiddenFile(operations, destination) {
    access_ = access;
    // Asked in any case: a name that is too long must not be found out by the rename, after all the writing.
    const auto old = modeOf(operations_, destination_);
    constexpr mode_t newFile = 0666;
    constexpr mode_t privateFile = 0600;
    mode_t mode = access == Access::user ? privateFile : old.value_or(newFile);
    // What was written is read again before it may replace anything.
    mode |= S_IRUSR;
    create(newPath, mode);
    // The umask may have taken rights away that the file is to have.
    if (access == Access::user || old) static_cast<void>(operations_.changeMode(descriptor_.get(), mode));
}

HiddenFile::~HiddenFile() {
    removeAndClose();
}

void HiddenFile::create(const std::function<fs::path()>& newPath, mode_t mode) {
    // Between its creation and its lock a file looks abandoned to another process's clean-up: take a new one then.
    for (;;) {
        path_ = newPath();
        descriptor_.reset(operations_.createFile(path_, mode));
        check(descriptor_.get());
        if (operations_.tryLock(descriptor_.get()) < 0) {
            // A file system without locks cannot have its leftovers removed, but can be written to.
            if (errno != EWOULDBLOCK) return;
        } else {
            const auto ours = namesOpenFile(operations_, path_, descriptor_.get());
            if (!ours) throwLastError();
            if (*ours) return;
        }
        removeAndClose();
    }
}

void HiddenFile::removeAndClose() noexcept {
    if (!descriptor_.isOpen()) return;
    // A file that somebody else put there is not ours to remove.
    if (!inPlace_ && namesOpenFile(operations_, path_, descriptor_.get()).value_or(true)) operations_.remove(path_);
    descriptor_.close();
}

void HiddenFile::writeAt(std::int64_t offset, std::span<const std::byte> bytes) {
    descriptor_.writeAll(bytes, offset);
}

void HiddenFile::finishWriting() {
    check(operations_.flush(descriptor_.get()));
    // A clean-up that takes the file between the two locks is noticed by whoever reads it next, and at the latest when
    // it is moved into place.
    static_cast<void>(operations_.shareLock(descriptor_.get()));
}

/// As the destination is now: its rights may have been changed while this file was written. Where a file system cannot
/// change them, those of the creation stay.
void HiddenFile::keepModeOfDestination() {
    const auto mode = modeOf(operations_, destination_);
    if (mode) static_cast<void>(operations_.changeMode(descriptor_.get(), *mode));
}

std::error_code HiddenFile::moveIntoPlace() {
    if (access_ == Access::destination) keepModeOfDestination();
    check(operations_.flush(descriptor_.get()));
    const auto ours = namesOpenFile(operations_, path_, descriptor_.get());
    if (!ours) throwLastError();
    if (!*ours) throw ProjectError::invalid("The temporary file was removed or replaced by another program.");
    check(operations_.rename(path_, destination_));
    inPlace_ = true;
    return flushFolder(operations_, folderOf(destination_));
}

void removeAbandonedFiles(FileOperations& operations, const fs::path& folder, std::string_view marker,
                          const std::function<bool(const HiddenName&)>& ours,
                          const std::function<bool(const fs::path&)>& mayGo) {
    std::error_code ignored;
    for (fs::directory_iterator entry(folder, ignored), end; !ignored && entry != end; entry.increment(ignored)) {
        const auto name = HiddenName::parse(entry->path().filename().string(), marker);
        if (!name || !ours(*name)) continue;
        const Descriptor file(operations, operations.openExisting(entry->path()));
        struct stat status {};
        if (!file.isOpen() || operations.status(file.get(), status) < 0 || !S_ISREG(status.st_mode)) continue;
        if (operations.tryLock(file.get()) == 0 && namesOpenFile(operations, entry->path(), file.get()) == true &&
            (!mayGo || mayGo(entry->path())))
            operations.remove(entry->path());
    }
}

} // namespace flowtide
