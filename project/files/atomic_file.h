// Replaces files in one step: whoever reads finds the old content or the new, whatever happens in between.
#pragma once

#include "project/files/hidden_file.h"

#include <filesystem>
#include <string_view>

namespace flowtide {

/// Writes a hidden file beside `path` and moves it into place (HiddenFile), open to those that `access` tells. Throws
/// ProjectError with the system's sentence and takes the hidden file away; `path` then holds what it held, except when
/// only the last flush failed.
void writeAtomically(FileOperations& operations, const std::filesystem::path& path, std::string_view bytes,
                     HiddenFile::Access access = HiddenFile::Access::user);

/// Removes the hidden files that killed processes left in a folder while they wrote atomically. Best effort.
void removeAbandonedSaves(FileOperations& operations, const std::filesystem::path& folder);

/// Creates a folder and the missing ones above it, private to the user (0700), each flushed into its parent. Throws
/// ProjectError. Folders that exist keep their mode.
void makePrivateFolders(FileOperations& operations, const std::filesystem::path& path);

/// The exclusive lock of a folder, held until destruction. A lock file that a dead process left behind is not locked
/// and keeps nobody waiting. Where the file system has no locks, nobody is kept out.
class FolderLock {
public:
    /// Waits for other holders. Throws ProjectError when the lock file cannot be opened.
    FolderLock(FileOperations& operations, const std::filesystem::path& folder);

private:
    Descriptor descriptor_;
};

} // namespace flowtide
