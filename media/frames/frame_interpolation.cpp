// The names of the choices.
#include "media/frames/frame_interpolation.h"

namespace flowtide {

std::string_view displayName(FrameInterpolation interpolation) {
    return interpolation == FrameInterpolation::opticalFlow ? "Optical Flow" : "Original Frames";
}

} // namespace flowtide
