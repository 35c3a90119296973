// The choice of in-between frames, and whether this build can make them.
#include "media/frame_interpolation.h"

#include "media/flowtide_error.h"

namespace flowtide {

std::string_view displayName(FrameInterpolation interpolation) {
    return interpolation == FrameInterpolation::opticalFlow ? "Optical Flow" : "Original Frames";
}

std::unique_ptr<FrameInterpolating> makeRenderer(FrameInterpolation interpolation, int /*width*/, int /*height*/,
                                                 PixelLayout /*layout*/) {
    if (interpolation == FrameInterpolation::nearest) return nullptr;
    throw FlowtideError::writerFailed("Optical Flow requires a supported Apple silicon Mac running macOS 15.4 or "
                                      "later. Choose Original Frames to export on this Mac.");
}

} // namespace flowtide
