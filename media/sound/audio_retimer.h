// Resamples sound along the time map: pitch follows speed.
#pragma once

#include "core/time_map.h"
#include "media/sound/audio_decoding.h"

#include <cstdint>
#include <span>

namespace flowtide {

/// Produces the output's sample frames in order by linear interpolation between neighbouring source samples. Holds
/// references: the sound and the map must outlive it.
class AudioRetimer {
public:
    AudioRetimer(const AudioData& audio, const TimeMap& timeMap)
        : audio_(audio)
        , timeMap_(timeMap) {}

    /// How many sample frames the whole output has.
    std::int64_t totalFrames() const;

    /// Fills `interleaved` (a whole number of sample frames) with the output from sample frame `first` on. Calls go
    /// forward through the output; over all of it the cost is linear.
    void render(std::int64_t first, std::span<float> interleaved) {
        renderStrided(static_cast<double>(first), 1, interleaved);
    }

    /// The same from any place on and at any stride, both in sample frames of the output: 2 takes every other frame,
    /// -1 goes backwards. Silent beyond the output's ends. Neither waits nor allocates.
    void renderStrided(double first, double stride, std::span<float> interleaved);

private:
    const AudioData& audio_;
    const TimeMap& timeMap_;
    std::size_t cursor_ = 0;
};

} // namespace flowtide
