// libav's error codes as the text that a person reads.
#include "media/ffmpeg/ffmpeg_error.h"

extern "C" {
#include <libavutil/error.h>
}

#include <fmt/format.h>

#include <array>

namespace flowtide::ffmpeg {

std::string describe(int code) {
    std::array<char, AV_ERROR_MAX_STRING_SIZE> text{};
    av_strerror(code, text.data(), text.size());
    return fmt::format("{} (error {})", text.data(), -code);
}

} // namespace flowtide::ffmpeg
