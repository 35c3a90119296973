// Codecs and containers, as four-character codes and as the names that people read.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace flowtide {

/// A four-character code, first character in the highest byte.
using FourCC = std::uint32_t;

constexpr FourCC fourCC(const char (&text)[5]) {
    return (static_cast<FourCC>(static_cast<unsigned char>(text[0])) << 24) |
           (static_cast<FourCC>(static_cast<unsigned char>(text[1])) << 16) |
           (static_cast<FourCC>(static_cast<unsigned char>(text[2])) << 8) |
           static_cast<FourCC>(static_cast<unsigned char>(text[3]));
}

/// The code as text; unprintable bytes as dots.
std::string fourCCString(FourCC code);

/// The codecs that exports can be written in.
enum class VideoCodec { hevc, h264, proRes4444, proRes422HQ, proRes422, proRes422LT, proRes422Proxy };

/// The writer codec that a four-character code stands for; nothing for codecs that cannot be written.
std::optional<VideoCodec> videoCodecType(FourCC code);
bool isProRes(VideoCodec codec);
/// The codec's name in logs, reports and messages, such as "HEVC / H.265".
std::string codecLabel(VideoCodec codec);

/// Containers, chosen by the file's extension.
enum class FileType { quickTimeMovie, mpeg4, appleM4V };
FileType fileTypeForPath(const std::filesystem::path& path);
/// "QuickTime movie", "MPEG-4" or "Apple M4V".
std::string_view fileTypeName(FileType type);

constexpr FourCC linearPCM = fourCC("lpcm");
constexpr FourCC aac = fourCC("aac ");

} // namespace flowtide
