// Decodes a range of pictures: seeks exactly, ends after the range, and notices damage and missing ends.
#include "media/ffmpeg/video_reader.h"

#include "media/ffmpeg/frame_bridge.h"
#include "media/ffmpeg/movie_input.h"
#include "media/flowtide_error.h"
#include "media/media_time.h"

#include <cmath>
#include <deque>
#include <utility>

namespace flowtide::ffmpeg {

namespace {

constexpr const char* decodeFailure = "Video decode failed mid-file";

// With open groups of pictures the first frame that decodes after a seek can lie behind the time asked for: look a
// little earlier first, then in steps that double, so that all attempts together cost little more than the last.
constexpr double firstBackOffSeconds = 0.25;

class FFmpegVideoReader : public VideoReader {
public:
    FFmpegVideoReader(const ImportedClip& clip, PixelLayout layout, SourceRange range, CancelCheck isCancelled)
        : movie_(openMovie(clip.url))
        , importer_(layout, static_cast<int>(clip.encodedWidth()), static_cast<int>(clip.encodedHeight()))
        , range_(range)
        , isCancelled_(std::move(isCancelled))
        , packet_(makePacket()) {
        if (!movie_.video) throw FlowtideError::noVideoTrack();
        deliverOnly(*movie_.format, *movie_.video);
        decoder_ = openDecoder(*movie_.video, "This clip's video codec cannot be decoded");
        lastIndexed_ = lastIndexedDecodeTime(*movie_.video);
        reachedIndexEnd_ = !lastIndexed_;
    }

    std::optional<TimedFrame> next() override {
        if (!std::exchange(started_, true)) {
            if (range_.lower > 0)
                seekTo(range_.lower);
            else
                findFrameAt(range_.lower);
        }
        if (waiting_.empty()) {
            auto frame = decodeNext();
            if (!frame) return std::nullopt;
            waiting_.push_back(std::move(*frame));
        }
        Decoded decoded = std::move(waiting_.front());
        waiting_.pop_front();
        const SourceSeconds time{decoded.seconds};
        return TimedFrame{importer_.import(std::move(decoded.frame)), time};
    }

    void skipTo(SourceSeconds time) override {
        const double seconds = std::min(time.value, range_.upper);
        const int found = av_index_search_timestamp(movie_.video, timestampAt(seconds), AVSEEK_FLAG_BACKWARD);
        const AVIndexEntry* keyFrame = found < 0 ? nullptr : avformat_index_get_entry(movie_.video, found);
        // Jumping pays only past frames that the decoder has not been fed yet.
        if (keyFrame && lastShownDecodeTime_ != AV_NOPTS_VALUE && keyFrame->timestamp > lastShownDecodeTime_)
            seekTo(seconds);
    }

    int concealedFrameCount() const override { return damagedFrames_; }

private:
    struct Decoded {
        FramePtr frame;
        double seconds;
    };

    std::int64_t timestampAt(double seconds) const {
        const AVRational base = movie_.video->time_base;
        return static_cast<std::int64_t>(std::floor(seconds * base.den / base.num));
    }

    /// Goes to a time by way of a key frame before it; see findFrameAt().
    void seekTo(double time) {
        const int damagedBefore = damagedFrames_;
        double target = time;
        for (double backOff = firstBackOffSeconds;; backOff *= 2) {
            damagedFrames_ = damagedBefore;
            seek(std::max(target, 0.0));
            findFrameAt(time);
            const bool found = !waiting_.empty() && waiting_.front().seconds <= time + frameReachedGraceSeconds;
            const bool known = firstDecodeTime_ != AV_NOPTS_VALUE;
            if (found || target <= 0 || (known && firstDecodeTime_ <= 0)) return;
            target -= backOff;
            // From the same key frame the same frames would come again.
            if (known) target = std::min(target, secondsOf(firstDecodeTime_ - 1, movie_.video->time_base));
        }
    }

    /// Decodes on until waiting_ holds the last frame at or before a time and the one after it.
    void findFrameAt(double time) {
        while (auto frame = decodeNext()) {
            const bool reached = frame->seconds > time + frameReachedGraceSeconds;
            if (!reached) waiting_.clear();
            waiting_.push_back(std::move(*frame));
            if (reached) return;
        }
    }

