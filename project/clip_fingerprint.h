// Recognises a clip's file after it was moved or renamed, without reading all of it.
#pragma once

#include <filesystem>
#include <string>

namespace flowtide {

/// SHA-256 of the file's size and of up to 64 KiB from its start, its middle and its end, as 64 lower-case hexadecimal
/// digits. Symbolic links are followed. Throws ProjectError when the path names no regular file or reading fails.
std::string clipFingerprint(const std::filesystem::path& file);

} // namespace flowtide
