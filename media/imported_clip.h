// The probe record of a clip, the vocabulary in which sources and exports are compared.
#pragma once

#include "media/media_time.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace flowtide {

class MediaBackend;

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

/// The colour tags that a track carries; each value is the tag's standard name, such as "bt709".
struct ColorProperties {
    std::optional<std::string> primaries;
    std::optional<std::string> transferFunction;
    std::optional<std::string> matrix;

    bool complete() const { return primaries && transferFunction && matrix; }
    friend bool operator==(const ColorProperties&, const ColorProperties&) = default;
};

/// x' = a·x + c·y + tx, y' = b·x + d·y + ty.
struct AffineTransform {
    double a = 1, b = 0, c = 0, d = 1, tx = 0, ty = 0;

    /// Every entry within 1e-6 of the identity's.
    bool isIdentity() const;
    friend bool operator==(const AffineTransform&, const AffineTransform&) = default;
};

/// A transform as a movie's track header stores it: rows of a, b, u, c, d, v, tx, ty, w, in 16.16 fixed point, the
/// third column in 2.30.
using DisplayMatrix = std::array<std::int32_t, 9>;
constexpr DisplayMatrix identityDisplayMatrix{65536, 0, 0, 0, 65536, 0, 0, 0, 1 << 30};

/// HDR mastering and light-level data that travels beside the pictures, in the units of the HEVC standard.
struct MasteringDisplay {
    std::array<std::array<double, 2>, 3> primaries{}; ///< red, green, blue: CIE 1931 x, y
    std::array<double, 2> whitePoint{};
    double minimumLuminance = 0; ///< cd/m²
    double maximumLuminance = 0; ///< cd/m²
    friend bool operator==(const MasteringDisplay&, const MasteringDisplay&) = default;
};
struct ContentLightLevel {
    unsigned maximumContent = 0;      ///< cd/m²
    unsigned maximumFrameAverage = 0; ///< cd/m²
    friend bool operator==(const ContentLightLevel&, const ContentLightLevel&) = default;
};

/// What a clip carries beside its pictures and sound, kept from source to export.
struct CarriedMetadata {
    std::map<std::string, std::string> tags; ///< container tags: creation date, location, make, model, …
    std::optional<MasteringDisplay> masteringDisplay;
    std::optional<ContentLightLevel> contentLightLevel;
    MediaTime sampleAspectRatio{1, 1};
};

/// Everything that the rest of the system needs to know of a clip. Immutable once loaded.
struct ImportedClip {
    std::filesystem::path url;
    double duration = 0;  ///< seconds
    double frameRate = 0; ///< frames per second
    MediaTime frameDuration{1, 30};
    std::int64_t width = 0; ///< as displayed, after preferredTransform
    std::int64_t height = 0;
    std::int64_t encodedWidth = 0;
    std::int64_t encodedHeight = 0;
    AffineTransform preferredTransform;
    DisplayMatrix displayMatrix = identityDisplayMatrix; ///< the transform as the container stores it, bit for bit
    std::optional<FourCC> videoCodecFourCC;
    std::optional<VideoCodec> videoCodecType;
    std::optional<double> videoEstimatedDataRate; ///< bits per second
    std::int64_t videoBitDepth = 8;
    bool videoIsFullRange = false;
    bool videoHasAlpha = false;
    std::optional<ColorProperties> videoColorProperties; ///< absent when no tag is present
    FileType fileType = FileType::quickTimeMovie;
    bool hasAudio = false;
    std::optional<double> audioSampleRate; ///< Hz
    std::optional<std::int64_t> audioChannelCount;
    std::string audioChannelLayout; ///< the layout's standard name, such as "5.1"; empty when the track names none
    std::optional<FourCC> audioFormatID;
    std::int64_t audioBitDepth = 0;               ///< 0 when the format has none
    std::optional<double> audioEstimatedDataRate; ///< bits per second
    CarriedMetadata metadata;

    /// Probes the file. Throws FlowtideError or ProjectError with the sentence for what is wrong with it.
    static ImportedClip load(const MediaBackend& backend, const std::filesystem::path& path);

    /// The record of the same clip drawn to fit 1280 × 720, never enlarged; for quick previews.
    ImportedClip previewSized() const;

    /// The codec's name in warnings and messages.
    std::string videoCodecDisplayName() const;
};

} // namespace flowtide
