// Frames each output frame: the crop's window, then the zoom about its focal point.
#pragma once

#include "core/crop_plan.h"
#include "core/time.h"
#include "core/zoom_engine.h"
#include "media/frames/zoom_scaler.h"
#include "media/imported_clip.h"
#include "media/media_time.h"
#include "media/video_frame.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace flowtide {

/// How the frames of an export are cropped and zoomed; fixed once planned.
struct FramingPlan {
    std::optional<CropPlan> crop;
    CropPlan::SourceFrameCrops cropOffsets;   ///< meaningful with a crop
    std::vector<ZoomEngine::ZoomState> zooms; ///< one per output frame; empty without zoom blocks
    MediaTime frameDuration{1, 30};           ///< of the source
    AffineTransform transform;                ///< the source's orientation; focal points are meant as displayed
};

/// A part of a frame as a frame: the same memory, no copy. `left` even, the rectangle inside the frame.
VideoFrame croppedView(const VideoFrame& frame, int left, int width, int height);

/// A focal point of the displayed picture as fractions of the encoded one (`width` × `height` pixels).
ZoomEngine::FocalPoint encodedFocal(ZoomEngine::FocalPoint displayed, const AffineTransform& transform, double width,
                                    double height);

/// Applies a plan frame by frame. Frames that are neither cropped nor zoomed pass through untouched. One thread at a
/// time; the plan must outlive it.
class CropZoomRenderer {
public:
    explicit CropZoomRenderer(const FramingPlan& plan)
        : plan_(plan) {}

    /// `frame` is shown at source time `time` as output frame `index`.
    VideoFrame render(const VideoFrame& frame, SourceSeconds time, std::int64_t index);

private:
    const FramingPlan& plan_;
    ZoomScaler scaler_;
};

} // namespace flowtide
