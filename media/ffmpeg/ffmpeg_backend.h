// The media backend on FFmpeg's libraries.
#pragma once

#include "media/media_io.h"

#include <memory>

namespace flowtide {

std::unique_ptr<MediaBackend> makeFFmpegBackend();

} // namespace flowtide
