// Saving on top of hidden files.
#include "project/files/atomic_file.h"

#include <span>
#include <system_error>

namespace flowtide {
namespace {

namespace fs = std::filesystem;

constexpr const char* savingMarker = "saving-";

void check(const std::error_code& error) {
    if (error) throwSystemError(error);
}

} // namespace

void writeAtomically(FileOperations& operations, const fs::path& path, std::string_view bytes,
                     HiddenFile::Access access) {
    try {
        const HiddenName name{{}, savingMarker, {}};
        HiddenFile file(
            operations, path, [&] { return name.newPathBeside(path); }, access);
        file.writeAt(0, std::as_bytes(std::span(bytes)));
        check(file.moveIntoPlace());
    } catch (const std::system_error& error) {
        throwSystemError(error.code());
    }
}

void removeAbandonedSaves(FileOperations& operations, const fs::path& folder) {
    removeAbandonedFiles(operations, folder, savingMarker,
                         [](const HiddenName& name) { return name.stem.empty() && name.extension.empty(); });
}

void makePrivateFolders(FileOperations& operations, const fs::path& path) {
    std::error_code ignored;
    if (path.empty() || fs::is_directory(path, ignored)) return;
    const fs::path parent = folderOf(path);
    if (parent != path) makePrivateFolders(operations, parent);
    if (operations.makeFolder(path) < 0) {
        // Another process may have been quicker.
        const auto error = lastSystemError();
        if (error != std::errc::file_exists) throwSystemError(error);
        if (!fs::is_directory(path, ignored)) throwSystemError(std::make_error_code(std::errc::not_a_directory));
        return;
    }
    check(flushFolder(operations, parent));
}

FolderLock::FolderLock(FileOperations& operations, const fs::path& folder)
    : descriptor_(operations, operations.openLockFile(folder / ".lock")) {
    if (!descriptor_.isOpen()) throwSystemError(lastSystemError());
    // Where the file system has no locks, nobody is kept out.
    static_cast<void>(operations.lock(descriptor_.get()));
}

} // namespace flowtide
