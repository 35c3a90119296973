// The folder that rendered previews are kept in.
#pragma once

#include "core/uuid.h"
#include "media/preview/temporary_items.h"

#include <filesystem>

namespace flowtide {

/// One folder for each time that the editor is open, "FlowtidePreviews-<UUID>" in the temporary folder, for the user
/// alone (0700); gone on destruction with the files in it.
class PreviewCacheFiles {
public:
    /// Makes the folder. Throws std::system_error or ProjectError. `items` must outlive it.
    explicit PreviewCacheFiles(TemporaryItems& items);
    ~PreviewCacheFiles() { removeAll(); }
    PreviewCacheFiles(const PreviewCacheFiles&) = delete;
    PreviewCacheFiles& operator=(const PreviewCacheFiles&) = delete;

    const std::filesystem::path& directory() const { return directory_; }
    /// Where the file of a preview lies, or is to be written.
    std::filesystem::path url(const Uuid& id) const;
    /// Removes a preview's file, if there is one.
    void remove(const Uuid& id) noexcept;
    /// Removes the folder with everything in it.
    void removeAll() noexcept;

private:
    TemporaryItems& items_;
    std::filesystem::path directory_;
};

} // namespace flowtide
