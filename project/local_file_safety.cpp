// The checks on chosen files.
#include "project/local_file_safety.h"

#include "project/project_error.h"

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

} // namespace

void requireRegularFile(const std::filesystem::path& path) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error)) throw ProjectError::invalid("Choose a regular video file.");
}

void requireDistinct(const std::filesystem::path& source, const std::filesystem::path& destination) {
    std::error_code error;
    if (resolved(source) == resolved(destination) || std::filesystem::equivalent(source, destination, error))
        throw ProjectError::invalid(
            "Choose a different output file. Loftwell Video keeps your original video unchanged.");
}

} // namespace flowtide::LocalFileSafety
