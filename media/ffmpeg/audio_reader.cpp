// Decodes a range of sound into blocks at their times, and notices damage and missing ends.
#include "media/ffmpeg/audio_reader.h"

#include "media/ffmpeg/ffmpeg_error.h"
#include "media/ffmpeg/movie_input.h"
#include "media/flowtide_error.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace flowtide::ffmpeg {

namespace {

constexpr const char* startFailure = "Failed to read audio";

// Blocks of transform codecs overlap their neighbours, so the first ones after a seek are wrong; half a second is more
// than two blocks of the longest kind.
constexpr double prerollSeconds = 0.5;

/// ISO PCM tracks say their sample size and byte order in a box that libavformat reads from version 60 on; before, it
/// takes 24-bit sound for 16-bit noise.
bool isMisreadPCM(const AVCodecParameters& parameters) {
    const bool isoPCM =
        parameters.codec_tag == MKTAG('i', 'p', 'c', 'm') || parameters.codec_tag == MKTAG('f', 'p', 'c', 'm');
    return isoPCM && avformat_version() < AV_VERSION_INT(60, 0, 0);
}

class FFmpegAudioReader : public AudioReader {
public:
    FFmpegAudioReader(const ImportedClip& clip, SourceRange range, CancelCheck isCancelled)
        : movie_(openSound(clip.url))
        , sampleRate_(clip.audio ? static_cast<int>(std::lround(clip.audio->sampleRate)) : 0)
        , channels_(clip.audio ? static_cast<int>(clip.audio->channelCount) : 0)
        , range_(range)
        , isCancelled_(std::move(isCancelled))
        , packet_(makePacket())
        , frame_(makeFrame()) {
        if (!movie_.audio) throw FlowtideError::noAudioTrack();
        if (isMisreadPCM(*movie_.audio->codecpar)) throw FlowtideError::readerFailed(startFailure);
        deliverOnly(*movie_.format, *movie_.audio);
        decoder_ = openDecoder(*movie_.audio, startFailure);
        lastIndexed_ = lastIndexedDecodeTime(*movie_.audio);
        reachedIndexEnd_ = !lastIndexed_;
        if (const auto span = spanOf(*movie_.audio)) trackEnd_ = span->end;
        if (range.lower > prerollSeconds) {
            const AVRational base = movie_.audio->time_base;
            const double target = (range.lower - prerollSeconds) * base.den / base.num;
            av_seek_frame(movie_.format.get(), movie_.audio->index, static_cast<std::int64_t>(std::floor(target)),
                          AVSEEK_FLAG_BACKWARD);
        }
    }

    std::optional<AudioBlock> next() override {
        for (;;) {
            const Received received = receiveFrame(*decoder_, *frame_, draining_, [this] { noteDamage(); });
            if (received == Received::frame) {
                auto block = convert();
                inDamage_ = false;
                if (!block) continue;
                if (block->time.value > range_.upper) return std::nullopt;
                return block;
            }
            if (received == Received::end) {
                if (truncated_) throw FlowtideError::readerFailed("Audio decode failed mid-file");
                return std::nullopt;
            }
            feed();
        }
    }

    int damagedStretchCount() const override { return damagedStretches_; }

private:
    /// A packet that cannot be decoded leaves a gap; neighbouring ones leave one gap together.
    void noteDamage() {
        if (!std::exchange(inDamage_, true)) ++damagedStretches_;
    }

    void feed() {
        throwIfCancelled(isCancelled_);
        const int read = av_read_frame(movie_.format.get(), packet_.get());
        if (read < 0) {
            truncated_ = read != AVERROR_EOF || !reachedIndexEnd_;
            draining_ = true;
            if (avcodec_send_packet(decoder_.get(), nullptr) < 0) noteDamage();
            return;
        }
        if (packet_->stream_index == movie_.audio->index) {
            reachedIndexEnd_ = reachesIndexEnd(*packet_, lastIndexed_);
            if (avcodec_send_packet(decoder_.get(), packet_.get()) < 0) noteDamage();
        }
        av_packet_unref(packet_.get());
    }

