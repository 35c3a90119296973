// Consumption by the clock.
#include "media/player/null_audio_output.h"

#include <algorithm>
#include <utility>

namespace flowtide {

namespace {

constexpr std::int64_t chunkFrames = 256; // a few milliseconds, as devices ask for

} // namespace

NullAudioOutput::NullAudioOutput(AudioFormat format, AudioPull pull, const PlaybackClock& clock, double latency)
    : format_(format)
    , pull_(std::move(pull))
    , clock_(clock)
    , latencyFrames_(latency * format.sampleRate)
    , chunk_(static_cast<std::size_t>(chunkFrames * format.channels)) {}

void NullAudioOutput::start() {
    if (std::exchange(running_, true)) return;
    startClock_ = clock_.seconds();
}

void NullAudioOutput::pause() {
    if (!running_) return;
    consumedBefore_ = consumedFrames();
    running_ = false;
}

double NullAudioOutput::heardFrames() {
    const double consumed = consumedFrames();
    if (running_) pullUntil(consumed);
    return std::max(consumed - latencyFrames_, 0.0);
}

double NullAudioOutput::consumedFrames() const {
    if (!running_) return consumedBefore_;
    return consumedBefore_ + std::max(clock_.seconds() - startClock_, 0.0) * format_.sampleRate;
}

void NullAudioOutput::pullUntil(double frames) {
    // Not a frame more: a jump would wait for what was pulled too early.
    for (auto due = static_cast<std::int64_t>(frames); pulled_ < due;) {
        const std::int64_t count = std::min(due - pulled_, chunkFrames);
        pull_(std::span(chunk_).first(static_cast<std::size_t>(count * format_.channels)));
        pulled_ += count;
    }
}

} // namespace flowtide
