// Names in the folder of rendered previews.
#include "media/preview/preview_cache_files.h"

#include <system_error>

namespace flowtide {

PreviewCacheFiles::PreviewCacheFiles(TemporaryItems& items)
    : items_(items)
    , directory_(items.add(TemporaryItems::Kind::previewFolder)) {
    if (items_.operations().makeFolder(directory_) < 0) throw std::system_error(lastSystemError());
}

std::filesystem::path PreviewCacheFiles::url(const Uuid& id) const {
    return directory_ / (id.text() + ".mov");
}

void PreviewCacheFiles::remove(const Uuid& id) noexcept {
    items_.operations().remove(url(id));
}

void PreviewCacheFiles::removeAll() noexcept {
    items_.remove(directory_);
}

} // namespace flowtide
