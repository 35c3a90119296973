// A headless export's command line, first as texts, then as a complete job for one clip.
#pragma once

#include "cli/arguments.h"
#include "media/frames/frame_interpolation.h"

#include <filesystem>
#include <optional>
#include <string>

namespace flowtide {

/// What the command line says before the clip is known: options taken, positional arguments read.
struct HeadlessExportArguments {
    std::filesystem::path input;
    std::filesystem::path output;
    std::optional<std::string> curve;
    double smoothing = 0.5;
    std::optional<std::string> trim;
    std::optional<std::string> verticalCrop;
    double verticalSmoothing = 0.5;
    double verticalAspect = 0.5625;
    std::optional<std::string> zoom;
    std::optional<std::string> flowRanges;
    double smoothFrameRate = 30;
    FrameInterpolation interpolation = FrameInterpolation::nearest;
};

/// Everything that an export needs besides the probed clip.
struct HeadlessExportJob {
    std::filesystem::path input;
    std::filesystem::path output;
    SpeedKeyframes keyframes;
    double smoothing = 0.5;
    SourceRange sourceRange;
    FrameInterpolation interpolation = FrameInterpolation::nearest;
    std::optional<SourceRanges> opticalFlowRanges; ///< absent: derived automatically
    double smoothFrameRate = 30;
    std::optional<VerticalCropSettings> verticalCrop;
    std::optional<ZoomSettings> zoom;
};

namespace HeadlessExport {

/// Reads options and positional arguments from a process's whole argument list. Throws FlowtideError.
HeadlessExportArguments parseArguments(Arguments list);

/// Reads the texts against the clip's duration in seconds. Throws FlowtideError.
HeadlessExportJob parseJob(const HeadlessExportArguments& arguments, double duration, const WarningSink& warn);

} // namespace HeadlessExport
} // namespace flowtide
