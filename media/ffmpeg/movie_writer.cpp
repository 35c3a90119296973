// Encodes pictures and sound on two threads and interleaves them into one file.
#include "media/ffmpeg/movie_writer.h"

#include "media/ffmpeg/encoders.h"
#include "media/ffmpeg/ffmpeg_error.h"
#include "media/ffmpeg/frame_bridge.h"
#include "media/ffmpeg/hdr_metadata.h"
#include "media/ffmpeg/output_stream.h"
#include "media/flowtide_error.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace flowtide::ffmpeg {

namespace {

const char* muxerName(FileType type) {
    return type == FileType::quickTimeMovie ? "mov" : "mp4";
}

// Fine enough for the time bases of every usual frame and sample rate; the muxer's own default cuts up to a
// millisecond of sound.
constexpr int movieTimescale = 60'000;

// Sample frames in a packet of linear PCM.
constexpr std::size_t pcmPacketFrames = 4096;

/// Players read the recording's facts under these keys; cameras write them under the short ones too.
constexpr std::array<std::pair<const char*, const char*>, 4> quickTimeKeys{{
    {"location", "com.apple.quicktime.location.ISO6709"},
    {"make", "com.apple.quicktime.make"},
    {"model", "com.apple.quicktime.model"},
    {"date", "com.apple.quicktime.creationdate"},
}};

void setTags(AVFormatContext& format, const std::map<std::string, std::string>& tags) {
    for (const auto& [key, value] : tags)
        av_dict_set(&format.metadata, key.c_str(), value.c_str(), 0);
    for (const auto& [key, quickTimeKey] : quickTimeKeys)
        if (const auto tag = tags.find(key); tag != tags.end() && !tags.contains(quickTimeKey))
            av_dict_set(&format.metadata, quickTimeKey, tag->second.c_str(), 0);
}

class FFmpegMovieWriter : public MovieWriter {
public:
    FFmpegMovieWriter(OutputFile& output, FileType fileType, const CarriedMetadata& metadata)
        : fileType_(fileType)
        , metadata_(metadata)
        , stream_(output) {
        AVFormatContext* raw = nullptr;
        avformat_alloc_output_context2(&raw, nullptr, muxerName(fileType), nullptr);
        format_ = allocated<OutputPtr>(raw);
        format_->pb = stream_.context();
        format_->flags |= AVFMT_FLAG_CUSTOM_IO;
        setTags(*format_, metadata.tags);
    }

    void addVideo(const VideoSettings& settings) override {
        video_.encoder = openVideoEncoder(settings, metadata_);
        addStream(video_, "Cannot add video input", codecLabel(settings.codec));
        color_ = colorCodes(settings.color);
        // A first frame that starts late is placed in the movie's time scale.
        if (settings.timeBase && settings.timeBase->denominator >= movieTimescale)
            timescale_ = static_cast<int>(settings.timeBase->denominator);
        video_.stream->avg_frame_rate = video_.encoder->framerate;
        video_.stream->sample_aspect_ratio = video_.encoder->sample_aspect_ratio;
        if (settings.displayMatrix != identityDisplayMatrix) {
            auto* data = av_stream_new_side_data(video_.stream, AV_PKT_DATA_DISPLAYMATRIX, sizeof(DisplayMatrix));
            if (!data) throw std::bad_alloc();
            std::memcpy(data, settings.displayMatrix.data(), sizeof(DisplayMatrix));
        }
        attachHDRMetadata(*video_.stream, metadata_);
    }

    void addAudio(const AudioSettings& settings) override {
        audio_.encoder = openAudioEncoder(settings);
        addStream(audio_, "Cannot add audio input", settings.format == linearPCM ? "linear PCM" : "AAC");
    }

    void start() override {
        Dictionary options;
        options.set("movie_timescale", std::to_string(timescale_));
        options.set("movflags", "use_metadata_tags");
        if (fileType_ == FileType::appleM4V) options.set("brand", "M4V ");
        if (const int code = avformat_write_header(format_.get(), options.address()); code < 0 || stream_.failure())
            throw FlowtideError::writerFailed("Failed to start writing: " + reason(code));
    }

    void appendVideo(const VideoFrame& frame, std::int64_t start, std::int64_t length) override {
        const FramePtr picture = exportFrame(frame);
        picture->pts = start;
        lengths_.emplace(start, length);
        picture->color_primaries = static_cast<AVColorPrimaries>(color_.primaries);
        picture->color_trc = static_cast<AVColorTransferCharacteristic>(color_.transfer);
        picture->colorspace = static_cast<AVColorSpace>(color_.matrix);
        if (const int code = encode(video_, picture.get()); code < 0)
            throw FlowtideError::writerFailed(
                fmt::format("Failed to append video frame {}: {}", framesAppended_, reason(code)));
        ++framesAppended_;
    }

    void appendAudio(std::span<const float> samples) override {
        pendingSamples_.insert(pendingSamples_.end(), samples.begin(), samples.end());
        encodePending(packetSamples());
    }

    void finishVideo() override {
        if (const int code = encode(video_, nullptr); code < 0)
            throw FlowtideError::writerFailed("Failed to finish the video track: " + reason(code));
    }

