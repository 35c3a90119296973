// Drawing of an in-between frame from both frames and the flow at its phase.
#pragma once

#include "media/flow/phase_field.h"
#include "media/frames/frame_pool.h"
#include "media/video_frame.h"

namespace flowtide::flow {

/// Backward warping of both frames along the field to the phase, and their blend, in every plane and in the frames' own
/// bit depth.
VideoFrame warped(const VideoFrame& first, const VideoFrame& second, PhaseField& field, double phase, FramePool& pool,
                  const Kernels& kernels, WorkerPool& workers);

} // namespace flowtide::flow
