// Between our frames and libav's, without copying where the layouts agree.
#pragma once

#include "media/ffmpeg/handles.h"
#include "media/imported_clip.h"
#include "media/video_frame.h"

#include <optional>
#include <string>

namespace flowtide::ffmpeg {

AVPixelFormat pixelFormat(PixelLayout layout);

/// libav's numbers for a clip's colour tags.
struct ColorCodes {
    AVColorPrimaries primaries = AVCOL_PRI_UNSPECIFIED;
    AVColorTransferCharacteristic transfer = AVCOL_TRC_UNSPECIFIED;
    AVColorSpace matrix = AVCOL_SPC_UNSPECIFIED;
};
ColorCodes colorCodes(const std::optional<ColorProperties>& color);
/// The tags that are present; nothing when none is.
std::optional<ColorProperties> colorProperties(const ColorCodes& codes);

/// Turns decoded frames into frames of one layout and size: by reference where they have it already, else through
/// the scaler with explicit ranges.
class FrameImporter {
public:
    FrameImporter(PixelLayout layout, int width, int height);
    /// Takes the frame over. Throws FlowtideError::readerFailed when it cannot be converted.
    VideoFrame import(FramePtr frame);

private:
    VideoFrame convert(const AVFrame& frame);

    PixelLayout layout_;
    int width_;
    int height_;
    ScalerPtr scaler_;
};

/// A libav frame that shares our frame's planes.
FramePtr exportFrame(const VideoFrame& frame);

} // namespace flowtide::ffmpeg
