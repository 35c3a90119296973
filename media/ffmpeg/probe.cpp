// The probe.
#include "media/ffmpeg/probe.h"

#include "media/ffmpeg/ffmpeg_error.h"
#include "media/ffmpeg/frame_bridge.h"
#include "media/ffmpeg/hdr_metadata.h"
#include "media/ffmpeg/movie_input.h"
#include "media/ffmpeg/sample_times.h"
#include "media/flowtide_error.h"

extern "C" {
#include <libavutil/display.h>
#include <libavutil/pixdesc.h>
}

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <limits>

namespace flowtide::ffmpeg {

namespace {

constexpr std::size_t displayMatrixBytes = sizeof(DisplayMatrix);

/// libav keeps the first character in the lowest byte.
std::optional<FourCC> codeOf(const AVCodecParameters& parameters) {
    const std::uint32_t tag = parameters.codec_tag;
    if (tag == 0) return std::nullopt;
    return (tag >> 24) | ((tag >> 8) & 0xFF00) | ((tag << 8) & 0xFF0000) | (tag << 24);
}

ColorCodes colorOf(const AVCodecParameters& parameters) {
    return {codeIn(parameters.color_primaries), codeIn(parameters.color_trc), codeIn(parameters.color_space)};
}

/// The container's tags where it has them, else what the stream itself says.
ColorCodes mergedColor(const ColorCodes& container, const ColorCodes& stream) {
    return {container.primaries != AVCOL_PRI_UNSPECIFIED ? container.primaries : stream.primaries,
            container.transfer != AVCOL_TRC_UNSPECIFIED ? container.transfer : stream.transfer,
            container.matrix != AVCOL_SPC_UNSPECIFIED ? container.matrix : stream.matrix};
}

/// The track's rate and, where it has one, its constant interval.
void readTiming(const std::filesystem::path& path, AVStream& stream, VideoTrack& track) {
    const auto interval = [&](std::int64_t ticks) -> std::optional<MediaTime> {
        if (ticks <= 0 || ticks > std::numeric_limits<std::int32_t>::max()) return std::nullopt;
        return MediaTime::reduced(ticks * stream.time_base.num, stream.time_base.den);
    };
    if (stream.avg_frame_rate.den != 0) track.nominalFrameRate = av_q2d(stream.avg_frame_rate);
    const SampleTimes times = sampleTimes(path, stream);
    if (times.size() == 1) {
        track.constantSampleInterval = interval(stream.duration); // all that a single sample has
    } else if (const auto nominal = nominalSampleInterval(times)) {
        track.nominalFrameRate = stream.time_base.den / (stream.time_base.num * *nominal);
        if (const auto constant = constantSampleInterval(times)) track.constantSampleInterval = interval(*constant);
    }
}

std::optional<double> positiveRate(std::int64_t bitRate) {
    return bitRate > 0 ? std::optional<double>(static_cast<double>(bitRate)) : std::nullopt;
}

VideoTrack videoTrack(const std::filesystem::path& path, AVStream& stream, const ColorCodes& containerColor) {
    const AVCodecParameters& parameters = *stream.codecpar;
    VideoTrack track;
    readTiming(path, stream, track);
    track.encodedWidth = parameters.width;
    track.encodedHeight = parameters.height;
    track.codec = codeOf(parameters);
    track.estimatedDataRate = positiveRate(parameters.bit_rate);
    track.colorProperties = colorProperties(mergedColor(containerColor, colorOf(parameters)));

    const auto format = static_cast<AVPixelFormat>(parameters.format);
    track.isFullRange = codeIn(parameters.color_range) == AVCOL_RANGE_JPEG || format == AV_PIX_FMT_YUVJ420P ||
                        format == AV_PIX_FMT_YUVJ422P || format == AV_PIX_FMT_YUVJ444P;
    if (const AVPixFmtDescriptor* descriptor = av_pix_fmt_desc_get(format)) {
        track.bitDepth = descriptor->comp[0].depth;
        track.hasAlpha = (descriptor->flags & AV_PIX_FMT_FLAG_ALPHA) != 0;
    } else if (parameters.bits_per_raw_sample > 0) {
        track.bitDepth = parameters.bits_per_raw_sample;
    }

    std::size_t size = 0;
    if (const auto* matrix =
            reinterpret_cast<const std::int32_t*>(av_stream_get_side_data(&stream, AV_PKT_DATA_DISPLAYMATRIX, &size));
        matrix && size >= displayMatrixBytes)
        std::copy_n(matrix, track.displayMatrix.size(), track.displayMatrix.begin());
    return track;
}

void readPictureMetadata(AVStream& stream, CarriedMetadata& metadata) {
    const AVRational aspect =
        stream.sample_aspect_ratio.num > 0 ? stream.sample_aspect_ratio : stream.codecpar->sample_aspect_ratio;
    if (aspect.num > 0 && aspect.den > 0) metadata.sampleAspectRatio = MediaTime::reduced(aspect.num, aspect.den);
    readHDRMetadata(stream, metadata);
}

AudioTrack audioTrack(const AVStream& stream) {
    const AVCodecParameters& parameters = *stream.codecpar;
    AudioTrack track;
    track.sampleRate = parameters.sample_rate;
    track.channelCount = parameters.ch_layout.nb_channels;
    track.estimatedDataRate = positiveRate(parameters.bit_rate);
    // Linear PCM goes by a dozen four-character codes; what it is shows in the codec.
    if (const int bits = av_get_exact_bits_per_sample(parameters.codec_id);
        bits > 0 && parameters.codec_id >= AV_CODEC_ID_FIRST_AUDIO && parameters.codec_id < AV_CODEC_ID_ADPCM_IMA_QT) {
        track.formatID = linearPCM;
        track.bitDepth = bits;
    } else if (parameters.codec_id == AV_CODEC_ID_AAC) {
        track.formatID = aac;
    } else {
        track.formatID = codeOf(parameters);
    }
    if (parameters.ch_layout.order != AV_CHANNEL_ORDER_UNSPEC) {
        std::array<char, 256> name{};
        if (av_channel_layout_describe(&parameters.ch_layout, name.data(), name.size()) > 0)
            track.channelLayout = name.data();
    }
    return track;
}

void readTags(const AVFormatContext& format, CarriedMetadata& metadata) {
    // What describes the file itself, not the recording.
    constexpr std::array fileTags{"major_brand", "minor_version", "compatible_brands", "encoder"};
    const AVDictionaryEntry* entry = nullptr;
    while ((entry = av_dict_get(format.metadata, "", entry, AV_DICT_IGNORE_SUFFIX)))
        if (std::find(fileTags.begin(), fileTags.end(), std::string_view(entry->key)) == fileTags.end())
            metadata.tags[entry->key] = entry->value;
}

} // namespace

ProbedMedia probeMovie(const std::filesystem::path& path) {
    MovieInput movie = openMovie(path);
    // Analysing the streams replaces container tags that the stream does not repeat.
    const ColorCodes containerColor = movie.video ? colorOf(*movie.video->codecpar) : ColorCodes{};
    for (unsigned i = 0; i < movie.format->nb_streams; ++i)
        if (AVStream* stream = movie.format->streams[i]; stream != movie.video && stream != movie.audio)
            stream->discard = AVDISCARD_ALL;
    if (const int code = avformat_find_stream_info(movie.format.get(), nullptr); code < 0)
        throw FlowtideError::readerFailed(
            fmt::format("{} could not be read: {}", path.filename().string(), describe(code)));

    ProbedMedia media;
    if (movie.video) {
        media.video = videoTrack(path, *movie.video, containerColor);
        readPictureMetadata(*movie.video, media.metadata);
    }
    if (movie.audio) media.audio = audioTrack(*movie.audio);
    for (const AVStream* stream : {movie.video, movie.audio})
        if (const auto span = stream ? spanOf(*stream) : std::nullopt)
            media.duration = std::max(media.duration, span->end);
    if (media.duration <= 0 && movie.format->duration > 0)
        media.duration = secondsOf(movie.format->duration, AVRational{1, AV_TIME_BASE});
    readTags(*movie.format, media.metadata);
    return media;
}

} // namespace flowtide::ffmpeg
