// Sets up the encoders of pictures and sound, says why one refuses, and hands sound to them in their sample format.
#include "media/ffmpeg/encoders.h"

#include "media/ffmpeg/channel_layout.h"
#include "media/ffmpeg/ffmpeg_error.h"
#include "media/ffmpeg/frame_bridge.h"
#include "media/ffmpeg/hdr_metadata.h"
#include "media/flowtide_error.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace flowtide::ffmpeg {

namespace {

FlowtideError videoFailure(const std::string& reason) {
    return FlowtideError::writerFailed("Cannot add video input: " + reason);
}
FlowtideError audioFailure(const std::string& reason) {
    return FlowtideError::writerFailed("Cannot add audio input: " + reason);
}

constexpr int mostChannelsOfAAC = 8; // in the layouts that its encoder writes

// At the source's own bitrate this preset is the knee: faster ones lose quality, slower ones gain next to none.
constexpr const char* encoderPreset = "fast";

// For scrubbing, at 10 Mbit/s in 720p: the next faster preset loses 0.4 to 1.3 dB, the next slower one gains 0.3 to 0.5
// and takes a quarter longer.
constexpr const char* scrubbingPreset = "superfast";

// A frame that is shown by itself is decoded in as many parts at once as there are cores; each part costs a thirtieth
// of a decibel.
constexpr int scrubbingSlices = 4;

// Rate control needs a few seconds to settle; shorter clips overshoot their average unless held more tightly.
constexpr double shortClipSeconds = 5;

const char* encoderName(VideoCodec codec) {
    switch (codec) {
    case VideoCodec::hevc:
        return "libx265";
    case VideoCodec::h264:
        return "libx264";
    default:
        return "prores_ks";
    }
}

const char* proResProfile(VideoCodec codec) {
    switch (codec) {
    case VideoCodec::proRes422Proxy:
        return "proxy";
    case VideoCodec::proRes422LT:
        return "lt";
    case VideoCodec::proRes422HQ:
        return "hq";
    case VideoCodec::proRes4444:
        return "4444";
    default:
        return "standard";
    }
}

void setEncoderOptions(const VideoSettings& settings, const CarriedMetadata& metadata, AVCodecContext& context,
                       Dictionary& options) {
    switch (settings.codec) {
    case VideoCodec::h264:
        if (settings.purpose == EncodingPurpose::scrubbing) {
            options.set("preset", scrubbingPreset);
            options.set("tune", "fastdecode"); // halves the decoding, for about a decibel
            context.gop_size = 1;
            context.slices = scrubbingSlices;
        } else {
            options.set("preset", encoderPreset);
        }
        options.set("profile", settings.layout.bitDepth > 8 ? "high10" : "high");
        if (settings.expectedDuration < shortClipSeconds) options.set("x264-params", "ratetol=0.1");
        break;
    case VideoCodec::hevc:
        options.set("preset", encoderPreset);
        options.set("profile", settings.layout.bitDepth > 8 ? "main10" : "main");
        options.set("x265-params", "log-level=none" + hevcHDRParameters(metadata));
        context.codec_tag = MKTAG('h', 'v', 'c', '1');
        break;
    default:
        options.set("profile", proResProfile(settings.codec));
        options.set("vendor", "apl0");
    }
}

/// Names what the encoders refuse with no more than a number.
void requireEncodable(const VideoSettings& settings) {
    const auto isOdd = [](int side, int chromaShift) { return side % (1 << chromaShift) != 0; };
    // ProRes pads its pictures by itself.
    if (!isProRes(settings.codec) && (isOdd(settings.width, settings.layout.horizontalChromaShift()) ||
                                      isOdd(settings.height, settings.layout.verticalChromaShift())))
        throw videoFailure(fmt::format("{} needs an even width and height, and the picture is {}x{}",
                                       codecLabel(settings.codec), settings.width, settings.height));
    constexpr std::int64_t largest = std::numeric_limits<int>::max();
    for (const MediaTime time : {settings.frameDuration, settings.timeBase.value_or(settings.frameDuration)})
        if (time.numerator > largest || time.denominator > largest)
            throw videoFailure(fmt::format("frames of {}/{} s cannot be timed", time.numerator, time.denominator));
}

AVRational rational(MediaTime time) {
    return {static_cast<int>(time.numerator), static_cast<int>(time.denominator)};
}

std::string audioFormatName(const AudioSettings& settings) {
    return settings.format == linearPCM ? "linear PCM" : "AAC";
}

AVCodecID audioCodec(const AudioSettings& settings) {
    if (settings.format != linearPCM) return AV_CODEC_ID_AAC;
    return settings.bitDepth == 16   ? AV_CODEC_ID_PCM_S16LE
           : settings.bitDepth == 32 ? AV_CODEC_ID_PCM_F32LE
                                     : AV_CODEC_ID_PCM_S24LE;
}

/// Names the sample rate where it is what the encoder refuses.
void requireEncodable(const AVCodecContext& context, const AudioSettings& settings) {
    const int* rates = context.codec->supported_samplerates;
    if (!rates) return;
    while (*rates != 0 && *rates != context.sample_rate)
        ++rates;
    if (*rates == 0)
        throw audioFailure(
            fmt::format("{} has no sample rate of {} Hz", audioFormatName(settings), context.sample_rate));
}

/// Everything but the channels' layout.
CodecContextPtr audioEncoder(const AudioSettings& settings) {
    const AVCodec* codec = avcodec_find_encoder(audioCodec(settings));
    if (!codec) throw audioFailure("there is no encoder for " + audioFormatName(settings));
    auto context = allocated<CodecContextPtr>(avcodec_alloc_context3(codec));
    context->sample_rate = static_cast<int>(std::lround(settings.sampleRate));
    context->sample_fmt = codec->sample_fmts[0];
    context->time_base = {1, context->sample_rate};
    context->bit_rate = settings.format == linearPCM ? 0 : settings.bitRate;
    context->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    requireEncodable(*context, settings);
    return context;
}

} // namespace

