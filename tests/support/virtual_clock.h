// A clock that a test moves.
#pragma once

#include "media/player/playback_clock.h"

#include <atomic>

namespace flowtide::test {

class VirtualClock final : public PlaybackClock {
public:
    double seconds() const override { return seconds_; }
    void advance(double seconds) { seconds_ = seconds_ + seconds; }

private:
    std::atomic<double> seconds_ = 1000; // as little special as a machine's own
};

} // namespace flowtide::test
