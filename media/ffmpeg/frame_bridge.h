// Between our frames and libav's, without copying where the layouts agree.
#pragma once

#include "media/ffmpeg/handles.h"
#include "media/imported_clip.h"
#include "media/video_frame.h"

#include <cstring>
#include <optional>
#include <string>

namespace flowtide::ffmpeg {

AVPixelFormat pixelFormat(PixelLayout layout);

/// libav's numbers for a clip's colour tags.
struct ColorCodes {
    int primaries = AVCOL_PRI_UNSPECIFIED;
    int transfer = AVCOL_TRC_UNSPECIFIED;
    int matrix = AVCOL_SPC_UNSPECIFIED;
};

/// The number in a field of one of libav's enumerations. Decoders copy whatever byte a file has there, so that reading
/// it as the enumeration would be undefined.
template <typename Enumeration>
int codeIn(const Enumeration& field) {
    static_assert(sizeof(Enumeration) == sizeof(int));
    int code = 0;
    std::memcpy(&code, &field, sizeof code);
    return code;
}
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
    int scalersChromaPosition_ = 0;
};

/// A libav frame that shares our frame's planes.
FramePtr exportFrame(const VideoFrame& frame);

} // namespace flowtide::ffmpeg
