// The planar layout in which a clip is decoded, edited and encoded again.
#pragma once

#include "media/imported_clip.h"
#include "media/video_frame.h"

#include <string>

namespace flowtide {

/// The layout that a clip is decoded to: 4:4:4 and 4:2:2 for ProRes, else 4:2:0, in 8 or 10 bits.
PixelLayout decodePixelFormat(const ImportedClip& clip);
/// The layout's four-character name, such as "420v" or "xf22".
std::string pixelFormatName(PixelLayout layout);

} // namespace flowtide
