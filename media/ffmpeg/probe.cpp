// From a movie's streams to the descriptions of its tracks.
#include "media/ffmpeg/probe.h"

#include "media/ffmpeg/channel_layout.h"
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

/// The track's time base, end and rate and, where it has one, its constant interval.
void readTiming(const std::filesystem::path& path, AVStream& stream, VideoTrack& track) {
    const auto interval = [&](std::int64_t ticks) -> std::optional<MediaTime> {
        if (ticks <= 0 || ticks > std::numeric_limits<std::int32_t>::max()) return std::nullopt;
        return MediaTime::reduced(ticks * stream.time_base.num, stream.time_base.den);
    };
    track.timeBase = MediaTime::reduced(stream.time_base.num, stream.time_base.den);
    if (const auto span = spanOf(stream)) track.end = span->end;
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

/// Shallow RGB and black-and-white pictures are decoded to the eight bits of any other.
constexpr std::int64_t fewestBits = 8;

std::optional<ChromaSubsampling> chromaOf(const AVPixFmtDescriptor& format) {
    if (format.nb_components < 3) return std::nullopt;
    if (format.log2_chroma_w == 0 && format.log2_chroma_h == 0) return ChromaSubsampling::yuv444;
    if (format.log2_chroma_w == 1 && format.log2_chroma_h == 0) return ChromaSubsampling::yuv422;
    if (format.log2_chroma_w == 1 && format.log2_chroma_h == 1) return ChromaSubsampling::yuv420;
    return std::nullopt;
}

void readPixelFormat(const AVCodecParameters& parameters, VideoTrack& track) {
    const auto format = static_cast<AVPixelFormat>(parameters.format);
    track.isFullRange = codeIn(parameters.color_range) == AVCOL_RANGE_JPEG || format == AV_PIX_FMT_YUVJ420P ||
                        format == AV_PIX_FMT_YUVJ422P || format == AV_PIX_FMT_YUVJ444P;
    const AVPixFmtDescriptor* descriptor = av_pix_fmt_desc_get(format);
    if (!descriptor) {
        if (parameters.bits_per_raw_sample > 0) track.bitDepth = parameters.bits_per_raw_sample;
        return;
    }
    track.bitDepth = std::max<std::int64_t>(descriptor->comp[0].depth, fewestBits);
    track.hasAlpha = (descriptor->flags & AV_PIX_FMT_FLAG_ALPHA) != 0;
    track.isRGB = (descriptor->flags & (AV_PIX_FMT_FLAG_RGB | AV_PIX_FMT_FLAG_PAL)) != 0;
    track.chroma = track.isRGB ? ChromaSubsampling::yuv444 : chromaOf(*descriptor);
    if (!track.isRGB) return;
    // The scaler makes them BT.709 video range, whatever the picture's size; see FrameImporter.
    track.isFullRange = false;
    const ColorProperties tags = track.colorProperties.value_or(ColorProperties{});
    track.colorProperties = ColorProperties{tags.primaries.value_or("bt709"), tags.transferFunction.value_or("bt709"),
                                            std::string("bt709")};
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

    readPixelFormat(parameters, track);
    track.isInterlaced = parameters.field_order != AV_FIELD_UNKNOWN && parameters.field_order != AV_FIELD_PROGRESSIVE;
    track.hasDolbyVision = av_stream_get_side_data(&stream, AV_PKT_DATA_DOVI_CONF, nullptr) != nullptr;

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

/// Linear PCM goes by a dozen four-character codes; what it is shows in the codec. The logarithmic codes and the disc's
/// own packing stand among them and are none.
bool isLinearPCM(AVCodecID codec) {
    if (codec < AV_CODEC_ID_FIRST_AUDIO || codec >= AV_CODEC_ID_ADPCM_IMA_QT) return false;
    if (codec == AV_CODEC_ID_PCM_MULAW || codec == AV_CODEC_ID_PCM_ALAW || codec == AV_CODEC_ID_PCM_VIDC) return false;
    return av_get_exact_bits_per_sample(codec) > 0;
}

AudioTrack audioTrack(const AVStream& stream) {
    const AVCodecParameters& parameters = *stream.codecpar;
    AudioTrack track;
    track.sampleRate = parameters.sample_rate;
    track.channelCount = parameters.ch_layout.nb_channels;
    track.estimatedDataRate = positiveRate(parameters.bit_rate);
    if (isLinearPCM(parameters.codec_id)) {
        track.formatID = linearPCM;
        track.bitDepth = av_get_exact_bits_per_sample(parameters.codec_id);
    } else if (parameters.codec_id == AV_CODEC_ID_AAC) {
        track.formatID = aac;
    } else {
        track.formatID = codeOf(parameters);
        const AVCodecDescriptor* codec = avcodec_descriptor_get(parameters.codec_id);
        track.isLosslesslyCompressed =
            codec && (codec->props & AV_CODEC_PROP_LOSSLESS) && !(codec->props & AV_CODEC_PROP_LOSSY);
    }
    track.channelLayout = channelLayoutName(parameters.ch_layout);
    return track;
}

UncarriedStream::Kind kindOf(const AVStream& stream) {
    using Kind = UncarriedStream::Kind;
    switch (stream.codecpar->codec_type) {
    case AVMEDIA_TYPE_VIDEO:
        return (stream.disposition & AV_DISPOSITION_ATTACHED_PIC) ? Kind::coverPicture : Kind::video;
    case AVMEDIA_TYPE_AUDIO:
        return Kind::sound;
    case AVMEDIA_TYPE_SUBTITLE:
        return Kind::subtitles;
    default:
        return stream.codecpar->codec_tag == MKTAG('t', 'm', 'c', 'd') ? Kind::timecode : Kind::data;
    }
}

std::vector<UncarriedStream> uncarriedStreams(const MovieInput& movie) {
    std::vector<UncarriedStream> uncarried;
    for (unsigned i = 0; i < movie.format->nb_streams; ++i) {
        const AVStream* stream = movie.format->streams[i];
        // The titles of chapters come as a stream of their own.
        const bool isChapterText = stream->codecpar->codec_id == AV_CODEC_ID_BIN_DATA && movie.format->nb_chapters > 0;
        if (stream != movie.video && stream != movie.audio && !isChapterText)
            uncarried.push_back({kindOf(*stream), codeOf(*stream->codecpar)});
    }
    if (movie.format->nb_chapters > 0) uncarried.push_back({UncarriedStream::Kind::chapters, std::nullopt});
    return uncarried;
}

void readTags(const AVFormatContext& format, CarriedMetadata& metadata) {
    // What describes the file itself, not the recording.
    constexpr std::array fileTags{"major_brand", "minor_version", "compatible_brands", "encoder"};
    const AVDictionaryEntry* entry = nullptr;
    while ((entry = av_dict_get(format.metadata, "", entry, AV_DICT_IGNORE_SUFFIX)))
        if (std::find(fileTags.begin(), fileTags.end(), std::string_view(entry->key)) == fileTags.end())
            metadata.tags[entry->key] = entry->value;
}

/// Throws for tracks whose samples are encrypted: they decode to noise, or to nothing.
void refuseEncrypted(const std::filesystem::path& path, const MovieInput& movie) {
    const auto refuse = [&](const AVStream& stream) {
        throw FlowtideError::readerFailed(
            fmt::format("{} could not be read: its {} track is encrypted.", path.filename().string(),
                        stream.codecpar->codec_type == AVMEDIA_TYPE_VIDEO ? "video" : "sound"));
    };
    for (const AVStream* stream : {movie.video, movie.audio}) {
        if (!stream) continue;
        const std::uint32_t tag = stream->codecpar->codec_tag;
        if (tag == MKTAG('e', 'n', 'c', 'v') || tag == MKTAG('e', 'n', 'c', 'a')) refuse(*stream);
        if (av_stream_get_side_data(stream, AV_PKT_DATA_ENCRYPTION_INIT_INFO, nullptr)) refuse(*stream);
    }
    // Where the container names the codec behind the encryption, only the samples tell. Tracks of a playable file lie
    // side by side; the limit is for those that don't.
    constexpr int mostPackets = 1000;
    const PacketPtr packet = makePacket();
    bool videoSeen = !movie.video;
    bool audioSeen = !movie.audio;
    for (int i = 0; i < mostPackets && !(videoSeen && audioSeen); ++i) {
        if (av_read_frame(movie.format.get(), packet.get()) < 0) return;
        const bool isVideo = movie.video && packet->stream_index == movie.video->index;
        const bool isAudio = movie.audio && packet->stream_index == movie.audio->index;
        if ((isVideo || isAudio) && av_packet_get_side_data(packet.get(), AV_PKT_DATA_ENCRYPTION_INFO, nullptr))
            refuse(isVideo ? *movie.video : *movie.audio);
        videoSeen = videoSeen || isVideo;
        audioSeen = audioSeen || isAudio;
        av_packet_unref(packet.get());
    }
}

/// HDR10 is PQ; what its pictures carry beside themselves is looked for nowhere else.
bool mayCarryHDR(const VideoTrack& track) {
    return track.colorProperties && track.colorProperties->transferFunction == "smpte2084";
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

    refuseEncrypted(path, movie);

    ProbedMedia media;
    if (movie.video) {
        media.video = videoTrack(path, *movie.video, containerColor);
        readPictureMetadata(*movie.video, media.metadata);
        if (mayCarryHDR(*media.video)) readHDRMetadataOfFirstPicture(path, *media.video, media.metadata);
    }
    if (movie.audio) media.audio = audioTrack(*movie.audio);
    for (const AVStream* stream : {movie.video, movie.audio})
        if (const auto span = stream ? spanOf(*stream) : std::nullopt)
            media.duration = std::max(media.duration, span->end);
    if (media.duration <= 0 && movie.format->duration > 0)
        media.duration = secondsOf(movie.format->duration, AVRational{1, AV_TIME_BASE});
    media.uncarriedStreams = uncarriedStreams(movie);
    readTags(*movie.format, media.metadata);
    return media;
}

} // namespace flowtide::ffmpeg
