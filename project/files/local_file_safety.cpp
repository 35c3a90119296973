// Reads chosen files without following links or waiting, and compares locations with links resolved.
#include "project/files/local_file_safety.h"

#include "project/files/project_error.h"
#include "project/files/read_only_file.h"

#include <array>
#include <system_error>

namespace flowtide::LocalFileSafety {

namespace {

/// Absolute, without "." and "..", symbolic links resolved as far as the path exists.
std::filesystem::path resolved(const std::filesystem::path& path) {
    std::error_code error;
    const auto absolute = std::filesystem::absolute(path, error);
    const auto canonical = std::filesystem::weakly_canonical(absolute, error);
    return error ? absolute.lexically_normal() : canonical;
}

std::filesystem::path pathOf(const Url& url, const char* refusal) {
    const auto path = url.filePath();
    if (!path) throw ProjectError::invalid(refusal);
    return *path;
}

constexpr std::size_t chunkBytes = 65'536;

} // namespace

std::string read(const std::filesystem::path& path, std::size_t maximumBytes) {
    const ReadOnlyFile file(path, ReadOnlyFile::Links::refused);
    if (!file.isOpen())
        throw ProjectError::invalid("The file could not be opened. Choose a regular file, not a symbolic link.");
    const auto size = file.regularFileSize();
    if (!size || *size > maximumBytes)
        throw ProjectError::invalid("The file is not a regular file or exceeds the supported size.");
    std::string bytes;
    bytes.reserve(static_cast<std::size_t>(*size));
    std::array<char, chunkBytes> chunk;
    for (;;) {
        const auto count = file.read(chunk);
        if (!count) throw ProjectError::invalid("The file could not be read.");
        if (*count == 0) return bytes;
        if (*count > maximumBytes - bytes.size()) throw ProjectError::invalid("The file is too large.");
        bytes.append(chunk.data(), *count);
    }
}

std::string read(const Url& url, std::size_t maximumBytes) {
    return read(pathOf(url, "Choose a file on your Mac."), maximumBytes);
}

void requireRegularFile(const std::filesystem::path& path) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error)) throw ProjectError::invalid("Choose a regular video file.");
}

void requireRegularFile(const Url& url) {
    requireRegularFile(pathOf(url, "Choose a video file on your Mac."));
}

void requireDistinct(const std::filesystem::path& source, const std::filesystem::path& destination) {
    std::error_code error;
    if (resolved(source) == resolved(destination) || std::filesystem::equivalent(source, destination, error))
        throw ProjectError::invalid(
            "Choose a different output file. Loftwell Video keeps your original video unchanged.");
}

void requireDistinct(const Url& source, const Url& destination) {
    constexpr const char* refusal = "Choose a destination on your Mac.";
    requireDistinct(pathOf(source, refusal), pathOf(destination, refusal));
}

} // namespace flowtide::LocalFileSafety
