// The playhead's arithmetic.
#include "media/player/playback_timeline.h"

#include <algorithm>
#include <cmath>

namespace flowtide {

double playableRate(double rate) {
    return std::isnan(rate) ? 0 : std::clamp(rate, -highestPlaybackRate, highestPlaybackRate);
}

PlaybackTimeline::PlaybackTimeline(double duration)
    : duration_(std::max(duration, 0.0)) {}

OutputSeconds PlaybackTimeline::position(double clock) const {
    // A clock that reads earlier than the anchor must not move the playhead against its direction.
    const double elapsed = std::max(clock - anchorClock_, 0.0);
    return {std::clamp(anchor_ + rate_ * elapsed, 0.0, duration_)};
}

bool PlaybackTimeline::ended(double clock) const {
    if (rate_ == 0) return false;
    return rate_ > 0 ? position(clock).value >= duration_ : position(clock).value <= 0;
}

void PlaybackTimeline::setRate(double rate, double clock) {
    moveTo(position(clock), clock);
    rate_ = playableRate(rate);
}

void PlaybackTimeline::moveTo(OutputSeconds position, double clock) {
    anchor_ = std::isnan(position.value) ? 0 : std::clamp(position.value, 0.0, duration_);
    anchorClock_ = clock;
}

} // namespace flowtide
