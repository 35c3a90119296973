// The vertical crop's shapes and settings, as values.
#pragma once

#include "core/speed_keyframe.h"

#include <string_view>

namespace flowtide {

/// The crop shapes that the editor offers.
enum class CropAspectRatio { nineBySixteen, square, fourByFive };

/// The shape's stored name: "9:16", "1:1" or "4:5".
constexpr std::string_view rawValue(CropAspectRatio ratio) {
    switch (ratio) {
    case CropAspectRatio::square:
        return "1:1";
    case CropAspectRatio::fourByFive:
        return "4:5";
    case CropAspectRatio::nineBySixteen:
        break;
    }
    return "9:16";
}

/// Width ÷ height.
constexpr double widthOverHeight(CropAspectRatio ratio) {
    switch (ratio) {
    case CropAspectRatio::square:
        return 1;
    case CropAspectRatio::fourByFive:
        return 0.8;
    case CropAspectRatio::nineBySixteen:
        break;
    }
    return 0.5625;
}

/// Where a crop sits that nothing has moved, as a fraction of its travel.
constexpr double centeredCrop = 0.5;
constexpr double leftmostCrop = 0;  ///< lowest crop centre
constexpr double rightmostCrop = 1; ///< highest crop centre

/// How an export is cropped: full source height, `aspectRatio` × height wide, moving along the framing curve.
struct VerticalCropSettings {
    double aspectRatio = widthOverHeight(CropAspectRatio::nineBySixteen);
    SpeedKeyframes centerKeyframes; ///< `speed` holds the crop centre as a fraction of its travel; empty: stays centred
    double smoothing = 0.5;         ///< glide, 0...1
    friend bool operator==(const VerticalCropSettings&, const VerticalCropSettings&) = default;
};

} // namespace flowtide
