// The record of temporary items, and what becomes of a dead process's.
#include "media/preview/temporary_items.h"

#include "core/uuid.h"
#include "project/files/atomic_file.h"
#include "project/files/local_file_safety.h"
#include "project/files/project_error.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <span>
#include <sstream>
#include <utility>

namespace flowtide {

namespace {

namespace fs = std::filesystem;

struct ItemName {
    std::string_view prefix;
    std::string_view extension;
};
constexpr std::array<ItemName, 3> itemNames{
    {{"FlowtideProxy-", ".mov"}, {"LoftwellPreviewAudio-", ".caf"}, {"FlowtidePreviews-", ""}}};

// Lines of the record.
constexpr char added = '+';
constexpr char removed = '-';

const HiddenName recordName{"Flowtide", "-temporary-", ".list"};
constexpr std::size_t longestRecord = 4 << 20; // bytes; some 60,000 items

std::string nameOf(const ItemName& name) {
    return std::string(name.prefix) + Uuid::random().text() + std::string(name.extension);
}

/// Whether a name is one that we give, to the letter; a record can hold anything.
bool isItemName(const std::string& text) {
    return std::ranges::any_of(itemNames, [&](const ItemName& name) {
        const std::size_t around = name.prefix.size() + name.extension.size();
        if (!text.starts_with(name.prefix) || !text.ends_with(name.extension) || text.size() < around) return false;
        const std::string uuid = text.substr(name.prefix.size(), text.size() - around);
        const auto parsed = Uuid::parse(uuid);
        return parsed && parsed->text() == uuid;
    });
}

/// What is there itself, links not followed, when it is ours.
std::optional<mode_t> modeOfOurs(FileOperations& operations, const fs::path& path) {
    struct stat status {};
    if (operations.status(path, status) < 0 || status.st_uid != ::geteuid()) return std::nullopt;
    return status.st_mode;
}

void removeFile(FileOperations& operations, const fs::path& path) {
    const auto mode = modeOfOurs(operations, path);
    if (mode && S_ISREG(*mode)) operations.remove(path);
}

void removeItem(FileOperations& operations, const fs::path& path) {
    const auto mode = modeOfOurs(operations, path);
    if (!mode) return;
    if (S_ISREG(*mode)) operations.remove(path);
    if (!S_ISDIR(*mode)) return;
    std::error_code ignored;
    for (fs::directory_iterator entry(path, ignored), end; !ignored && entry != end; entry.increment(ignored))
        removeFile(operations, entry->path());
    fs::remove(path, ignored);
}

/// The items that a record says its process still had. A last line that was cut off names nothing.
std::set<std::string> itemsIn(const std::string& text) {
    std::set<std::string> items;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line) && !lines.eof();) {
        if (line.empty() || !isItemName(line.substr(1))) continue;
        if (line.front() == added) items.insert(line.substr(1));
        if (line.front() == removed) items.erase(line.substr(1));
    }
    return items;
}

/// Removes the items of a dead process; false when the record is not ours to judge.
bool removeItemsOf(FileOperations& operations, const fs::path& record) {
    if (!modeOfOurs(operations, record)) return false;
    try {
        for (const std::string& name : itemsIn(LocalFileSafety::read(record, longestRecord)))
            removeItem(operations, record.parent_path() / name);
        return true;
    } catch (const ProjectError&) {
        return false; // what cannot be read stays as it is
    }
}

} // namespace

std::filesystem::path temporaryFolder() {
    const char* folder = std::getenv("TMPDIR");
    return fs::absolute(folder && *folder ? folder : "/tmp");
}

TemporaryItems::TemporaryItems(fs::path folder, FileOperations& operations)
    : folder_(std::move(folder))
    , operations_(operations) {
    removeAbandonedFiles(
        operations_, folder_, recordName.marker,
        [](const HiddenName& name) { return name.stem == recordName.stem && name.extension == recordName.extension; },
        [this](const fs::path& record) { return removeItemsOf(operations_, record); });
}

TemporaryItems::~TemporaryItems() {
    for (const std::string& name : names_)
        removeItem(operations_, folder_ / name);
}

fs::path TemporaryItems::add(Kind kind) {
    const std::scoped_lock guard(lock_);
    const std::string name = nameOf(itemNames.at(static_cast<std::size_t>(kind)));
    record(added + name);
    names_.insert(name);
    return folder_ / name;
}

void TemporaryItems::remove(const fs::path& path) noexcept {
    const std::scoped_lock guard(lock_);
    // A name stays in the record, where it does no harm: nobody else ever has it.
    if (names_.erase(path.filename().string()) > 0) removeItem(operations_, path);
}

void TemporaryItems::release(const fs::path& path) {
    const std::scoped_lock guard(lock_);
    const std::string name = path.filename().string();
    if (!names_.contains(name)) return;
    record(removed + name);
    names_.erase(name);
}

void TemporaryItems::record(std::string_view line) {
    if (!record_) {
        makePrivateFolders(operations_, folder_);
        const fs::path beside = folder_ / recordName.stem;
        record_.emplace(
            operations_, beside, [&] { return recordName.newPathBeside(beside); }, HiddenFile::Access::user);
    }
    const std::string bytes = std::string(line) + '\n';
    record_->writeAt(recordSize_, std::as_bytes(std::span(bytes)));
    recordSize_ += static_cast<std::int64_t>(bytes.size());
}

} // namespace flowtide
