// Writing of sound files.
#pragma once

#include "media/media_io.h"

#include <memory>

namespace flowtide::ffmpeg {

std::unique_ptr<SoundFileWriter> createSoundFileWriter(OutputFile& output, const AudioSettings& settings);

} // namespace flowtide::ffmpeg
