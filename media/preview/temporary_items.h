// The temporary files and folders of previews: gone with the process that made them, however it ends.
#pragma once

#include "project/files/hidden_file.h"

#include <cstdint>
#include <filesystem>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace flowtide {

/// $TMPDIR, absolute; /tmp where it is not set.
std::filesystem::path temporaryFolder();

/// Owns temporary things in one folder. What it is to remove stands in a hidden record, written before the thing is
/// made and locked while this process lives: the lock ends with the process, so that a later one knows, without
/// guessing by age, whose things nobody owns any more. Any thread. `operations` must outlive it.
class TemporaryItems {
public:
    enum class Kind {
        proxy,         ///< a file, "FlowtideProxy-<UUID>.mov"
        previewAudio,  ///< a file, "LoftwellPreviewAudio-<UUID>.caf"
        previewFolder, ///< a folder, "FlowtidePreviews-<UUID>"
    };

    /// Removes what dead processes left in the folder. Writes nothing before the first item is added.
    explicit TemporaryItems(std::filesystem::path folder = temporaryFolder(),
                            FileOperations& operations = systemFileOperations());
    /// Removes all items.
    ~TemporaryItems();
    TemporaryItems(const TemporaryItems&) = delete;
    TemporaryItems& operator=(const TemporaryItems&) = delete;

    /// A new path, recorded as ours; nothing is made there yet. Throws std::system_error or ProjectError when it
    /// cannot be recorded.
    std::filesystem::path add(Kind kind);
    /// Removes an item: a file, or a folder with the files in it.
    void remove(const std::filesystem::path& path) noexcept;
    /// From now on the item is somebody else's and stays. Throws std::system_error when that cannot be recorded.
    void release(const std::filesystem::path& path);

    FileOperations& operations() const { return operations_; }

private:
    void record(std::string_view line);

    std::filesystem::path folder_;
    FileOperations& operations_;
    std::mutex lock_; ///< guards everything below
    std::optional<HiddenFile> record_;
    std::int64_t recordSize_ = 0;
    std::set<std::string> names_;
};

} // namespace flowtide
