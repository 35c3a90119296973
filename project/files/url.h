// Locations as project documents store them.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace flowtide {

/// An absolute URL, kept exactly as written; in a valid document always a file's.
struct Url {
    std::string text;

    /// The URL of a file: "file://" and the absolute path, each byte percent-encoded that a URL path cannot hold.
    static Url ofFile(const std::filesystem::path& path);

    /// The path that a file URL names, byte for byte; nothing for any other URL, one with a foreign host, a relative or
    /// empty path, a broken escape or an escaped NUL.
    std::optional<std::filesystem::path> filePath() const;

    friend bool operator==(const Url&, const Url&) = default;
};

} // namespace flowtide
