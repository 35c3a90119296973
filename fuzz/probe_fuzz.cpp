// Any bytes, taken for a movie: the probe accepts them within its limits or refuses them with a sentence.
#include "media/ffmpeg/ffmpeg_backend.h"
#include "media/imported_clip.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const auto backend = flowtide::makeFFmpegBackend();
    const int file = ::memfd_create("probe", MFD_CLOEXEC);
    if (file < 0) return 0;
    for (std::size_t done = 0; done < size;) {
        const ssize_t count = ::write(file, data + done, size - done);
        if (count <= 0) break;
        done += static_cast<std::size_t>(count);
    }
    try {
        const auto clip = flowtide::ImportedClip::load(*backend, "/proc/self/fd/" + std::to_string(file));
        const bool sane = std::isfinite(clip.duration) && clip.duration > 0 && clip.frameDuration.numerator > 0 &&
                          clip.frameDuration.denominator > 0 && std::isfinite(clip.frameRate) && clip.frameRate > 0 &&
                          clip.width >= 1 && clip.width <= 32'768 && (!clip.audio || clip.audio->channelCount <= 64);
        if (!sane) std::abort();
    } catch (const std::runtime_error& error) {
        if (std::string(error.what()).empty()) std::abort();
    }
    ::close(file);
    return 0;
}
