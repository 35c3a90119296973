// The hidden file beside the destination that an export is written to, and the step that puts it in place.
#pragma once

#include "media/media_io.h"
#include "project/files/hidden_file.h"

#include <cstdint>
#include <filesystem>

namespace flowtide {

/// A new ".<name>-export-<UUID>.<extension>" in the destination's folder; "mov" when the destination has no extension,
/// or one that leaves no room. The name ends earlier where this would be longer than a file system takes.
std::filesystem::path temporaryExportURL(const std::filesystem::path& destination);

/// Removes the temporary exports that dead processes left in the destination's folder: those with a movie's extension
/// or the destination's. Those that a live process writes hold a lock and stay. Best effort.
void removeStaleTemporaryExports(const std::filesystem::path& destination,
                                 FileOperations& operations = systemFileOperations());

/// One temporary export: a HiddenFile with a write position.
class TemporaryExport : public OutputFile {
public:
    /// Throws std::system_error when the file cannot be created. `operations` must outlive the file.
    explicit TemporaryExport(const std::filesystem::path& destination,
                             FileOperations& operations = systemFileOperations());

    const std::filesystem::path& path() const { return file_.path(); }

    void write(std::span<const std::uint8_t> bytes) override;
    void seek(std::int64_t position) override;
    std::int64_t size() const override;

    /// As HiddenFile::finishWriting().
    void finishWriting();

    /// As HiddenFile::moveIntoPlace(). A folder that cannot be flushed (some network file systems) is no failure: the
    /// movie is in place and whole.
    void moveIntoPlace();

private:
    HiddenFile file_;
    std::int64_t position_ = 0;
    std::int64_t size_ = 0;
};

} // namespace flowtide
