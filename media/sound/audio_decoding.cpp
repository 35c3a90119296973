// Puts decoded blocks of sound where their timestamps say.
#include "media/sound/audio_decoding.h"

#include "media/flowtide_error.h"
#include "media/media_io.h"

#include <algorithm>
#include <cmath>

namespace flowtide::AudioDecoding {

namespace {

constexpr double firstReservation = 1'048'576; // samples

// Linear resampling reads one sample past the range; a few more cost nothing and spare thinking about rounding.
constexpr std::int64_t marginFrames = 4;

} // namespace

AudioData readAll(const MediaBackend& backend, const ImportedClip& clip, SourceRange range,
                  const CancelCheck& isCancelled) {
    AudioData audio;
    if (!clip.audio) throw FlowtideError::noAudioTrack();
    audio.sampleRate = clip.audio->sampleRate;
    audio.channels = clip.audio->channelCount;
    if (!(audio.sampleRate > 0) || audio.channels < 1) throw FlowtideError::readerFailed("Failed to read audio");
    const double seconds = std::min(range.upper, clip.duration) - std::max(range.lower, 0.0);
    const double expected = audio.sampleRate * seconds * static_cast<double>(audio.channels);
    if (!std::isfinite(expected) || expected > static_cast<double>(largestSampleCount))
        throw FlowtideError::readerFailed(
            "This clip's decoded audio exceeds the 512 MB export limit. Use a shorter source clip.");

    audio.firstFrame =
        std::max<std::int64_t>(static_cast<std::int64_t>(std::floor(range.lower * audio.sampleRate)) - marginFrames, 0);
    const std::int64_t endFrame = static_cast<std::int64_t>(std::ceil(range.upper * audio.sampleRate)) + marginFrames;
    audio.samples.reserve(static_cast<std::size_t>(std::clamp<double>(expected, 0, firstReservation)));

    const auto reader = backend.openAudio(clip, range, isCancelled);
    while (const auto block = reader->next()) {
        const auto blockFrames = static_cast<std::int64_t>(block->samples.size()) / audio.channels;
        const std::int64_t blockStart = std::llround(block->time.value * audio.sampleRate);
        // What lies before the range, or was delivered already by an overlapping block, is dropped.
        const std::int64_t nextFrame = audio.firstFrame + audio.frameCount();
        const std::int64_t from = std::max(blockStart, nextFrame);
        const std::int64_t to = std::min(blockStart + blockFrames, endFrame);
        if (from >= to) continue;
        const auto gap = static_cast<std::size_t>((from - nextFrame) * audio.channels);
        audio.samples.insert(audio.samples.end(), gap, 0.0F);
        audio.samples.insert(audio.samples.end(), block->samples.begin() + (from - blockStart) * audio.channels,
                             block->samples.begin() + (to - blockStart) * audio.channels);
    }
    audio.damagedStretches = reader->damagedStretchCount();
    return audio;
}

} // namespace flowtide::AudioDecoding
