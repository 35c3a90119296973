// Owning handles for every libav type in use; nobody calls an av_*_free by hand.
#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/dict.h>
#include <libavutil/frame.h>
#include <libswresample/swresample.h>
#include <libswscale/swscale.h>
}

#include <memory>
#include <string>

namespace flowtide::ffmpeg {

struct InputDeleter {
    void operator()(AVFormatContext* context) const { avformat_close_input(&context); }
};
using InputPtr = std::unique_ptr<AVFormatContext, InputDeleter>;

struct OutputDeleter {
    void operator()(AVFormatContext* context) const { avformat_free_context(context); }
};
using OutputPtr = std::unique_ptr<AVFormatContext, OutputDeleter>;

struct IOContextDeleter {
    void operator()(AVIOContext* context) const {
        av_freep(&context->buffer);
        avio_context_free(&context);
    }
};
using IOContextPtr = std::unique_ptr<AVIOContext, IOContextDeleter>;

struct CodecContextDeleter {
    void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
};
using CodecContextPtr = std::unique_ptr<AVCodecContext, CodecContextDeleter>;

struct FrameDeleter {
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
};
using FramePtr = std::unique_ptr<AVFrame, FrameDeleter>;

struct PacketDeleter {
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};
using PacketPtr = std::unique_ptr<AVPacket, PacketDeleter>;

struct ScalerDeleter {
    void operator()(SwsContext* context) const { sws_freeContext(context); }
};
using ScalerPtr = std::unique_ptr<SwsContext, ScalerDeleter>;

struct ResamplerDeleter {
    void operator()(SwrContext* context) const { swr_free(&context); }
};
using ResamplerPtr = std::unique_ptr<SwrContext, ResamplerDeleter>;

/// Throws std::bad_alloc when libav could not allocate.
template <typename Pointer>
Pointer allocated(typename Pointer::pointer raw) {
    if (!raw) throw std::bad_alloc();
    return Pointer(raw);
}

inline FramePtr makeFrame() {
    return allocated<FramePtr>(av_frame_alloc());
}
inline PacketPtr makePacket() {
    return allocated<PacketPtr>(av_packet_alloc());
}

/// Options for the libav calls that take and consume a dictionary.
class Dictionary {
public:
    Dictionary() = default;
    ~Dictionary() { av_dict_free(&entries_); }
    Dictionary(const Dictionary&) = delete;
    Dictionary& operator=(const Dictionary&) = delete;

    void set(const std::string& key, const std::string& value) {
        if (av_dict_set(&entries_, key.c_str(), value.c_str(), 0) < 0) throw std::bad_alloc();
    }
    AVDictionary** address() { return &entries_; }

private:
    AVDictionary* entries_ = nullptr;
};

} // namespace flowtide::ffmpeg
