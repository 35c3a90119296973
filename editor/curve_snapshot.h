// One state of the undo history.
#pragma once

#include "core/optical_flow_ranges.h"
#include "core/speed_keyframe.h"
#include "core/subject_tracking_range.h"
#include "core/time.h"
#include "core/uuid.h"
#include "core/zoom_block.h"

#include <optional>
#include <vector>

namespace flowtide {

/// What undo brings back. Everything else of a session is changed without history.
struct CurveSnapshot {
    SpeedKeyframes speed;
    SpeedKeyframes center;
    std::vector<ZoomBlock> zooms;
    double smoothing = 0;
    std::vector<OpticalFlowRange> flowRanges;
    std::optional<Uuid> selectedFlowID;
    std::vector<SubjectTrackingRange> trackedRanges;
    SourceRanges originalFrames;
    friend bool operator==(const CurveSnapshot&, const CurveSnapshot&) = default;
};

/// Whether both play and render the same frames, so that previews made of one serve the other.
inline bool hasSameSpeed(const CurveSnapshot& a, const CurveSnapshot& b) {
    return a.speed == b.speed && a.smoothing == b.smoothing && a.flowRanges == b.flowRanges;
}

} // namespace flowtide
