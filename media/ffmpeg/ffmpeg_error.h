// libav's error codes as text.
#pragma once

#include <string>

namespace flowtide::ffmpeg {

/// The library's description of a (negative) code, with the code: "No such file or directory (error 2)".
std::string describe(int code);

} // namespace flowtide::ffmpeg
