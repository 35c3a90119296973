// How loud a clip's sound is over its time.
#pragma once

#include "media/sound/audio_decoding.h"

#include <vector>

namespace flowtide {

/// The largest sample in each of many equal parts of the clip, from its start.
struct SoundEnvelope {
    std::vector<float> peaks; ///< 0...1
    double partSeconds = 1;
    float loudest = 0; ///< of them

    /// The largest one in a stretch of source seconds; 0 outside of the sound.
    float peak(double from, double to) const;
};

/// Goes through all of the sound once; callable from any thread.
SoundEnvelope soundEnvelope(const AudioData& sound, double durationSeconds);

} // namespace flowtide
