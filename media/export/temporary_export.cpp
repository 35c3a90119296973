// What temporary exports are called, and their write position.
#include "media/export/temporary_export.h"

#include <algorithm>
#include <string>

namespace flowtide {

namespace {

constexpr const char* exportMarker = "-export-";
constexpr const char* defaultExtension = ".mov";

HiddenName temporaryExportName(const std::filesystem::path& destination) {
    HiddenName name{destination.stem().string(), exportMarker, destination.extension().string()};
    if (name.extension.size() < 2 || !HiddenName::fits(name.extension, name.marker)) name.extension = defaultExtension;
    return name;
}

std::string lowerCase(std::string text) {
    for (char& c : text)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return text;
}

} // namespace

std::filesystem::path temporaryExportURL(const std::filesystem::path& destination) {
    return temporaryExportName(destination).newPathBeside(destination);
}

void removeStaleTemporaryExports(const std::filesystem::path& destination, FileOperations& operations) {
    // Whoever names a file of another kind this way means to keep it.
    const std::string extensions[] = {".mov", ".mp4", ".m4v", lowerCase(temporaryExportName(destination).extension)};
    removeAbandonedFiles(operations, folderOf(destination), exportMarker, [&](const HiddenName& name) {
        return std::find(std::begin(extensions), std::end(extensions), lowerCase(name.extension)) !=
               std::end(extensions);
    });
}

TemporaryExport::TemporaryExport(const std::filesystem::path& destination, FileOperations& operations)
    : file_(
          operations, destination, [&] { return temporaryExportURL(destination); }, HiddenFile::Access::destination) {}

void TemporaryExport::write(std::span<const std::uint8_t> bytes) {
    file_.writeAt(position_, std::as_bytes(bytes));
    position_ += static_cast<std::int64_t>(bytes.size());
    size_ = std::max(size_, position_);
}

void TemporaryExport::seek(std::int64_t position) {
    position_ = position;
}

std::int64_t TemporaryExport::size() const {
    return size_;
}

void TemporaryExport::finishWriting() {
    file_.finishWriting();
}

void TemporaryExport::moveIntoPlace() {
    static_cast<void>(file_.moveIntoPlace());
}

} // namespace flowtide
