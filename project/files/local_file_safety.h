// Safe reading of the files that a user chooses, and the checks before anything is written.
#pragma once

#include "project/files/url.h"

#include <cstddef>
#include <filesystem>
#include <string>

namespace flowtide::LocalFileSafety {

// Each of these also takes URLs, as people drop them on a window; those that are no file's are refused.

/// The bytes of a regular file of at most `maximumBytes`. Throws ProjectError for anything else, symbolic links and
/// files that grow beyond the limit meanwhile included; never blocks on a pipe or a device.
std::string read(const std::filesystem::path& path, std::size_t maximumBytes);
std::string read(const Url& url, std::size_t maximumBytes);

/// Throws ProjectError unless the path, symbolic links followed, names a regular file. Never opens it, so that a
/// pipe or a device cannot block.
void requireRegularFile(const std::filesystem::path& path);
void requireRegularFile(const Url& url);

/// Throws ProjectError when writing to `destination` would touch `source`: the same path, or the same file through
/// symbolic or hard links.
void requireDistinct(const std::filesystem::path& source, const std::filesystem::path& destination);
void requireDistinct(const Url& source, const Url& destination);

} // namespace flowtide::LocalFileSafety
