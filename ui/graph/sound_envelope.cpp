#include "ui/graph/sound_envelope.h"

#include <algorithm>
#include <cmath>

namespace flowtide {

namespace {
constexpr double partsInSecond = 400;
constexpr double mostParts = 65'536; ///< enough for a bar at the largest magnification of an hour
} // namespace

float SoundEnvelope::peak(double from, double to) const {
    if (peaks.empty() || !(to > from) || to <= 0) return 0;
    const auto count = static_cast<double>(peaks.size());
    const double first = std::floor(std::max(from, 0.0) / partSeconds);
    const double last = std::min(std::max(std::ceil(to / partSeconds), first + 1), count);
    if (first >= count) return 0;
    return *std::max_element(peaks.begin() + static_cast<std::ptrdiff_t>(first),
                             peaks.begin() + static_cast<std::ptrdiff_t>(last));
}

SoundEnvelope soundEnvelope(const AudioData& sound, double durationSeconds) {
    SoundEnvelope envelope;
    if (sound.channels <= 0 || sound.sampleRate <= 0 || !(durationSeconds > 0)) return envelope;
    const double count = std::clamp(std::ceil(durationSeconds * partsInSecond), 1.0, mostParts);
    envelope.partSeconds = durationSeconds / count;
    envelope.peaks.resize(static_cast<std::size_t>(count));
    const double framesInPart = envelope.partSeconds * sound.sampleRate;
    const auto channels = static_cast<std::size_t>(sound.channels);
    const std::int64_t frames = sound.frameCount();
    for (std::size_t part = 0; part < envelope.peaks.size(); ++part) {
        const auto at = [&](double index) {
            return std::clamp<std::int64_t>(static_cast<std::int64_t>(index * framesInPart) - sound.firstFrame, 0,
                                            frames);
        };
        const auto from = static_cast<std::size_t>(at(static_cast<double>(part))) * channels;
        const auto to = static_cast<std::size_t>(at(static_cast<double>(part + 1))) * channels;
        float peak = 0;
        for (std::size_t i = from; i < to; ++i)
            peak = std::max(peak, std::abs(sound.samples[i]));
        envelope.peaks[part] = std::min(peak, 1.0F);
        envelope.loudest = std::max(envelope.loudest, envelope.peaks[part]);
    }
    return envelope;
}

} // namespace flowtide
