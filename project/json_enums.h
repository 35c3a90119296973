// Every value of the enumerations that are stored by name.
#pragma once

#include "project/flowtide_project.h"

#include <array>

namespace flowtide::json {

template <typename Enum>
struct AllCases;

template <>
struct AllCases<SpeedKeyframeRole> {
    static constexpr std::array list{SpeedKeyframeRole::curve, SpeedKeyframeRole::trimStart,
                                     SpeedKeyframeRole::trimEnd};
};
template <>
struct AllCases<CropAspectRatio> {
    static constexpr std::array list{CropAspectRatio::nineBySixteen, CropAspectRatio::square,
                                     CropAspectRatio::fourByFive};
};
template <>
struct AllCases<ZoomMode> {
    static constexpr std::array list{ZoomMode::inOut, ZoomMode::zoomIn, ZoomMode::zoomOut, ZoomMode::constant};
};
template <>
struct AllCases<FrameInterpolation> {
    static constexpr std::array list{FrameInterpolation::opticalFlow, FrameInterpolation::nearest};
};
template <>
struct AllCases<PreviewResolution> {
    static constexpr std::array list{PreviewResolution::quick, PreviewResolution::full};
};

/// A zoom mode's stored name: that of its case.
constexpr std::string_view rawValue(ZoomMode mode) {
    switch (mode) {
    case ZoomMode::zoomIn:
        return "zoomIn";
    case ZoomMode::zoomOut:
        return "zoomOut";
    case ZoomMode::constant:
        return "constant";
    case ZoomMode::inOut:
        break;
    }
    return "inOut";
}

} // namespace flowtide::json
