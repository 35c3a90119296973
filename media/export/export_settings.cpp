// Codec, bitrate, depth and sound: what of the source is kept, and what stands in for the rest.
#include "media/export/export_settings.h"

#include "media/decode_layout.h"

#include <algorithm>
#include <cmath>

namespace flowtide {

namespace {

constexpr double believableDataRate = 500'000; // bits per second; below it a track's figure is not trusted
constexpr std::int64_t lowestVideoBitRate = 1'000'000;
constexpr double hevcBitsPerPixel = 0.05;
constexpr double otherBitsPerPixel = 0.08;

constexpr std::int64_t defaultAudioBitRate = 256'000;
constexpr std::int64_t lowestAudioBitRate = 64'000;
constexpr std::int64_t highestAudioBitRate = 320'000;

} // namespace

VideoCodec outputCodec(const ImportedClip& clip) {
    return clip.videoCodecType.value_or(VideoCodec::hevc);
}

std::int64_t transparentBitRate(const ImportedClip& clip, VideoCodec codec, double areaFraction) {
    const double dataRate = clip.videoEstimatedDataRate().value_or(0);
    const double bitsPerPixel = codec == VideoCodec::hevc ? hevcBitsPerPixel : otherBitsPerPixel;
    const double rate = dataRate > believableDataRate
                            ? areaFraction * dataRate
                            : areaFraction * std::max(clip.frameRate, 1.0) * static_cast<double>(clip.encodedWidth()) *
                                  static_cast<double>(clip.encodedHeight()) * bitsPerPixel;
    constexpr double largestRate = 1e15; // keeps the rounding inside 64 bits whatever the file claims
    return std::max<std::int64_t>(std::llround(std::min(rate, largestRate)), lowestVideoBitRate);
}

VideoSettings videoSettings(const ImportedClip& clip, VideoCodec codec, OutputSize size, double outputDuration) {
    VideoSettings settings;
    settings.codec = codec;
    settings.width = static_cast<int>(size.width);
    settings.height = static_cast<int>(size.height);
    settings.frameDuration = clip.frameDuration;
    settings.layout = decodePixelFormat(clip);
    settings.expectedDuration = outputDuration;
    settings.displayMatrix = clip.video.displayMatrix;
    if (clip.videoColorProperties())
        settings.color = completedColor(*clip.videoColorProperties(), {clip.encodedWidth(), clip.encodedHeight()});
    if (!isProRes(codec)) {
        const double sourceArea = static_cast<double>(clip.encodedWidth()) * static_cast<double>(clip.encodedHeight());
        const double outputArea = static_cast<double>(size.width) * static_cast<double>(size.height);
        settings.averageBitRate =
            transparentBitRate(clip, codec, std::min(outputArea / std::max(sourceArea, 1.0), 1.0));
    }
    return settings;
}

std::vector<std::string> presentColorTagNames(const ColorProperties& tags) {
    std::vector<std::string> names;
    if (tags.primaries) names.emplace_back("color primaries");
    if (tags.transferFunction) names.emplace_back("transfer function");
    if (tags.matrix) names.emplace_back("YCbCr matrix");
    return names;
}

std::optional<FourCC> expectedAudioFormatID(const ImportedClip& clip, FileType outputFileType) {
    if (!clip.audio) return std::nullopt;
    return clip.audio->formatID == linearPCM && outputFileType == FileType::quickTimeMovie ? linearPCM : aac;
}

int outputPCMBitDepth(const AudioTrack& source) {
    const std::int64_t depth = source.bitDepth;
    return depth == 16 || depth == 24 || depth == 32 ? static_cast<int>(depth) : 24;
}

AudioSettings audioSettings(const ImportedClip& clip, FileType outputFileType) {
    const AudioTrack& source = clip.audio.value();
    AudioSettings settings;
    settings.format = expectedAudioFormatID(clip, outputFileType).value_or(aac);
    settings.sampleRate = source.sampleRate;
    settings.channels = static_cast<int>(source.channelCount);
    settings.channelLayout = source.channelLayout;
    if (settings.format == linearPCM) {
        settings.bitDepth = outputPCMBitDepth(source);
    } else {
        constexpr double largestRate = 1e9;
        const auto sourceRate = source.estimatedDataRate
                                    ? std::llround(std::min(*source.estimatedDataRate, largestRate))
                                    : defaultAudioBitRate;
        settings.bitRate = std::clamp<std::int64_t>(sourceRate, lowestAudioBitRate, highestAudioBitRate);
    }
    return settings;
}

} // namespace flowtide
