// Waiting while a track is too far ahead, and the ways out of it.
#include "media/export/interleave_gate.h"

namespace flowtide {

InterleaveGate::InterleaveGate(double slackSeconds, bool hasAudio)
    : slackSeconds_(slackSeconds) {
    finished_[index(Track::audio)] = !hasAudio;
}

void InterleaveGate::advance(Track track, double outputSeconds) {
    const std::size_t own = index(track);
    const std::size_t other = 1 - own;
    std::unique_lock guard(lock_);
    reached_[own] = outputSeconds;
    changed_.notify_all();
    changed_.wait(guard,
                  [&] { return released_ || finished_[other] || reached_[own] <= reached_[other] + slackSeconds_; });
}

void InterleaveGate::finish(Track track) {
    const std::scoped_lock guard(lock_);
    finished_[index(track)] = true;
    changed_.notify_all();
}

void InterleaveGate::release() {
    const std::scoped_lock guard(lock_);
    released_ = true;
    changed_.notify_all();
}

} // namespace flowtide
