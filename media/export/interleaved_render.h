// Renders the frames and the sound of an export side by side.
#pragma once

#include "core/time_map.h"
#include "media/export/export_plan.h"
#include "media/export/export_request.h"
#include "media/frames/frame_interpolation.h"
#include "media/log.h"
#include "media/media_io.h"
#include "media/sound/audio_decoding.h"

#include <functional>

namespace flowtide {

/// What a render reads from and writes to; all of it outlives the render.
struct RenderInputs {
    const ExportPlan& plan;
    VideoReader& video;
    FrameInterpolating* renderer = nullptr; ///< absent: original frames only
    const AudioData* audio = nullptr;       ///< absent: no sound
    MovieWriter& writer;
};

/// Writes every frame and every sample on two workers of its own while the calling thread waits, reports progress and
/// watches for cancellation. Throws the first failure of either worker, or FlowtideError::exportCancelled.
void renderInterleaved(const RenderInputs& inputs, const LogSink& log, const ProgressHandler& onProgress,
                       const std::function<bool()>& isCancelled);

} // namespace flowtide
