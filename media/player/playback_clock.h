// The clock that playback runs on.
#pragma once

#include <chrono>

namespace flowtide {

/// Seconds since some moment, never going back. May be read from any thread.
class PlaybackClock {
public:
    virtual ~PlaybackClock() = default;
    virtual double seconds() const = 0;
};

/// The machine's own clock.
class SteadyClock final : public PlaybackClock {
public:
    double seconds() const override {
        return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
    }
};

} // namespace flowtide
