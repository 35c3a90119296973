// The loop that retimes and writes.
#include "media/preview/preview_audio.h"

#include "media/flowtide_error.h"
#include "media/preview/temporary_file.h"
#include "media/sound/audio_retimer.h"
#include "project/files/project_error.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <exception>
#include <limits>
#include <memory>
#include <new>
#include <system_error>
#include <vector>

namespace flowtide {

namespace {

constexpr std::int64_t bufferFrames = 32'768;

AudioSettings settingsOf(const AudioData& audio) {
    AudioSettings settings;
    settings.format = linearPCM;
    settings.bitDepth = 32;
    settings.sampleRate = audio.sampleRate;
    settings.channels = static_cast<int>(std::clamp<std::int64_t>(audio.channels, 0, std::numeric_limits<int>::max()));
    return settings;
}

std::unique_ptr<SoundFileWriter> makeWriter(const MediaBackend& backend, OutputFile& file, const AudioData& audio) {
    try {
        return backend.createSoundFile(file, settingsOf(audio));
    } catch (const FlowtideError&) {
        std::throw_with_nested(FlowtideError::previewAudioFailed("Unsupported preview audio format."));
    }
}

std::vector<float> makeBuffer(std::int64_t channels) {
    constexpr const char* failure = "Could not allocate preview audio.";
    std::vector<float> buffer;
    if (static_cast<std::size_t>(channels) > buffer.max_size() / static_cast<std::size_t>(bufferFrames))
        throw FlowtideError::previewAudioFailed(failure);
    try {
        buffer.resize(static_cast<std::size_t>(bufferFrames * channels));
    } catch (const std::bad_alloc&) {
        throw FlowtideError::previewAudioFailed(failure);
    }
    return buffer;
}

void write(const MediaBackend& backend, OutputFile& file, const AudioData& audio, const TimeMap& timeMap) {
    const auto writer = makeWriter(backend, file, audio);
    std::vector<float> buffer = makeBuffer(audio.channels);
    AudioRetimer retimer(audio, timeMap);
    const std::int64_t total = retimer.totalFrames();
    for (std::int64_t first = 0; first < total; first += bufferFrames) {
        const std::int64_t count = std::min(bufferFrames, total - first);
        const auto samples = std::span(buffer).first(static_cast<std::size_t>(count * audio.channels));
        retimer.render(first, samples);
        writer->append(samples);
    }
    writer->finish();
}

} // namespace

std::filesystem::path PreviewAudio::render(const AudioData& audio, const TimeMap& timeMap) const {
    try {
        TemporaryFile file(items_, TemporaryItems::Kind::previewAudio);
        write(backend_, file, audio, timeMap);
        file.keep();
        return file.path();
    } catch (const std::system_error& error) {
        throw FlowtideError::previewAudioFailed(
            fmt::format("Could not write preview audio: {} (error {})", error.code().message(), error.code().value()));
    } catch (const ProjectError& error) {
        throw FlowtideError::previewAudioFailed(fmt::format("Could not write preview audio: {}", error.what()));
    }
}

} // namespace flowtide
