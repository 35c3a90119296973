// Decoding from anywhere in a movie.
#pragma once

#include "media/cancel_check.h"
#include "media/imported_clip.h"
#include "media/seeking_reader.h"

#include <memory>

namespace flowtide::ffmpeg {

std::unique_ptr<SeekingReader> openSeekingReader(const ImportedClip& clip, PixelLayout layout,
                                                 const CancelCheck& isCancelled);

} // namespace flowtide::ffmpeg
