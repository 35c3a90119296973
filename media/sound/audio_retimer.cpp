// Picks the source samples on both sides of each output sample and weighs them.
#include "media/sound/audio_retimer.h"

#include <algorithm>
#include <cmath>

namespace flowtide {

std::int64_t AudioRetimer::totalFrames() const {
    return std::llround(timeMap_.outputDuration() * audio_.sampleRate);
}

void AudioRetimer::renderStrided(double first, double stride, std::span<float> interleaved) {
    const std::int64_t channels = audio_.channels;
    const std::int64_t endFrame = audio_.firstFrame + audio_.frameCount();
    const auto count = static_cast<std::int64_t>(interleaved.size()) / channels;
    const float* samples = audio_.samples.data();
    const double duration = timeMap_.outputDuration();
    for (std::int64_t n = 0; n < count; ++n) {
        float* out = interleaved.data() + n * channels;
        const OutputSeconds outputTime{(first + static_cast<double>(n) * stride) / audio_.sampleRate};
        if (!(outputTime.value >= 0 && outputTime.value < duration)) {
            std::fill_n(out, channels, 0.0F);
            continue;
        }
        const double position = timeMap_.sourceTime(outputTime, cursor_).value * audio_.sampleRate;
        const double whole = std::floor(position);
        const auto k = static_cast<std::int64_t>(whole);
        if (k < audio_.firstFrame || k >= endFrame) {
            std::fill_n(out, channels, 0.0F);
            continue;
        }
        const double fraction = position - whole;
        const float* here = samples + (k - audio_.firstFrame) * channels;
        const float* after = k + 1 < endFrame ? here + channels : here;
        for (std::int64_t c = 0; c < channels; ++c)
            out[c] = static_cast<float>((1.0 - fraction) * static_cast<double>(here[c]) +
                                        fraction * static_cast<double>(after[c]));
    }
}

} // namespace flowtide
