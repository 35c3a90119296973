// The vertical crop's settings, as values.
#pragma once

#include "core/speed_keyframe.h"

namespace flowtide {

/// How an export is cropped: full source height, `aspectRatio` × height wide, moving along the framing curve.
struct VerticalCropSettings {
    double aspectRatio = 0.5625;    ///< width ÷ height
    SpeedKeyframes centerKeyframes; ///< `speed` holds the crop centre, 0...1 of the travel; empty: stays centred
    double smoothing = 0.5;         ///< glide, 0...1
    friend bool operator==(const VerticalCropSettings&, const VerticalCropSettings&) = default;
};

} // namespace flowtide
