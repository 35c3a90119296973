// Rendering for a device, and the way back from what it has played to output time.
#include "media/player/sound_feed.h"

#include <algorithm>
#include <utility>

namespace flowtide {

namespace {

constexpr std::size_t stagingFrames = 256;

} // namespace

int deviceChannels(std::int64_t clipChannels) {
    switch (clipChannels) {
    case 1:
    case 2:
    case 4:
    case 6:
    case 8:
        return static_cast<int>(clipChannels);
    default:
        return 2;
    }
}

void SoundFeed::setSound(PlayableSound sound) {
    const bool playable = sound.audio && sound.timeMap && sound.audio->channels > 0;
    std::vector<float> staging(playable ? stagingFrames * static_cast<std::size_t>(sound.audio->channels) : 0);
    {
        const std::scoped_lock guard(lock_);
        std::swap(sound_, sound);
        std::swap(staging_, staging);
        retimer_.reset();
        if (playable) retimer_.emplace(*sound_.audio, *sound_.timeMap);
    }
    // The old sound, now in `sound`, is freed here: never by the device's thread, never under the lock.
}

double SoundFeed::pulledPosition() const {
    const Stretch& last = stretches_[stretchCount_ - 1];
    return last.start + static_cast<double>(pulledFrames_ - last.firstFrame) * last.rate / format_.sampleRate;
}

void SoundFeed::playFrom(OutputSeconds position, double rate) {
    const std::scoped_lock guard(lock_);
    stretches_[0] = {pulledFrames_, position.value, rate};
    stretchCount_ = 1;
}

void SoundFeed::restartFrom(OutputSeconds position, double rate) {
    const std::scoped_lock guard(lock_);
    pulledFrames_ = 0;
    stretches_[0] = {0, position.value, rate};
    stretchCount_ = 1;
}

void SoundFeed::setRate(double rate) {
    const std::scoped_lock guard(lock_);
    const Stretch next{pulledFrames_, pulledPosition(), rate};
    if (stretches_[stretchCount_ - 1].firstFrame == pulledFrames_) {
        stretches_[stretchCount_ - 1] = next;
        return;
    }
    if (stretchCount_ == stretches_.size()) {
        std::move(stretches_.begin() + 1, stretches_.end(), stretches_.begin());
        --stretchCount_;
    }
    stretches_[stretchCount_++] = next;
}

void SoundFeed::setMuted(bool muted) {
    const std::scoped_lock guard(lock_);
    isMuted_ = muted;
}

void SoundFeed::pull(std::span<float> interleaved) {
    const std::scoped_lock guard(lock_);
    render(interleaved);
    pulledFrames_ += static_cast<std::int64_t>(interleaved.size()) / format_.channels;
}

void SoundFeed::render(std::span<float> interleaved) {
    const Stretch& stretch = stretches_[stretchCount_ - 1];
    if (!retimer_ || stretch.rate == 0 || isMuted_) {
        std::ranges::fill(interleaved, 0.0F);
        return;
    }
    const double clipRate = sound_.audio->sampleRate;
    const auto clipChannels = static_cast<std::size_t>(sound_.audio->channels);
    const auto channels = static_cast<std::size_t>(format_.channels);
    const double stride = stretch.rate * clipRate / format_.sampleRate;
    const double first = stretch.start * clipRate + static_cast<double>(pulledFrames_ - stretch.firstFrame) * stride;
    if (clipChannels == channels) {
        retimer_->renderStrided(first, stride, interleaved);
        return;
    }
    const std::size_t count = interleaved.size() / channels;
    for (std::size_t done = 0; done < count; done += stagingFrames) {
        const std::size_t now = std::min(stagingFrames, count - done);
        const std::span part = std::span(staging_).first(now * clipChannels);
        retimer_->renderStrided(first + static_cast<double>(done) * stride, stride, part);
        for (std::size_t n = 0; n < now; ++n)
            for (std::size_t c = 0; c < channels; ++c)
                interleaved[(done + n) * channels + c] = part[n * clipChannels + std::min(c, clipChannels - 1)];
    }
}

OutputSeconds SoundFeed::positionAt(double heardFrames) const {
    const std::scoped_lock guard(lock_);
    std::size_t index = stretchCount_ - 1;
    while (index > 0 && static_cast<double>(stretches_[index].firstFrame) > heardFrames)
        --index;
    const Stretch& stretch = stretches_[index];
    const double since = std::max(heardFrames - static_cast<double>(stretch.firstFrame), 0.0);
    return {stretch.start + since * stretch.rate / format_.sampleRate};
}

} // namespace flowtide
