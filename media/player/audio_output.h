// Where sound goes: what a player asks of a sound device.
#pragma once

#include <functional>
#include <memory>
#include <span>

namespace flowtide {

struct AudioFormat {
    int sampleRate = 0; ///< Hz
    int channels = 0;
    friend bool operator==(const AudioFormat&, const AudioFormat&) = default;
};

/// Fills a whole number of interleaved sample frames. Called from a device's own thread, which must not wait.
using AudioPull = std::function<void(std::span<float> interleaved)>;

/// An open device; closed by its destructor, after which nothing is pulled any more. Begins paused. Used by one thread.
class AudioOutput {
public:
    virtual ~AudioOutput() = default;
    virtual void start() = 0;
    /// The device may still play what it has pulled.
    virtual void pause() = 0;
    /// How many of the pulled sample frames have been heard by now, the device's latency taken into account. Never
    /// falls; stands still when the device stalls.
    virtual double heardFrames() = 0;
};

/// Opens a device for a format, or returns nothing when there is none.
using AudioOutputFactory = std::function<std::unique_ptr<AudioOutput>(AudioFormat format, AudioPull pull)>;

} // namespace flowtide
