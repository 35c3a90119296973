// From the settings of the tracks to the record of the file.
#include "media/export/export_prediction.h"

#include <cmath>

namespace flowtide {

namespace {

/// Bits per sample that a decoder reports for pictures of a layout in a codec.
int writtenBitDepth(VideoCodec codec, PixelLayout layout) {
    constexpr int proRes4444Depth = 12; // decoded with two bits more than the ten that we give
    return codec == VideoCodec::proRes4444 ? proRes4444Depth : layout.bitDepth;
}

} // namespace

ImportedClip predictedOutput(const VideoSettings& video, const std::optional<AudioSettings>& audio,
                             OutputSize displaySize, std::int64_t frameCount, FileType fileType) {
    ImportedClip clip;
    clip.fileType = fileType;
    clip.duration = video.frameDuration.secondsTimes(frameCount);
    clip.frameDuration = video.frameDuration;
    clip.frameRate = 1 / video.frameDuration.seconds();
    clip.width = displaySize.width;
    clip.height = displaySize.height;
    clip.preferredTransform = affineTransform(video.displayMatrix);
    clip.videoCodecType = video.codec;
    clip.video.encodedWidth = video.width;
    clip.video.encodedHeight = video.height;
    clip.video.displayMatrix = video.displayMatrix;
    clip.video.bitDepth = writtenBitDepth(video.codec, video.layout);
    clip.video.isFullRange = video.layout.fullRange;
    clip.video.colorProperties = video.color;
    if (audio) {
        AudioTrack& track = clip.audio.emplace();
        track.formatID = audio->format;
        track.sampleRate = std::round(audio->sampleRate);
        track.channelCount = audio->channels;
        track.bitDepth = audio->bitDepth;
    }
    return clip;
}

} // namespace flowtide