CodecContextPtr openVideoEncoder(const VideoSettings& settings, const CarriedMetadata& metadata) {
    const AVCodec* codec = avcodec_find_encoder_by_name(encoderName(settings.codec));
    if (!codec) throw videoFailure(fmt::format("there is no encoder for {}", codecLabel(settings.codec)));
    requireEncodable(settings);
    auto context = allocated<CodecContextPtr>(avcodec_alloc_context3(codec));
    context->width = settings.width;
    context->height = settings.height;
    context->pix_fmt = pixelFormat(settings.layout);
    context->time_base = rational(settings.timeBase.value_or(settings.frameDuration));
    context->framerate = av_inv_q(rational(settings.frameDuration));
    context->color_range = settings.layout.fullRange ? AVCOL_RANGE_JPEG : AVCOL_RANGE_MPEG;
    const ColorCodes color = colorCodes(settings.color);
    context->color_primaries = static_cast<AVColorPrimaries>(color.primaries);
    context->color_trc = static_cast<AVColorTransferCharacteristic>(color.transfer);
    context->colorspace = static_cast<AVColorSpace>(color.matrix);
    context->sample_aspect_ratio = {static_cast<int>(metadata.sampleAspectRatio.numerator),
                                    static_cast<int>(metadata.sampleAspectRatio.denominator)};
    context->bit_rate = settings.averageBitRate.value_or(0);
    context->thread_count = 0; // the encoder's own choice for this machine
    context->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    Dictionary options;
    setEncoderOptions(settings, metadata, *context, options);
    if (const int code = avcodec_open2(context.get(), codec, options.address()); code < 0)
        throw videoFailure(describe(code));
    return context;
}

CodecContextPtr openAudioEncoder(const AudioSettings& settings) {
    int failure = AVERROR(EINVAL); // for layouts that cannot be set
    const auto opened = [&](const auto& setLayout) -> CodecContextPtr {
        CodecContextPtr context = audioEncoder(settings);
        if (!setLayout(context->ch_layout)) return nullptr;
        failure = avcodec_open2(context.get(), context->codec, nullptr);
        return failure < 0 ? nullptr : std::move(context);
    };
    const auto named = [&](AVChannelLayout& layout) {
        return setNamedLayout(layout, settings.channelLayout, settings.channels);
    };
    const auto unnamed = [&](AVChannelLayout& layout) {
        if (settings.format != linearPCM) return setFullBandLayout(layout, settings.channels);
        setUnnamedLayout(layout, settings.channels);
        return true;
    };
    if (CodecContextPtr context = opened(named)) return context;
    // The layout that is usual for so many channels may have a low-frequency one, which would silence what is in it.
    if (CodecContextPtr context = opened(unnamed)) return context;
    if (settings.format != linearPCM && settings.channels > mostChannelsOfAAC)
        throw audioFailure(fmt::format(
            "AAC keeps at most {} channels apart, and the source has {}. A QuickTime movie keeps linear PCM.",
            mostChannelsOfAAC, settings.channels));
    throw audioFailure(
        fmt::format("{} of {} channels: {}", audioFormatName(settings), settings.channels, describe(failure)));
}

FramePtr encoderAudioFrame(const AVCodecContext& encoder, std::span<const float> interleaved) {
    const auto channels = static_cast<std::size_t>(encoder.ch_layout.nb_channels);
    const std::size_t count = interleaved.size() / channels;
    FramePtr frame = makeFrame();
    frame->format = encoder.sample_fmt;
    frame->sample_rate = encoder.sample_rate;
    frame->nb_samples = static_cast<int>(count);
    if (av_channel_layout_copy(&frame->ch_layout, &encoder.ch_layout) < 0 || av_frame_get_buffer(frame.get(), 0) < 0)
        throw std::bad_alloc();

    // Rounded here, to the depth that is stored: the encoders for packed 24 bits cut off.
    const auto quantised = [](float sample, double scale) {
        return std::clamp(std::nearbyint(static_cast<double>(sample) * scale), -scale, scale - 1);
    };
    switch (encoder.sample_fmt) {
    case AV_SAMPLE_FMT_FLTP:
        for (std::size_t channel = 0; channel < channels; ++channel) {
            auto* out = reinterpret_cast<float*>(frame->extended_data[channel]);
            for (std::size_t i = 0; i < count; ++i)
                out[i] = interleaved[i * channels + channel];
        }
        break;
    case AV_SAMPLE_FMT_FLT:
        std::copy(interleaved.begin(), interleaved.end(), reinterpret_cast<float*>(frame->data[0]));
        break;
    case AV_SAMPLE_FMT_S16:
        std::transform(interleaved.begin(), interleaved.end(), reinterpret_cast<std::int16_t*>(frame->data[0]),
                       [&](float sample) { return static_cast<std::int16_t>(quantised(sample, 32'768)); });
        break;
    case AV_SAMPLE_FMT_S32: // the upper 24 bits are written
        std::transform(interleaved.begin(), interleaved.end(), reinterpret_cast<std::int32_t*>(frame->data[0]),
                       [&](float sample) { return static_cast<std::int32_t>(quantised(sample, 8'388'608)) * 256; });
        break;
    default:
        throw audioFailure("the encoder takes samples of an unknown format");
    }
    return frame;
}

} // namespace flowtide::ffmpeg
