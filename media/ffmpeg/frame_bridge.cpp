// Converts decoded frames to the clip's layout, and colour tags to and from libav's numbers.
#include "media/ffmpeg/frame_bridge.h"

#include "media/flowtide_error.h"

extern "C" {
#include <libavutil/opt.h>
#include <libavutil/pixdesc.h>
}

#include <utility>

namespace flowtide::ffmpeg {

namespace {

constexpr const char* decodeFailure = "Video decode failed mid-file";

// The old "J" formats are the plain ones with full range said in the format.
AVPixelFormat withoutRange(int format) {
    switch (format) {
    case AV_PIX_FMT_YUVJ420P:
        return AV_PIX_FMT_YUV420P;
    case AV_PIX_FMT_YUVJ422P:
        return AV_PIX_FMT_YUV422P;
    case AV_PIX_FMT_YUVJ444P:
        return AV_PIX_FMT_YUV444P;
    default:
        return static_cast<AVPixelFormat>(format);
    }
}

bool isFullRange(const AVFrame& frame) {
    return withoutRange(frame.format) != frame.format || codeIn(frame.color_range) == AVCOL_RANGE_JPEG;
}

VideoFrame shared(FramePtr frame, PixelLayout layout) {
    VideoFrame result;
    result.layout = layout;
    result.width = frame->width;
    result.height = frame->height;
    for (std::size_t i = 0; i < result.planes.size(); ++i)
        result.planes[i] = {frame->data[i], frame->linesize[i]};
    result.owner = std::shared_ptr<const AVFrame>(frame.release(), FrameDeleter());
    return result;
}

const int* coefficients(const AVFrame& frame) {
    // RGB becomes what the probe says of such a track, in every size.
    const AVPixFmtDescriptor* format = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame.format));
    if (format && (format->flags & (AV_PIX_FMT_FLAG_RGB | AV_PIX_FMT_FLAG_PAL)))
        return sws_getCoefficients(SWS_CS_ITU709);
    const int matrix = codeIn(frame.colorspace);
    const bool known = matrix != AVCOL_SPC_UNSPECIFIED && matrix != AVCOL_SPC_RGB;
    return sws_getCoefficients(known ? matrix : frame.height > 576 ? SWS_CS_ITU709 : SWS_CS_ITU601);
}

/// Where the scaler takes chroma samples to lie across: on the left one of the pixels that they stand for, as codecs
/// have it unless a frame says otherwise, or as it has it of its own accord, in their middle.
constexpr int chromaOnTheLeft = 0;      // in 1/256 of a pixel
constexpr int chromaInTheMiddle = -513; // libswscale's "not set"

int chromaPosition(const AVFrame& frame) {
    const AVPixFmtDescriptor* format = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame.format));
    const int location = codeIn(frame.chroma_location);
    const bool isCentered =
        location == AVCHROMA_LOC_CENTER || location == AVCHROMA_LOC_TOP || location == AVCHROMA_LOC_BOTTOM;
    return isCentered || !format || format->log2_chroma_w == 0 ? chromaInTheMiddle : chromaOnTheLeft;
}

/// A code's standard name; nothing for "unspecified", for 0 (RGB or reserved, which no YCbCr track means) and for
/// numbers that no standard gives.
template <typename Enumeration>
std::optional<std::string> tagName(int code, int codeCount, const char* (*name)(Enumeration)) {
    constexpr int unspecified = 2; // in all three tables
    if (code <= 0 || code == unspecified || code >= codeCount) return std::nullopt;
    const char* text = name(static_cast<Enumeration>(code));
    return text ? std::optional<std::string>(text) : std::nullopt;
}

} // namespace

AVPixelFormat pixelFormat(PixelLayout layout) {
    const bool deep = layout.bitDepth > 8;
    switch (layout.chroma) {
    case ChromaSubsampling::yuv444:
        return deep ? AV_PIX_FMT_YUV444P10LE : AV_PIX_FMT_YUV444P;
    case ChromaSubsampling::yuv422:
        return deep ? AV_PIX_FMT_YUV422P10LE : AV_PIX_FMT_YUV422P;
    case ChromaSubsampling::yuv420:
        break;
    }
    return deep ? AV_PIX_FMT_YUV420P10LE : AV_PIX_FMT_YUV420P;
}

