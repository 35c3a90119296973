// A temporary file that a writer writes to.
#pragma once

#include "media/media_io.h"
#include "media/preview/temporary_items.h"

#include <cstdint>
#include <filesystem>

namespace flowtide {

/// Made exclusively, for the user alone (0600); removed on destruction unless kept. One thread at a time.
class TemporaryFile : public OutputFile {
public:
    /// Throws std::system_error. `items` must outlive the file.
    TemporaryFile(TemporaryItems& items, TemporaryItems::Kind kind);
    ~TemporaryFile() override;
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const std::filesystem::path& path() const { return path_; }
    /// Leaves the file to the items.
    void keep() { isKept_ = true; }

    void write(std::span<const std::uint8_t> bytes) override;
    void seek(std::int64_t position) override { position_ = position; }
    std::int64_t size() const override { return size_; }

private:
    TemporaryItems& items_;
    std::filesystem::path path_;
    Descriptor descriptor_;
    std::int64_t position_ = 0;
    std::int64_t size_ = 0;
    bool isKept_ = false;
};

} // namespace flowtide
