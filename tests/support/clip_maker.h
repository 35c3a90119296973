// Clips that prove timing without eyes or ears: every frame carries its number, the sound is a formula.
#pragma once

#include "media/media_io.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace flowtide::test {

/// What a made clip is like. The file's extension chooses the container.
struct ClipRecipe {
    VideoCodec codec = VideoCodec::h264;
    PixelLayout layout;
    int width = 96;
    int height = 64;
    MediaTime frameDuration{1, 25};
    std::int64_t frameCount = 50;
    std::optional<ColorProperties> color;
    DisplayMatrix displayMatrix = identityDisplayMatrix;
    CarriedMetadata metadata;

    /// Number painted into frame i; i itself when not given.
    std::function<std::int64_t(std::int64_t)> frameNumber;
    /// Draws frame i, in place of the number.
    std::function<VideoFrame(std::int64_t)> picture;

    double sampleRate = 0; ///< 0: no sound
    int channels = 2;
    std::string channelLayout; ///< as AudioTrack::channelLayout
    FourCC audioFormat = aac;
    int audioBitDepth = 16;
    std::int64_t audioBitRate = 256'000;
    /// Sample of a channel at a time in seconds; silence when not given.
    std::function<double(double seconds, int channel)> sound;
};

void makeClip(const MediaBackend& backend, const std::filesystem::path& path, const ClipRecipe& recipe);

/// A frame with the number as sixteen horizontal stripes, which survive any crop, scaling and heavy compression.
VideoFrame numberedFrame(PixelLayout layout, int width, int height, std::int64_t number);
/// The number that a frame carries; nothing when the stripes contradict their check bits.
std::optional<std::int64_t> numberOf(const VideoFrame& frame);

/// The numbers of all frames of a clip, in order; -1 for a frame that cannot be read.
std::vector<std::int64_t> frameNumbers(const MediaBackend& backend, const ImportedClip& clip);

/// A sweep from 200 Hz upwards, 300 Hz a second, at half amplitude; channels differ in phase.
double chirp(double seconds, int channel);

} // namespace flowtide::test
