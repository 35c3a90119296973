// Encoding and muxing of a movie.
#pragma once

#include "media/media_io.h"

#include <memory>

namespace flowtide::ffmpeg {

std::unique_ptr<MovieWriter> createMovieWriter(OutputFile& output, FileType fileType, const CarriedMetadata& metadata);

} // namespace flowtide::ffmpeg
