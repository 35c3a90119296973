// Sequential decoding of a range of a clip's pictures.
#pragma once

#include "media/media_io.h"

#include <memory>

namespace flowtide::ffmpeg {

std::unique_ptr<VideoReader> openVideoReader(const ImportedClip& clip, PixelLayout layout, SourceRange range,
                                             const CancelCheck& isCancelled);

} // namespace flowtide::ffmpeg
