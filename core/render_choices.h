// The user's choices for rendering, as projects store them.
#pragma once

#include <string_view>

namespace flowtide {

/// How stretches are filled that are slower than the source has frames for.
enum class FrameInterpolation { opticalFlow, nearest };

/// The stored name: "optical-flow" or "nearest".
constexpr std::string_view rawValue(FrameInterpolation interpolation) {
    return interpolation == FrameInterpolation::opticalFlow ? "optical-flow" : "nearest";
}

/// How large a preview is drawn.
enum class PreviewResolution { quick, full };

/// The stored name: "720p" or "Full resolution".
constexpr std::string_view rawValue(PreviewResolution resolution) {
    return resolution == PreviewResolution::quick ? "720p" : "Full resolution";
}

} // namespace flowtide