    void finishAudio() override {
        encodePending(1);
        if (const int code = encode(audio_, nullptr); code < 0)
            throw FlowtideError::writerFailed("Failed to finish the audio track: " + reason(code));
    }

    void finish() override {
        const int code = av_write_trailer(format_.get());
        avio_flush(stream_.context());
        if (code < 0 || stream_.failure()) throw FlowtideError::writerFailed(reason(code));
    }

private:
    struct Track {
        CodecContextPtr encoder;
        AVStream* stream = nullptr;
        PacketPtr packet = makePacket();
    };

    void addStream(Track& track, const char* failure, const std::string& format) {
        if (avformat_query_codec(format_->oformat, track.encoder->codec_id, FF_COMPLIANCE_NORMAL) != 1)
            throw FlowtideError::writerFailed(fmt::format("{}: {} cannot be stored in a file of the type {}", failure,
                                                          format, fileTypeName(fileType_)));
        track.stream = avformat_new_stream(format_.get(), nullptr);
        if (!track.stream) throw std::bad_alloc();
        if (const int code = avcodec_parameters_from_context(track.stream->codecpar, track.encoder.get()); code < 0)
            throw FlowtideError::writerFailed(fmt::format("{}: {}", failure, describe(code)));
        track.stream->time_base = track.encoder->time_base;
    }

    /// The file's own failure where there is one: "No space left on device (error 28)" says more than the muxer does.
    std::string reason(int code) {
        const std::scoped_lock guard(muxerLock_);
        if (const auto& failure = stream_.failure())
            return fmt::format("{} (error {})", failure.message(), failure.value());
        return code < 0 ? describe(code) : "Writer stopped";
    }

    /// Encodes a frame (none: flushes) and writes the packets that come out. A negative code on failure.
    int encode(Track& track, const AVFrame* frame) {
        if (const int code = avcodec_send_frame(track.encoder.get(), frame); code < 0) return code;
        for (;;) {
            const int code = avcodec_receive_packet(track.encoder.get(), track.packet.get());
            if (code == AVERROR(EAGAIN) || code == AVERROR_EOF) return 0;
            if (code < 0) return code;
            if (track.encoder->codec_type == AVMEDIA_TYPE_VIDEO) track.packet->duration = takeLength(track.packet->pts);
            track.packet->stream_index = track.stream->index;
            av_packet_rescale_ts(track.packet.get(), track.encoder->time_base, track.stream->time_base);
            const std::scoped_lock guard(muxerLock_);
            if (const int written = av_interleaved_write_frame(format_.get(), track.packet.get()); written < 0)
                return written;
            if (stream_.failure()) return AVERROR(stream_.failure().value());
        }
    }

    /// The length of the frame that starts at `start`; encoders put packets in another order than frames.
    std::int64_t takeLength(std::int64_t start) {
        const auto found = lengths_.extract(start);
        return found ? found.mapped() : 1;
    }

    std::size_t packetSamples() const {
        const auto channels = static_cast<std::size_t>(audio_.encoder->ch_layout.nb_channels);
        const int frameSize = audio_.encoder->frame_size;
        return channels * (frameSize > 0 ? static_cast<std::size_t>(frameSize) : pcmPacketFrames);
    }

    /// Encodes what waits in whole packets; with `least` 1 also the rest.
    void encodePending(std::size_t least) {
        const std::size_t packet = packetSamples();
        const auto channels = audio_.encoder->ch_layout.nb_channels;
        std::size_t begin = 0;
        while (pendingSamples_.size() - begin >= least) {
            const std::size_t size = std::min(packet, pendingSamples_.size() - begin);
            const FramePtr frame = encoderAudioFrame(*audio_.encoder, std::span(pendingSamples_).subspan(begin, size));
            frame->pts = samplesEncoded_;
            if (const int code = encode(audio_, frame.get()); code < 0)
                throw FlowtideError::writerFailed(
                    fmt::format("Failed to append audio chunk at sample {}: {}", samplesEncoded_, reason(code)));
            samplesEncoded_ += static_cast<std::int64_t>(size) / channels;
            begin += size;
        }
        pendingSamples_.erase(pendingSamples_.begin(), pendingSamples_.begin() + static_cast<std::ptrdiff_t>(begin));
    }

    // Fixed once the tracks are added.
    FileType fileType_;
    CarriedMetadata metadata_;
    ColorCodes color_;
    int timescale_ = movieTimescale;

    // Each track belongs to its own worker.
    Track video_;
    std::map<std::int64_t, std::int64_t> lengths_; ///< of the frames in the encoder, by their start
    std::int64_t framesAppended_ = 0;
    Track audio_;
    std::vector<float> pendingSamples_;
    std::int64_t samplesEncoded_ = 0;

    std::mutex muxerLock_; ///< guards the muxer and its output
    OutputStream stream_;
    OutputPtr format_;
};

} // namespace

std::unique_ptr<MovieWriter> createMovieWriter(OutputFile& output, FileType fileType, const CarriedMetadata& metadata) {
    return std::make_unique<FFmpegMovieWriter>(output, fileType, metadata);
}

} // namespace flowtide::ffmpeg
