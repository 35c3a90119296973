// Makes the frames between two source frames.
#pragma once

#include "core/render_choices.h"
#include "core/time.h"
#include "media/video_frame.h"

#include <memory>
#include <string_view>

namespace flowtide {

/// "Optical Flow" or "Original Frames".
std::string_view displayName(FrameInterpolation interpolation);

/// Makes the frame at a source time between two decoded frames. Used by one worker at a time.
class FrameInterpolating {
public:
    virtual ~FrameInterpolating() = default;
    /// `previous` is shown at `previousTime`, `next` at `nextTime`, and previousTime < time < nextTime.
    virtual VideoFrame render(const VideoFrame& previous, SourceSeconds previousTime, const VideoFrame& next,
                              SourceSeconds nextTime, SourceSeconds time) = 0;
};

/// The renderer for a choice, for frames of one size and layout: none for original frames.
std::unique_ptr<FrameInterpolating> makeRenderer(FrameInterpolation interpolation, int width, int height,
                                                 PixelLayout layout);

} // namespace flowtide
