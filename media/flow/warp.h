// Draws an in-between frame.
#pragma once

#include "media/flow/phase_field.h"
#include "media/frames/frame_pool.h"
#include "media/video_frame.h"

namespace flowtide::flow {

/// Blends both frames, each moved along the field to the phase, in every plane and in the frames' own bit depth.
VideoFrame warped(const VideoFrame& first, const VideoFrame& second, PhaseField& field, double phase, FramePool& pool,
                  const Kernels& kernels, WorkerPool& workers);

} // namespace flowtide::flow
