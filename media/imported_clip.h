// The probe record of a clip, the vocabulary in which sources and exports are compared.
#pragma once

#include "media/codec.h"
#include "media/color.h"
#include "media/media_time.h"
#include "media/orientation.h"
#include "media/video_frame.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace flowtide {

class MediaBackend;

/// What a clip carries beside its pictures and sound, kept from source to export.
struct CarriedMetadata {
    std::map<std::string, std::string> tags; ///< container tags: creation date, location, make, model, …
    std::optional<MasteringDisplay> masteringDisplay;
    std::optional<ContentLightLevel> contentLightLevel;
    MediaTime sampleAspectRatio{1, 1};
};

/// A stream, or the chapters, of a file that exports leave out.
struct UncarriedStream {
    enum class Kind { video, sound, subtitles, timecode, chapters, coverPicture, data };
    Kind kind = Kind::data;
    std::optional<FourCC> format; ///< as the file names it
    friend bool operator==(const UncarriedStream&, const UncarriedStream&) = default;
};

/// A video track as its file describes it.
struct VideoTrack {
    std::optional<FourCC> codec;
    std::int64_t encodedWidth = 0; ///< pixels
    std::int64_t encodedHeight = 0;
    DisplayMatrix displayMatrix = identityDisplayMatrix; ///< as the container stores it, bit for bit
    double nominalFrameRate = 0;                         ///< frames per second; 0 when the track tells none
    std::optional<MediaTime> constantSampleInterval;     ///< of every sample but the last, when they are all alike
    MediaTime timeBase{1, 60'000};                       ///< seconds in which its timestamps count
    std::optional<double> end;                           ///< seconds at which its last frame ends; absent: unknown
    std::optional<double> estimatedDataRate;             ///< bits per second
    std::int64_t bitDepth = 8;
    bool isFullRange = false;
    bool hasAlpha = false;
    std::optional<ChromaSubsampling> chroma; ///< as encoded, 4:4:4 for RGB; absent for grey and for rarer samplings
    bool isRGB = false;
    bool isInterlaced = false;
    bool hasHDR10Plus = false; ///< HDR metadata that changes from picture to picture
    bool hasDolbyVision = false;
    std::optional<ColorProperties> colorProperties; ///< absent when no tag is present
};

/// An audio track as its file describes it.
struct AudioTrack {
    double sampleRate = 0; ///< Hz
    std::int64_t channelCount = 0;
    std::string channelLayout; ///< the layout's standard name, such as "5.1"; empty when the track names none
    std::optional<FourCC> formatID;
    bool isLosslesslyCompressed = false;     ///< such as Apple Lossless and FLAC; linear PCM is not compressed
    std::int64_t bitDepth = 0;               ///< 0 when the format has none
    std::optional<double> estimatedDataRate; ///< bits per second
};

/// A file as its tracks describe it, before anything is judged or derived.
struct ProbedMedia {
    double duration = 0; ///< seconds
    std::optional<VideoTrack> video;
    std::optional<AudioTrack> audio;
    std::vector<UncarriedStream> uncarriedStreams; ///< in the file's order
    CarriedMetadata metadata;
};

/// Everything that the rest of the system needs to know of a clip: its tracks, and what the rules make of them.
/// Immutable once loaded.
struct ImportedClip {
    std::filesystem::path url;
    double duration = 0;  ///< seconds
    double frameRate = 0; ///< frames per second
    MediaTime frameDuration{1, 30};
    std::int64_t width = 0; ///< as displayed, after preferredTransform
    std::int64_t height = 0;
    AffineTransform preferredTransform;
    std::optional<VideoCodec> videoCodecType; ///< absent for codecs that cannot be written
    FileType fileType = FileType::quickTimeMovie;
    VideoTrack video;
    std::optional<AudioTrack> audio;
    std::vector<UncarriedStream> uncarriedStreams; ///< in the file's order
    CarriedMetadata metadata;

    std::int64_t encodedWidth() const { return video.encodedWidth; }
    std::int64_t encodedHeight() const { return video.encodedHeight; }
    std::optional<FourCC> videoCodecFourCC() const { return video.codec; }
    std::optional<double> videoEstimatedDataRate() const { return video.estimatedDataRate; }
    std::int64_t videoBitDepth() const { return video.bitDepth; }
    bool videoIsFullRange() const { return video.isFullRange; }
    const std::optional<ColorProperties>& videoColorProperties() const { return video.colorProperties; }
    bool hasAudio() const { return audio.has_value(); }

    /// Probes the file. Throws FlowtideError or ProjectError with the sentence for what is wrong with it.
    static ImportedClip load(const MediaBackend& backend, const std::filesystem::path& path);

    /// The record of the same clip drawn to fit 1280 × 720, never enlarged; for quick previews.
    ImportedClip previewSized() const;

    /// The codec's name in warnings and messages.
    std::string videoCodecDisplayName() const;
};

} // namespace flowtide
