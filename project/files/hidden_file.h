// The hidden file beside a destination that new content is written to, and the one step that puts it in place.
#pragma once

#include "project/files/file_operations.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <system_error>

namespace flowtide {

/// What hidden files are called: "." stem marker UUID extension.
struct HiddenName {
    std::string stem;      ///< of the file that it is to become; may be empty
    std::string marker;    ///< tells whose hidden file it is, as "-export-"
    std::string extension; ///< with its dot, or empty

    /// The path in the destination's folder, with a new UUID. The stem ends earlier, at a whole UTF-8 character, where
    /// the name would be longer than a file system takes.
    std::filesystem::path newPathBeside(const std::filesystem::path& destination) const;
    /// Whether an extension leaves room for the rest.
    static bool fits(std::string_view extension, std::string_view marker);
    /// Takes a name apart; nothing when it is not formed this way, its UUID in upper case.
    static std::optional<HiddenName> parse(const std::string& name, std::string_view marker);
};

/// Owns one hidden file: created exclusively and locked, removed on destruction unless moved into place. The lock ends
/// with the process, however that ends, and so tells files in use from abandoned ones. One thread at a time.
class HiddenFile {
public:
    /// Who may read and write the file.
    enum class Access {
        user,        ///< the user alone (0600)
        destination, ///< as the destination's permission bits have it; without a destination whom the umask lets
    };

    /// `newPath` gives paths beside the destination, another one at each call. Until it is moved into place the file
    /// gives nobody a right that the destination doesn't, except its owner that of reading. Throws std::system_error,
    /// also when the destination's name is one that no file can have. `operations` must outlive the file.
    HiddenFile(FileOperations& operations, const std::filesystem::path& destination,
               const std::function<std::filesystem::path()>& newPath, Access access);
    ~HiddenFile();
    HiddenFile(const HiddenFile&) = delete;
    HiddenFile& operator=(const HiddenFile&) = delete;

    const std::filesystem::path& path() const { return path_; }

    /// Writes all of `bytes`; `offset` is in bytes from the file's start. Throws std::system_error.
    void writeAt(std::int64_t offset, std::span<const std::byte> bytes);

    /// Flushes the file to the disk and lets others open it, who see an exclusive lock as a refusal where locks are
    /// mandatory (SMB shares). To be called between the last writeAt() and any reading. Throws std::system_error.
    void finishWriting();

    /// Flushes the file to the disk, renames it over the destination in one step and flushes the folder. Throws
    /// std::system_error, or ProjectError when its name no longer leads to this file; the destination is then what it
    /// was. Returns the error when only the last flush failed: the file is in place, but may not outlast a power cut.
    [[nodiscard]] std::error_code moveIntoPlace();

private:
    HiddenFile(FileOperations& operations, std::filesystem::path destination);
    void create(const std::function<std::filesystem::path()>& newPath, mode_t mode);
    void keepModeOfDestination();
    void removeAndClose() noexcept;

    FileOperations& operations_;
    std::filesystem::path destination_;
    std::filesystem::path path_;
    Descriptor descriptor_;
    Access access_ = Access::user;
    bool inPlace_ = false;
};

/// Removes the regular files of a folder whose name has the marker, is found to be `ours`, and that no live process
/// holds. Best effort: what cannot be looked at or locked stays. `mayGo`, where there is one, is asked last, while this
/// process holds the file.
void removeAbandonedFiles(FileOperations& operations, const std::filesystem::path& folder, std::string_view marker,
                          const std::function<bool(const HiddenName&)>& ours,
                          const std::function<bool(const std::filesystem::path&)>& mayGo = {});

} // namespace flowtide