    void seek(double seconds) {
        // A file that cannot seek is read from where it stands: slower, and never wrong, since times are compared.
        av_seek_frame(movie_.format.get(), movie_.video->index, timestampAt(seconds), AVSEEK_FLAG_BACKWARD);
        avcodec_flush_buffers(decoder_.get());
        waiting_.clear();
        firstDecodeTime_ = lastShownDecodeTime_ = AV_NOPTS_VALUE;
        reachedIndexEnd_ = !lastIndexed_;
        fedPastEnd_ = false;
        draining_ = false;
        truncated_ = false;
    }

    std::optional<Decoded> decodeNext() {
        for (;;) {
            FramePtr frame = makeFrame();
            const int received = avcodec_receive_frame(decoder_.get(), frame.get());
            if (received >= 0) {
                if (frame->decode_error_flags != 0 || (frame->flags & AV_FRAME_FLAG_CORRUPT)) ++damagedFrames_;
                if (frame->best_effort_timestamp == AV_NOPTS_VALUE) continue;
                const double seconds = secondsOf(frame->best_effort_timestamp, movie_.video->time_base);
                return Decoded{std::move(frame), seconds};
            }
            if (received == AVERROR_EOF) return endOfFrames();
            if (received != AVERROR(EAGAIN)) {
                ++damagedFrames_;
                if (draining_) return endOfFrames();
            }
            feed();
        }
    }

    void feed() {
        if (draining_) return;
        throwIfCancelled(isCancelled_);
        const int read = endReached() ? AVERROR_EOF : av_read_frame(movie_.format.get(), packet_.get());
        if (read < 0) {
            truncated_ = !endReached() && (read != AVERROR_EOF || !reachedIndexEnd_);
            draining_ = true;
            avcodec_send_packet(decoder_.get(), nullptr);
            return;
        }
        if (packet_->stream_index == movie_.video->index) {
            noteTimes(*packet_);
            // The decoder was emptied before, so it always takes the packet; what it cannot decode is a lost frame.
            if (avcodec_send_packet(decoder_.get(), packet_.get()) < 0) ++damagedFrames_;
        }
        av_packet_unref(packet_.get());
    }

    void noteTimes(const AVPacket& packet) {
        if (firstDecodeTime_ == AV_NOPTS_VALUE) firstDecodeTime_ = packet.dts;
        reachedIndexEnd_ = reachesIndexEnd(packet, lastIndexed_);
        // What an edit list hides has times that go on past the edit, into those of the next one.
        if (packet.flags & AV_PKT_FLAG_DISCARD) return;
        if (packet.dts != AV_NOPTS_VALUE) lastShownDecodeTime_ = packet.dts;
        const AVRational base = movie_.video->time_base;
        if (packet.pts != AV_NOPTS_VALUE && secondsOf(packet.pts, base) > range_.upper) fedPastEnd_ = true;
    }

    /// Every frame up to the range's end, and one behind it, has been fed.
    bool endReached() const {
        return fedPastEnd_ && lastShownDecodeTime_ != AV_NOPTS_VALUE &&
               secondsOf(lastShownDecodeTime_, movie_.video->time_base) > range_.upper;
    }

    std::optional<Decoded> endOfFrames() const {
        // A file that was cut off ends like any other; only its index tells that more should have come.
        if (truncated_) throw FlowtideError::readerFailed(decodeFailure);
        return std::nullopt;
    }

    MovieInput movie_;
    CodecContextPtr decoder_;
    FrameImporter importer_;
    SourceRange range_;
    CancelCheck isCancelled_;
    PacketPtr packet_;
    std::optional<std::int64_t> lastIndexed_;
    std::deque<Decoded> waiting_;
    std::int64_t firstDecodeTime_ = AV_NOPTS_VALUE; ///< of the packets fed since the last seek
    std::int64_t lastShownDecodeTime_ = AV_NOPTS_VALUE;
    bool reachedIndexEnd_ = false; ///< the last packet read is the last one that the file's index lists
    bool fedPastEnd_ = false;
    bool draining_ = false;
    bool truncated_ = false;
    bool started_ = false;
    int damagedFrames_ = 0;
};

} // namespace

std::unique_ptr<VideoReader> openVideoReader(const ImportedClip& clip, PixelLayout layout, SourceRange range,
                                             const CancelCheck& isCancelled) {
    return std::make_unique<FFmpegVideoReader>(clip, layout, range, isCancelled);
}

} // namespace flowtide::ffmpeg
