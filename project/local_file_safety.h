// Checks on the files that a user chooses, before anything is read or written.
#pragma once

#include <filesystem>

namespace flowtide::LocalFileSafety {

/// Throws ProjectError unless the path, symbolic links followed, names a regular file. Never opens it, so that a
/// pipe or a device cannot block.
void requireRegularFile(const std::filesystem::path& path);

/// Throws ProjectError when writing to `destination` would touch `source`: the same path, or the same file through
/// symbolic or hard links.
void requireDistinct(const std::filesystem::path& source, const std::filesystem::path& destination);

} // namespace flowtide::LocalFileSafety
