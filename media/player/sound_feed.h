// What a sound device is to play: the retimed sound at the player's rate, and which part of it is being heard.
#pragma once

#include "core/time_map.h"
#include "media/player/audio_output.h"
#include "media/sound/audio_retimer.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace flowtide {

/// A clip's sound and the map that retimes it.
struct PlayableSound {
    std::shared_ptr<const AudioData> audio;
    std::shared_ptr<const TimeMap> timeMap;
};

/// Which channel counts a device is opened with; sound with others is played by its first two channels.
int deviceChannels(std::int64_t clipChannels);

/// Rate 1 plays the retimed sound, speed 2 and more plays it strided, negative rates play it backwards; silence beyond
/// the ends. A device pulls on its own thread, everything else is the owner's; neither ever waits for more than the
/// filling of one chunk.
class SoundFeed {
public:
    explicit SoundFeed(AudioFormat format)
        : format_(format) {}

    AudioFormat format() const { return format_; }

    /// Replaces the sound; goes on at the same output time.
    void setSound(PlayableSound sound);
    /// Jumps: what was pulled before is no longer counted as heard.
    void playFrom(OutputSeconds position, double rate);
    /// The same, for a device that has pulled nothing yet.
    void restartFrom(OutputSeconds position, double rate);
    /// Goes on from what was pulled last, at another rate.
    void setRate(double rate);

    /// Muted, all goes on, unheard.
    void setMuted(bool muted);

    /// Called by the device.
    void pull(std::span<float> interleaved);

    /// The output time of what is heard when the device has played `heardFrames` of what it pulled. Until the first
    /// frame after a jump is heard, this is the jump's target. May lie beyond the output's ends.
    OutputSeconds positionAt(double heardFrames) const;

private:
    /// From a pulled sample frame on, the output is walked evenly.
    struct Stretch {
        std::int64_t firstFrame = 0;
        double start = 0; ///< output seconds at firstFrame
        double rate = 0;
    };

    void render(std::span<float> interleaved);
    double pulledPosition() const;

    const AudioFormat format_;
    mutable std::mutex lock_; ///< guards everything below
    PlayableSound sound_;
    std::optional<AudioRetimer> retimer_;
    std::vector<float> staging_;          ///< a batch of sound with more or fewer channels than the device's
    std::array<Stretch, 16> stretches_{}; ///< oldest first; more rate changes than these in one latency are forgotten
    std::size_t stretchCount_ = 1;
    std::int64_t pulledFrames_ = 0;
    bool isMuted_ = false;
};

} // namespace flowtide
