// How the frames between two source frames are made.
#pragma once

#include <string_view>

namespace flowtide {

enum class FrameInterpolation { opticalFlow, nearest };

/// The stored name: "optical-flow" or "nearest".
constexpr std::string_view rawValue(FrameInterpolation interpolation) {
    return interpolation == FrameInterpolation::opticalFlow ? "optical-flow" : "nearest";
}

} // namespace flowtide
