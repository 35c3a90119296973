// Chooses the layout that a clip is decoded, edited and encoded in.
#include "media/decode_layout.h"

namespace flowtide {

PixelLayout decodePixelFormat(const ImportedClip& clip) {
    PixelLayout layout;
    layout.fullRange = clip.videoIsFullRange();
    if (clip.videoCodecType == VideoCodec::proRes4444) {
        layout.chroma = ChromaSubsampling::yuv444;
        layout.bitDepth = 10;
    } else if (clip.videoCodecType && isProRes(*clip.videoCodecType)) {
        layout.chroma = ChromaSubsampling::yuv422;
        layout.bitDepth = 10;
    } else {
        layout.bitDepth = clip.videoBitDepth() < 10 ? 8 : 10;
    }
    return layout;
}

std::string pixelFormatName(PixelLayout layout) {
    if (layout.bitDepth < 10) return layout.fullRange ? "420f" : "420v";
    const std::string prefix = layout.fullRange ? "xf" : "x4";
    switch (layout.chroma) {
    case ChromaSubsampling::yuv444:
        return prefix + "44";
    case ChromaSubsampling::yuv422:
        return prefix + "22";
    case ChromaSubsampling::yuv420:
        break;
    }
    return prefix + "20";
}

} // namespace flowtide
