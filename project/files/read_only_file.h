// A file that is open for reading, without ever blocking on what is no regular file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>

namespace flowtide {

/// Owns the descriptor. Functions that fail leave the reason in errno.
class ReadOnlyFile {
public:
    /// What to do when the last component of the path is a symbolic link.
    enum class Links { refused, followed };

    ReadOnlyFile(const std::filesystem::path& path, Links links);
    ~ReadOnlyFile();
    ReadOnlyFile(const ReadOnlyFile&) = delete;
    ReadOnlyFile& operator=(const ReadOnlyFile&) = delete;

    bool isOpen() const { return descriptor_ >= 0; }
    /// In bytes; nothing when the file is not a regular one.
    std::optional<std::uint64_t> regularFileSize() const;
    /// Reads on from the current position: as many bytes as one system call gives, 0 at the end; nothing on failure.
    std::optional<std::size_t> read(std::span<char> bytes) const;
    /// Reads at an offset until `bytes` is full or the file ends.
    std::optional<std::size_t> readAt(std::uint64_t offset, std::span<char> bytes) const;

private:
    int descriptor_;
};

} // namespace flowtide
