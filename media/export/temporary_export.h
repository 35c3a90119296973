// The hidden file beside the destination that an export is written to, and the step that puts it in place.
#pragma once

#include "media/media_io.h"

#include <cstdint>
#include <filesystem>

namespace flowtide {

/// ".<name>-export-<UUID>.<extension>" in the destination's folder; "mov" when the destination has no extension.
std::filesystem::path temporaryExportURL(const std::filesystem::path& destination);

/// Deletes the temporary exports that dead processes left in the destination's folder. Those that a live process writes
/// hold a lock and stay. Best effort.
void removeStaleTemporaryExports(const std::filesystem::path& destination);

/// Owns one temporary export: created exclusively and locked, deleted on destruction unless moved into place.
class TemporaryExport : public OutputFile {
public:
    /// Throws std::system_error when the file cannot be created.
    explicit TemporaryExport(const std::filesystem::path& destination);
    ~TemporaryExport() override;
    TemporaryExport(const TemporaryExport&) = delete;
    TemporaryExport& operator=(const TemporaryExport&) = delete;

    const std::filesystem::path& path() const { return path_; }

    void write(std::span<const std::uint8_t> bytes) override;
    void seek(std::int64_t position) override;
    std::int64_t size() const override;

    /// Flushes the file to the disk, renames it over the destination in one step and flushes the folder. Throws
    /// std::system_error; until the rename the destination is what it was.
    void moveIntoPlace();

private:
    void closeAndRemove() noexcept;

    std::filesystem::path destination_;
    std::filesystem::path path_;
    int descriptor_ = -1;
    std::int64_t position_ = 0;
    std::int64_t size_ = 0;
    bool inPlace_ = false;
};

} // namespace flowtide
