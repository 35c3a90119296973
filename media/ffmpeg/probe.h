// Reading the track descriptions of a movie.
#pragma once

#include "media/media_io.h"

#include <filesystem>

namespace flowtide::ffmpeg {

ProbedMedia probeMovie(const std::filesystem::path& path);

} // namespace flowtide::ffmpeg