ColorCodes colorCodes(const std::optional<ColorProperties>& color) {
    ColorCodes codes;
    if (!color) return codes;
    const auto code = [](const std::optional<std::string>& name, int (*fromName)(const char*), int unspecified) {
        const int value = name ? fromName(name->c_str()) : unspecified;
        return value < 0 ? unspecified : value;
    };
    codes.primaries = code(color->primaries, av_color_primaries_from_name, AVCOL_PRI_UNSPECIFIED);
    codes.transfer = code(color->transferFunction, av_color_transfer_from_name, AVCOL_TRC_UNSPECIFIED);
    codes.matrix = code(color->matrix, av_color_space_from_name, AVCOL_SPC_UNSPECIFIED);
    return codes;
}

std::optional<ColorProperties> colorProperties(const ColorCodes& codes) {
    ColorProperties tags;
    tags.primaries = tagName(codes.primaries, AVCOL_PRI_NB, av_color_primaries_name);
    tags.transferFunction = tagName(codes.transfer, AVCOL_TRC_NB, av_color_transfer_name);
    tags.matrix = tagName(codes.matrix, AVCOL_SPC_NB, av_color_space_name);
    if (!tags.primaries && !tags.transferFunction && !tags.matrix) return std::nullopt;
    return tags;
}

FrameImporter::FrameImporter(PixelLayout layout, int width, int height)
    : layout_(layout)
    , width_(width)
    , height_(height) {}

VideoFrame FrameImporter::import(FramePtr frame) {
    if (withoutRange(frame->format) == pixelFormat(layout_) && frame->width == width_ && frame->height == height_)
        return shared(std::move(frame), layout_);
    return convert(*frame);
}

VideoFrame FrameImporter::convert(const AVFrame& frame) {
    FramePtr converted = makeFrame();
    converted->format = pixelFormat(layout_);
    converted->width = width_;
    converted->height = height_;
    if (av_frame_get_buffer(converted.get(), 0) < 0) throw std::bad_alloc();

    if (const int position = chromaPosition(frame); !scaler_ || position != scalersChromaPosition_) {
        // The positions outlast what sws_getCachedContext makes of it.
        scaler_.reset(sws_alloc_context());
        scalersChromaPosition_ = position;
        if (!scaler_ || av_opt_set_int(scaler_.get(), "src_h_chr_pos", position, 0) < 0 ||
            av_opt_set_int(scaler_.get(), "dst_h_chr_pos", chromaOnTheLeft, 0) < 0)
            throw std::bad_alloc();
    }
    // With the chroma of every pixel: else RGB's is averaged in pairs first.
    constexpr int flags = SWS_BICUBIC | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT | SWS_FULL_CHR_H_INP;
    scaler_.reset(sws_getCachedContext(scaler_.release(), frame.width, frame.height, withoutRange(frame.format), width_,
                                       height_, pixelFormat(layout_), flags, nullptr, nullptr, nullptr));
    if (!scaler_) throw FlowtideError::readerFailed(decodeFailure);
    constexpr int neutral = 1 << 16; // 1.0 in 16.16: contrast and saturation untouched
    sws_setColorspaceDetails(scaler_.get(), coefficients(frame), isFullRange(frame) ? 1 : 0, coefficients(frame),
                             layout_.fullRange ? 1 : 0, 0, neutral, neutral);
    if (sws_scale(scaler_.get(), frame.data, frame.linesize, 0, frame.height, converted->data, converted->linesize) < 0)
        throw FlowtideError::readerFailed(decodeFailure);
    return shared(std::move(converted), layout_);
}

FramePtr exportFrame(const VideoFrame& frame) {
    FramePtr result = makeFrame();
    result->format = pixelFormat(frame.layout);
    result->width = frame.width;
    result->height = frame.height;
    result->color_range = frame.layout.fullRange ? AVCOL_RANGE_JPEG : AVCOL_RANGE_MPEG;
    for (std::size_t i = 0; i < frame.planes.size(); ++i) {
        // libav's frames have no const; encoders only read.
        result->data[i] = const_cast<std::uint8_t*>(frame.planes[i].data);
        result->linesize[i] = static_cast<int>(frame.planes[i].stride);
    }
    auto share = std::make_unique<std::shared_ptr<const void>>(frame.owner);
    const auto drop = [](void* opaque, std::uint8_t*) {
        const std::unique_ptr<std::shared_ptr<const void>> taken(static_cast<std::shared_ptr<const void>*>(opaque));
    };
    result->buf[0] = av_buffer_create(result->data[0], 1, drop, share.get(), AV_BUFFER_FLAG_READONLY);
    if (!result->buf[0]) throw std::bad_alloc();
    static_cast<void>(share.release()); // the buffer's drop() owns it now
    return result;
}

} // namespace flowtide::ffmpeg
