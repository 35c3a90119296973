// SDL's audio subsystem, and nothing else of it.
#include "media/sdl/sdl_audio_output.h"

#include "media/player/device_clock.h"

#include <SDL.h>

#include <cstdint>
#include <span>
#include <string_view>
#include <utility>

namespace flowtide {

namespace {

// A compromise of SDL's own examples: about 20 ms of sound at a time, which desktops keep up with.
constexpr Uint16 chunkFrames = 1024;

/// SDL counts how often its subsystem was asked for.
class Subsystem {
public:
    Subsystem() {
        // Ending on a signal is the program's business.
        SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
        works_ = SDL_InitSubSystem(SDL_INIT_AUDIO) == 0;
    }
    ~Subsystem() {
        if (works_) SDL_QuitSubSystem(SDL_INIT_AUDIO);
    }
    Subsystem(const Subsystem&) = delete;
    Subsystem& operator=(const Subsystem&) = delete;

    bool hasDevices() const {
        const char* driver = works_ ? SDL_GetCurrentAudioDriver() : nullptr;
        return driver && std::string_view(driver) != "dummy";
    }

private:
    bool works_ = false;
};

class SdlAudioOutput final : public AudioOutput {
public:
    SdlAudioOutput(AudioFormat format, AudioPull pull, const PlaybackClock& clock)
        : format_(format)
        , pull_(std::move(pull))
        , clock_(clock)
        // SDL tells nothing of the device's latency: when a chunk is asked for, the one before it begins to be heard.
        , device_(format.sampleRate, static_cast<double>(chunkFrames) / format.sampleRate) {
        if (!subsystem_.hasDevices()) return;
        SDL_AudioSpec wanted{};
        wanted.freq = format.sampleRate;
        wanted.format = AUDIO_F32SYS;
        wanted.channels = static_cast<Uint8>(format.channels);
        wanted.samples = chunkFrames;
        wanted.callback = [](void* self, Uint8* bytes, int size) {
            static_cast<SdlAudioOutput*>(self)->fill(bytes, static_cast<std::size_t>(size));
        };
        wanted.userdata = this;
        // No change of format is allowed: SDL converts.
        id_ = SDL_OpenAudioDevice(nullptr, 0, &wanted, nullptr, 0);
    }

    /// Waits for the callback to end.
    ~SdlAudioOutput() override {
        if (isOpen()) SDL_CloseAudioDevice(id_);
    }
    SdlAudioOutput(const SdlAudioOutput&) = delete;
    SdlAudioOutput& operator=(const SdlAudioOutput&) = delete;

    bool isOpen() const { return id_ != 0; }
    void start() override { SDL_PauseAudioDevice(id_, 0); }
    void pause() override {
        SDL_PauseAudioDevice(id_, 1);
        device_.pause(clock_.seconds());
    }
    double heardFrames() override { return device_.heard(clock_.seconds()); }

private:
    void fill(Uint8* bytes, std::size_t size) {
        const std::span<float> samples(reinterpret_cast<float*>(bytes), size / sizeof(float));
        device_.requested(static_cast<std::int64_t>(samples.size()) / format_.channels, clock_.seconds());
        pull_(samples);
    }

    const AudioFormat format_;
    const AudioPull pull_;
    const PlaybackClock& clock_;
    Subsystem subsystem_;
    DeviceClock device_;
    SDL_AudioDeviceID id_ = 0;
};

} // namespace

std::unique_ptr<AudioOutput> openSdlAudio(AudioFormat format, AudioPull pull, const PlaybackClock& clock) {
    auto output = std::make_unique<SdlAudioOutput>(format, std::move(pull), clock);
    if (!output->isOpen()) return nullptr;
    return output;
}

} // namespace flowtide
