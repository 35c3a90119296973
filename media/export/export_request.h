// What the editor and the command line ask of an export.
#pragma once

#include "core/crop_framing.h"
#include "core/optical_flow_ranges.h"
#include "core/render_choices.h"
#include "core/speed_keyframe.h"
#include "core/time_map.h"
#include "core/zoom_block.h"
#include "media/imported_clip.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>

namespace flowtide {

/// The export that a preview shows a part of.
struct WholeOutput {
    TimeMap timeMap;
    std::int64_t firstFrame = 0; ///< the number that the preview's first frame has in it
};

/// One export, as the editor and the command line ask for it.
struct ExportRequest {
    ImportedClip clip;
    SpeedKeyframes keyframes;               ///< sorted by time
    std::optional<SourceRange> sourceRange; ///< absent: the whole clip
    double smoothing = 0.5;
    FrameInterpolation interpolation = FrameInterpolation::nearest;
    SourceRanges opticalFlowRanges; ///< source seconds, in any order; in-between frames are made inside these alone
    std::optional<VerticalCropSettings> verticalCrop;
    std::optional<ZoomSettings> zoom;
    std::optional<TimeMap> previewTimeMap; ///< used instead of building one; its timing agrees with the whole clip's
    std::optional<WholeOutput> previewOf;  ///< zoom that reaches beyond the preview's map goes by it
    std::optional<PreviewResolution> previewResolution; ///< absent: the clip's own size
    std::filesystem::path outputURL;
};

/// Takes 0...1, called from the exporting thread; must not block. 1 means rendered, verification follows.
using ProgressHandler = std::function<void(double)>;

} // namespace flowtide
