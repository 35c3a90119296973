// The factory of frame interpolators: what the rest of the media layer asks for in-between frames.
#pragma once

#include "media/frames/frame_interpolation.h"

#include <memory>

namespace flowtide {

/// The renderer for a choice, for frames of one size and layout: none for original frames.
std::unique_ptr<FrameInterpolating> makeRenderer(FrameInterpolation interpolation, int width, int height,
                                                 PixelLayout layout);

} // namespace flowtide
