// In-between frames by motion estimation: the renderer behind "Optical Flow".
#pragma once

#include "media/flow/flow_pair.h"
#include "media/frame_interpolation.h"
#include "media/frame_pool.h"

#include <memory>
#include <optional>
#include <utility>

namespace flowtide {

/// Renders frames between two frames of one layout and size. Frames of the same pair share the motion that was
/// estimated for it. Used by one worker at a time; what it returns depends on its arguments alone.
class OpticalFlowInterpolator : public FrameInterpolating {
public:
    OpticalFlowInterpolator(int width, int height, PixelLayout layout);
    ~OpticalFlowInterpolator() override;

    VideoFrame render(const FramePair& pair, SourceSeconds time) override;

private:
    /// What is known of the last pair.
    struct CachedPair;

    CachedPair& pairOf(const VideoFrame& previous, SourceSeconds previousTime, const VideoFrame& next,
                       SourceSeconds nextTime);

    FramePool pool_;
    std::unique_ptr<CachedPair> lastPair_;
};

} // namespace flowtide
