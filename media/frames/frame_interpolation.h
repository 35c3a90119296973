// Makes the frames between two source frames.
#pragma once

#include "core/render_choices.h"
#include "core/time.h"
#include "media/video_frame.h"

#include <optional>
#include <string_view>

namespace flowtide {

/// "Optical Flow" or "Original Frames".
std::string_view displayName(FrameInterpolation interpolation);

/// Two consecutive frames of the source and, as context for how the motion between them bends, the source's frames
/// before and after them; absent at its ends and where nobody knows them. Whoever renders the same frame twice, as a
/// preview and in an export, gives the same context.
struct FramePair {
    TimedFrame first;
    TimedFrame second;
    std::optional<TimedFrame> before;
    std::optional<TimedFrame> after;
};

/// Makes the frame at a source time between two decoded frames. Used by one worker at a time.
class FrameInterpolating {
public:
    virtual ~FrameInterpolating() = default;
    /// At or before the first frame's time that frame itself, at or past the second's the second.
    virtual VideoFrame render(const FramePair& pair, SourceSeconds time) = 0;
};

} // namespace flowtide
