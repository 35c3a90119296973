// Renders the frames and the sound of an export side by side, on workers that never outlive it.
#pragma once

#include "media/export/export_plan.h"
#include "media/export/export_request.h"
#include "media/frames/frame_interpolation.h"
#include "media/log.h"
#include "media/media_io.h"
#include "media/sound/audio_decoding.h"
#include "media/thread_starter.h"

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

/// Writes every frame and every sample on workers of its own while the calling thread waits, reports progress and
/// watches for cancellation. Throws the first failure of a worker, of `onProgress` or of making a thread, or
/// FlowtideError::exportCancelled; the workers have ended by then.
void renderInterleaved(const RenderInputs& inputs, const LogSink& log, const ProgressHandler& onProgress,
                       const std::function<bool()>& isCancelled, const ThreadStarter& start = startThread);

} // namespace flowtide
