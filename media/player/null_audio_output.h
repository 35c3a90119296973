// A sound device that nobody hears, for machines without one.
#pragma once

#include "media/player/audio_output.h"
#include "media/player/playback_clock.h"

#include <cstdint>
#include <vector>

namespace flowtide {

/// Consumes sound at its rate on a clock. It has no thread: what has become due is pulled when somebody asks what has
/// been heard.
class NullAudioOutput final : public AudioOutput {
public:
    /// `latency`: seconds from pulling to hearing. The clock must outlive it.
    NullAudioOutput(AudioFormat format, AudioPull pull, const PlaybackClock& clock, double latency = 0);

    void start() override;
    void pause() override;
    double heardFrames() override;

private:
    double consumedFrames() const;
    void pullUntil(double frames);

    const AudioFormat format_;
    const AudioPull pull_;
    const PlaybackClock& clock_;
    const double latencyFrames_;
    std::vector<float> chunk_;
    std::int64_t pulled_ = 0;
    double consumedBefore_ = 0; ///< sample frames consumed up to the latest start
    double startClock_ = 0;
    bool running_ = false;
};

} // namespace flowtide