    /// The decoded frame as an interleaved block at its time, cut at the track's end; nothing when nothing is left.
    std::optional<AudioBlock> convert() {
        prepareResampler();
        AudioBlock block;
        const auto capacity = swr_get_out_samples(resampler_.get(), frame_->nb_samples);
        if (capacity < 0) throw FlowtideError::readerFailed("Could not read decoded audio.");
        block.samples.resize(static_cast<std::size_t>(capacity) * static_cast<std::size_t>(channels_));
        auto* out = reinterpret_cast<std::uint8_t*>(block.samples.data());
        const int count = swr_convert(resampler_.get(), &out, capacity,
                                      const_cast<const std::uint8_t**>(frame_->extended_data), frame_->nb_samples);
        if (count < 0) throw FlowtideError::readerFailed("Could not read decoded audio.");

        // No number is no sound: it would spread through the encoder, or be refused by it.
        std::replace_if(
            block.samples.begin(), block.samples.end(), [](float sample) { return !std::isfinite(sample); }, 0.0F);
        const double start = startOf(*frame_);
        nextStart_ = start + static_cast<double>(frame_->nb_samples) / frame_->sample_rate;
        const double audible = trackEnd_ ? std::round((*trackEnd_ - start) * sampleRate_) : count;
        const auto kept = static_cast<std::int64_t>(std::clamp(audible, 0.0, static_cast<double>(count)));
        if (kept == 0) return std::nullopt;
        block.time = {start};
        block.samples.resize(static_cast<std::size_t>(kept) * static_cast<std::size_t>(channels_));
        return block;
    }

    /// Timestamps in a coarse time base jitter around the true time: within one tick the sound simply goes on.
    double startOf(const AVFrame& frame) const {
        if (frame.best_effort_timestamp == AV_NOPTS_VALUE) return nextStart_.value_or(0);
        const AVRational base = movie_.audio->time_base;
        const double stamped = secondsOf(frame.best_effort_timestamp, base);
        const double tick = static_cast<double>(base.num) / base.den;
        return nextStart_ && std::abs(stamped - *nextStart_) < tick * 1.001 ? *nextStart_ : stamped;
    }

    void prepareResampler() {
        AVFrame& frame = *frame_;
        if (resampler_ && frame.format == inputFormat_ && frame.sample_rate == inputRate_) {
            if (frame.ch_layout.nb_channels == channels_) return;
        }
        if (frame.ch_layout.nb_channels != channels_ || frame.sample_rate < 1)
            throw FlowtideError::readerFailed("Could not read decoded audio.");
        // Same layout on both sides: nothing is mixed, only the sample format changes.
        SwrContext* raw = nullptr;
        const int code = swr_alloc_set_opts2(&raw, &frame.ch_layout, AV_SAMPLE_FMT_FLT, sampleRate_, &frame.ch_layout,
                                             static_cast<AVSampleFormat>(frame.format), frame.sample_rate, 0, nullptr);
        resampler_.reset(raw);
        if (code < 0 || swr_init(raw) < 0) throw FlowtideError::readerFailed("Could not read decoded audio.");
        inputFormat_ = frame.format;
        inputRate_ = frame.sample_rate;
    }

    MovieInput movie_;
    CodecContextPtr decoder_;
    int sampleRate_;
    int channels_;
    SourceRange range_;
    CancelCheck isCancelled_;
    PacketPtr packet_;
    FramePtr frame_;
    ResamplerPtr resampler_;
    int inputFormat_ = AV_SAMPLE_FMT_NONE;
    int inputRate_ = 0;
    std::optional<std::int64_t> lastIndexed_;
    std::optional<double> trackEnd_;
    std::optional<double> nextStart_;
    bool reachedIndexEnd_ = false; ///< the last packet read is the last one that the file's index lists
    int damagedStretches_ = 0;
    bool inDamage_ = false;
    bool draining_ = false;
    bool truncated_ = false;
};

} // namespace

std::unique_ptr<AudioReader> openAudioReader(const ImportedClip& clip, SourceRange range,
                                             const CancelCheck& isCancelled) {
    return std::make_unique<FFmpegAudioReader>(clip, range, isCancelled);
}

} // namespace flowtide::ffmpeg
