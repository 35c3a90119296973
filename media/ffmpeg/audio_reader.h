// Sequential decoding of a range of a clip's sound.
#pragma once

#include "media/media_io.h"

#include <memory>

namespace flowtide::ffmpeg {

std::unique_ptr<AudioReader> openAudioReader(const ImportedClip& clip, SourceRange range,
                                             const CancelCheck& isCancelled);

} // namespace flowtide::ffmpeg
