// What one export will do, decided before anything is written.
#pragma once

#include "core/optical_flow_ranges.h"
#include "core/time_map.h"
#include "media/export/export_request.h"
#include "media/export/export_settings.h"
#include "media/export/export_validation.h"
#include "media/frames/crop_zoom_renderer.h"
#include "media/log.h"

#include <optional>

namespace flowtide {

/// The decisions of one export; every field is fixed once planned.
struct ExportPlan {
    TimeMap timeMap;
    VideoSettings video;
    std::optional<AudioSettings> audio;
    ExportExpectation expected; ///< what the written file is verified against
    FramingPlan framing;
    std::int64_t frameCount = 0;
    FrameInterpolation interpolation = FrameInterpolation::nearest;
    SourceRanges opticalFlowRanges;            ///< normalised within the map's source range
    std::optional<double> contextReachSeconds; ///< contextReach() of the source
};

/// Plans an export and logs what was decided. Throws FlowtideError for what cannot be exported, and already here with
/// the sentence of a failed verification for what could not pass it.
ExportPlan planExport(const ExportRequest& request, const LogSink& log);

} // namespace flowtide
