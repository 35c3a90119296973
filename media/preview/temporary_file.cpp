// Writing at a position.
#include "media/preview/temporary_file.h"

#include <algorithm>
#include <system_error>

namespace flowtide {

namespace {
constexpr mode_t userAlone = 0600;
} // namespace

TemporaryFile::TemporaryFile(TemporaryItems& items, TemporaryItems::Kind kind)
    : items_(items)
    , path_(items.add(kind))
    , descriptor_(items.operations(), items.operations().createFile(path_, userAlone)) {
    if (!descriptor_.isOpen()) throw std::system_error(lastSystemError());
}

TemporaryFile::~TemporaryFile() {
    descriptor_.close();
    if (!isKept_) items_.remove(path_);
}

void TemporaryFile::write(std::span<const std::uint8_t> bytes) {
    descriptor_.writeAll(std::as_bytes(bytes), position_);
    position_ += static_cast<std::int64_t>(bytes.size());
    size_ = std::max(size_, position_);
}

} // namespace flowtide
