// The pictures of an export in output order, each complete: from the schedule to the frame that is encoded.
#pragma once

#include "media/export/export_plan.h"
#include "media/frames/crop_zoom_renderer.h"
#include "media/frames/frame_interpolation.h"
#include "media/frames/held_frames.h"
#include "media/media_io.h"

#include <cstddef>
#include <cstdint>
#include <optional>

namespace flowtide {

/// Walks once through a plan's output frames, from the first on or from another. Everything that it is given outlives
/// it; one thread at a time.
class OutputFrames {
public:
    /// Without a renderer every frame is one of the source's.
    OutputFrames(const ExportPlan& plan, VideoReader& reader, FrameInterpolating* renderer,
                 std::int64_t firstIndex = 0);

    /// The next frame: the source frame shown at its time, or inside the plan's Optical Flow ranges one in between;
    /// then cropped and zoomed. Nothing after the plan's last frame, and when the source has none at all.
    std::optional<VideoFrame> next();
    /// Whether the frame that next() gave last was made, and is none of the source's.
    bool isInBetween() const { return isInBetween_; }

private:
    VideoFrame frameAt(SourceSeconds time);

    const ExportPlan& plan_;
    FrameInterpolating* renderer_;
    HeldFrames held_;
    CropZoomRenderer framing_;
    std::size_t cursor_ = 0;
    std::int64_t index_;
    bool isInBetween_ = false;
};

} // namespace flowtide
