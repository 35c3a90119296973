// The one place that knows the interpolators' types.
#include "media/flow/frame_renderer.h"

#include "media/flow/optical_flow_interpolator.h"

namespace flowtide {

std::unique_ptr<FrameInterpolating> makeRenderer(FrameInterpolation interpolation, int width, int height,
                                                 PixelLayout layout) {
    if (interpolation == FrameInterpolation::nearest) return nullptr;
    return std::make_unique<OpticalFlowInterpolator>(width, height, layout);
}

} // namespace flowtide
