// What the ways of making frames are called in logs.
#include "media/frames/frame_interpolation.h"

namespace flowtide {

std::string_view displayName(FrameInterpolation interpolation) {
    return interpolation == FrameInterpolation::opticalFlow ? "Optical Flow" : "Original Frames";
}

} // namespace flowtide
