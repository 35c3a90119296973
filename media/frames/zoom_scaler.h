// Resampling of a real-valued rectangle of a picture.
#pragma once

#include "media/frames/frame_pool.h"
#include "media/frames/plane_resampler.h"
#include "media/video_frame.h"

#include <array>
#include <optional>

namespace flowtide {

/// Magnifies with a Lanczos filter in the frame's own planes and bit depth, luma and chroma each at its siting: nothing
/// moves by whole pixels and nothing passes through RGB. Keeps what it can reuse from frame to frame; one thread at a
/// time.
class ZoomScaler {
public:
    /// The rectangle (inside the frame, in luma pixels) resampled to `width` × `height`. Throws
    /// FlowtideError::writerFailed.
    VideoFrame scale(const VideoFrame& frame, const PictureRect& rect, int width, int height);

private:
    std::optional<FramePool> output_;
    std::array<PlaneResampler, 2> resamplers_; ///< for luma, and for both chroma planes
};

} // namespace flowtide
