// Interpolation between a device's requests.
#include "media/player/device_clock.h"

#include <algorithm>

namespace flowtide {

void DeviceClock::requested(std::int64_t frames, double clock) {
    const std::scoped_lock guard(lock_);
    before_ += latest_;
    latest_ = frames;
    latestClock_ = clock;
    paused_ = false;
}

void DeviceClock::pause(double clock) {
    const std::scoped_lock guard(lock_);
    heardLocked(clock);
    paused_ = true;
}

double DeviceClock::heard(double clock) {
    const std::scoped_lock guard(lock_);
    return heardLocked(clock);
}

double DeviceClock::heardLocked(double clock) {
    if (paused_) return heard_;
    const double since = std::clamp((clock - latestClock_) * sampleRate_, 0.0, static_cast<double>(latest_));
    heard_ = std::max(heard_, static_cast<double>(before_) + since - latencyFrames_);
    return heard_;
}

} // namespace flowtide
