// Tells what has been heard from what a device has asked for.
#pragma once

#include <cstdint>
#include <mutex>

namespace flowtide {

/// Devices ask for sound in chunks, some time before it is heard. Between two requests what is heard moves on with the
/// clock, but never beyond what was asked for: a device that stalls stops the count. Thread-safe; no call waits long.
class DeviceClock {
public:
    /// `latency`: seconds from a request to the moment when its first sample is heard.
    DeviceClock(double sampleRate, double latency)
        : sampleRate_(sampleRate)
        , latencyFrames_(latency * sampleRate) {}

    /// The device asks for `frames` sample frames, at `clock` seconds.
    void requested(std::int64_t frames, double clock);
    /// Nothing is asked for until the next request.
    void pause(double clock);
    /// Sample frames heard by `clock`; never falls.
    double heard(double clock);

private:
    double heardLocked(double clock);

    const double sampleRate_;
    const double latencyFrames_;
    std::mutex lock_;         ///< guards everything below
    std::int64_t before_ = 0; ///< sample frames asked for before the latest request
    std::int64_t latest_ = 0; ///< sample frames of the latest request
    double latestClock_ = 0;
    double heard_ = 0;
    bool paused_ = true;
};

} // namespace flowtide
