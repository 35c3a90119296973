// The project document as values: one source clip and everything that was edited on it.
#pragma once

#include "core/crop_framing.h"
#include "core/optical_flow_ranges.h"
#include "core/render_choices.h"
#include "core/speed_keyframe.h"
#include "core/subject_tracking_range.h"
#include "core/uuid.h"
#include "core/zoom_block.h"
#include "project/files/url.h"
#include "project/reference_date.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace flowtide {

/// An opaque key to the clip that the operating system made; its Base64 text, kept as it was read.
struct Bookmark {
    std::string base64;
    friend bool operator==(const Bookmark&, const Bookmark&) = default;
};

/// The clip that a project edits.
struct ClipReference {
    Url url; ///< where the clip was last seen
    std::optional<Bookmark> bookmark;
    std::string fingerprint; ///< of the clip's content (clipFingerprint); not empty
    double duration = 0;     ///< seconds, above 0
    friend bool operator==(const ClipReference&, const ClipReference&) = default;
};

constexpr double largestTimelineZoom = 20; ///< magnification

/// Every edit and view setting. Times are source seconds. The limits are those of validate() (project_validation.h).
struct ProjectEdits {
    SpeedKeyframes keyframes;       ///< the speed curve
    double smoothing = 0;           ///< 0...1
    double trimStart = 0;           ///< the kept part
    double trimEnd = 0;             ///< after trimStart
    SpeedKeyframes centerKeyframes; ///< the framing curve; `speed` is a fraction of the crop's travel, 0...1
    double centerSmoothing = 0;     ///< glide, 0...1
    bool cropEnabled = false;
    CropAspectRatio cropAspect = CropAspectRatio::nineBySixteen;
    bool lockCropCenter = false;
    std::vector<ZoomBlock> zoomBlocks; ///< in any order, never overlapping
    FrameInterpolation interpolation = FrameInterpolation::opticalFlow;
    PreviewResolution previewResolution = PreviewResolution::quick;
    bool smartCache = false;            ///< preview ranges render by themselves
    std::optional<double> previewStart; ///< both ends of the preview range, or neither
    std::optional<double> previewEnd;
    double playhead = 0;         ///< fraction of the timeline, 0...1
    double timelineZoom = 1;     ///< magnification, 1...largestTimelineZoom
    double timelineCenter = 0.5; ///< fraction of the timeline, 0...1
    bool loopPreview = false;
    std::optional<std::vector<OpticalFlowRange>> opticalFlowRanges;
    std::optional<Uuid> selectedOpticalFlowRangeID; ///< one of opticalFlowRanges
    std::optional<std::vector<SubjectTrackingRange>> trackedRanges;
    std::optional<std::vector<OpticalFlowRange>> originalFrameRanges; ///< in-between frames switched off
    friend bool operator==(const ProjectEdits&, const ProjectEdits&) = default;
};

/// One project document.
struct FlowtideProject {
    static constexpr std::int64_t currentVersion = 1;

    std::int64_t version = currentVersion;
    Uuid id; ///< also names the project's file
    ReferenceDate savedAt;
    ClipReference source;
    ProjectEdits edits;
    friend bool operator==(const FlowtideProject&, const FlowtideProject&) = default;
};

} // namespace flowtide
