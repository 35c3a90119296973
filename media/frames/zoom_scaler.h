// Resampling of a real-valued rectangle of a picture.
#pragma once

#include "media/video_frame.h"

#include <memory>

namespace flowtide {

/// A rectangle of a picture in luma pixels; (0, 0) is the picture's corner, not its first pixel's centre.
struct PictureRect {
    double left = 0;
    double top = 0;
    double width = 0;
    double height = 0;
    friend bool operator==(const PictureRect&, const PictureRect&) = default;
};

/// Magnifies with a Lanczos filter in the frame's own planes and bit depth, luma and chroma each at its siting: nothing
/// moves by whole pixels and nothing passes through RGB. Keeps what it can reuse from frame to frame; one thread at a
/// time.
class ZoomScaler {
public:
    ZoomScaler();
    ~ZoomScaler();
    ZoomScaler(const ZoomScaler&) = delete;
    ZoomScaler& operator=(const ZoomScaler&) = delete;

    /// The rectangle (inside the frame) resampled to `width` × `height`. Throws FlowtideError::writerFailed.
    VideoFrame scale(const VideoFrame& frame, const PictureRect& rect, int width, int height);

private:
    class Implementation;
    std::unique_ptr<Implementation> implementation_;
};

} // namespace flowtide
