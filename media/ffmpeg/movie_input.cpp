// Opens movies and their decoders, and reads what the container's index says.
#include "media/ffmpeg/movie_input.h"

#include "media/ffmpeg/ffmpeg_error.h"
#include "media/flowtide_error.h"

#include <fmt/format.h>

#include <algorithm>

namespace flowtide::ffmpeg {

namespace {

constexpr const char* movieFormats = "mov,mp4,m4a,3gp,3g2,mj2";

// In a row, while draining: more than libavcodec has threads of its own accord, each of which holds one frame. Keeps a
// decoder that fails for ever from holding us.
constexpr int mostDrainFailures = 64;

MovieInput openFile(const std::filesystem::path& path, const char* formats) {
    Dictionary options;
    options.set("format_whitelist", formats);
    options.set("protocol_whitelist", "file");
    AVFormatContext* raw = nullptr;
    // The prefix keeps a name with a colon from being taken for a network address.
    const std::string url = "file:" + path.string();
    if (const int code = avformat_open_input(&raw, url.c_str(), nullptr, options.address()); code < 0)
        throw FlowtideError::readerFailed(
            fmt::format("{} could not be opened: {}", path.filename().string(), describe(code)));

    MovieInput movie;
    movie.format.reset(raw);
    for (unsigned i = 0; i < raw->nb_streams; ++i) {
        AVStream* stream = raw->streams[i];
        const AVCodecParameters& parameters = *stream->codecpar;
        if (parameters.codec_type == AVMEDIA_TYPE_VIDEO && !movie.video &&
            !(stream->disposition & AV_DISPOSITION_ATTACHED_PIC))
            movie.video = stream;
        if (parameters.codec_type == AVMEDIA_TYPE_AUDIO) {
            const bool better = movie.audio && !avcodec_find_decoder(movie.audio->codecpar->codec_id) &&
                                avcodec_find_decoder(parameters.codec_id);
            if (!movie.audio || better) movie.audio = stream;
        }
    }
    return movie;
}

} // namespace

MovieInput openMovie(const std::filesystem::path& path) {
    return openFile(path, movieFormats);
}

MovieInput openSound(const std::filesystem::path& path) {
    return openFile(path, path.extension() == ".caf" ? "caf" : movieFormats);
}

void deliverOnly(AVFormatContext& format, const AVStream& stream) {
    for (unsigned i = 0; i < format.nb_streams; ++i)
        if (format.streams[i] != &stream) format.streams[i]->discard = AVDISCARD_ALL;
}

double secondsOf(std::int64_t timestamp, AVRational timeBase) {
    return static_cast<double>(timestamp) * timeBase.num / timeBase.den;
}

std::optional<StreamSpan> spanOf(const AVStream& stream) {
    if (stream.duration == AV_NOPTS_VALUE || stream.duration <= 0) return std::nullopt;
    const std::int64_t start = stream.start_time == AV_NOPTS_VALUE ? 0 : stream.start_time;
    const double startSeconds = secondsOf(start, stream.time_base);
    return StreamSpan{startSeconds, startSeconds + secondsOf(stream.duration, stream.time_base)};
}

std::optional<std::int64_t> lastIndexedDecodeTime(AVStream& stream) {
    const int count = avformat_index_get_entries_count(&stream);
    if (count <= 0) return std::nullopt;
    return avformat_index_get_entry(&stream, count - 1)->timestamp;
}

bool reachesIndexEnd(const AVPacket& packet, const std::optional<std::int64_t>& lastIndexed) {
    if (!lastIndexed) return true;
    if (packet.dts == AV_NOPTS_VALUE) return false;
    // Packets of linear PCM can hold several samples of the index.
    const std::int64_t last = packet.dts + std::max<std::int64_t>(packet.duration - 1, 0);
    if (last < *lastIndexed) return false;
    // Times of what an edit list hides run on into later edits: only the very sample counts.
    return !(packet.flags & AV_PKT_FLAG_DISCARD) || packet.dts <= *lastIndexed;
}

CodecContextPtr openDecoder(const AVStream& stream, const char* failure, DecoderThreads threads) {
    const AVCodec* codec = avcodec_find_decoder(stream.codecpar->codec_id);
    if (!codec) throw FlowtideError::readerFailed(failure);
    auto context = allocated<CodecContextPtr>(avcodec_alloc_context3(codec));
    context->pkt_timebase = stream.time_base;
    context->thread_count = 0; // one per core
    // Else columns that are cropped from the left stay in the picture where that keeps it aligned.
    context->flags |= AV_CODEC_FLAG_UNALIGNED;
    context->thread_type = threads == DecoderThreads::lowDelay ? FF_THREAD_SLICE : FF_THREAD_FRAME | FF_THREAD_SLICE;
    if (avcodec_parameters_to_context(context.get(), stream.codecpar) < 0 ||
        avcodec_open2(context.get(), codec, nullptr) < 0)
        throw FlowtideError::readerFailed(failure);
    return context;
}

Received receiveFrame(AVCodecContext& decoder, AVFrame& frame, bool isDraining, const std::function<void()>& onDamage) {
    for (int failures = 0; failures < mostDrainFailures; ++failures) {
        const int received = avcodec_receive_frame(&decoder, &frame);
        if (received >= 0) return Received::frame;
        if (received == AVERROR_EOF) return Received::end;
        if (received == AVERROR(EAGAIN)) return Received::needsPacket;
        onDamage();
        if (!isDraining) return Received::needsPacket;
    }
    return Received::end;
}

} // namespace flowtide::ffmpeg
