// The probe record of a clip, the vocabulary in which sources and exports are compared.
#pragma once

#include "media/codec.h"
#include "media/color.h"
#include "media/media_time.h"
#include "media/orientation.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>

namespace flowtide {

class MediaBackend;

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
