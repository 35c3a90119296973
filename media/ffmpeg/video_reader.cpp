// Decodes a range of pictures: seeks exactly, ends after the range, and notices damage and missing ends.
#include "media/ffmpeg/video_reader.h"

#include "media/ffmpeg/frame_bridge.h"
#include "media/ffmpeg/picture_decoder.h"
#include "media/media_time.h"

#include <algorithm>
#include <deque>
#include <utility>

namespace flowtide::ffmpeg {

namespace {

class FFmpegVideoReader : public VideoReader, private PictureDecoder {
public:
    FFmpegVideoReader(const ImportedClip& clip, PixelLayout layout, SourceRange range, CancelCheck isCancelled)
        : PictureDecoder(openPictures(clip.url), DecoderThreads::throughput, std::move(isCancelled))
        , importer_(layout, static_cast<int>(clip.encodedWidth()), static_cast<int>(clip.encodedHeight()))
        , range_(range) {}

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
        Picture decoded = std::move(waiting_.front());
        waiting_.pop_front();
        const SourceSeconds time{decoded.seconds};
        return TimedFrame{importer_.import(std::move(decoded.frame)), time};
    }

    void skipTo(SourceSeconds time) override {
        const double seconds = std::min(time.value, range_.upper);
        const AVIndexEntry* keyFrame = keyFrameAt(seconds);
        // Jumping pays only past frames that the decoder has not been fed yet.
        if (keyFrame && lastShownDecodeTime_ != AV_NOPTS_VALUE && keyFrame->timestamp > lastShownDecodeTime_)
            seekTo(seconds);
    }

    int concealedFrameCount() const override { return damagedFrames(); }

private:
    /// Goes to a time by way of a key frame before it; see findFrameAt().
    void seekTo(double time) {
        seekBack(time, [&] {
            waiting_.clear();
            lastShownDecodeTime_ = AV_NOPTS_VALUE;
            fedPastEnd_ = false;
            findFrameAt(time);
            return !waiting_.empty() && waiting_.front().seconds <= time + frameReachedGraceSeconds;
        });
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

    void beforeDecoding(const AVPacket& packet, AVCodecContext&) override {
        // What an edit list hides has times that go on past the edit, into those of the next one.
        if (packet.flags & AV_PKT_FLAG_DISCARD) return;
        if (packet.dts != AV_NOPTS_VALUE) lastShownDecodeTime_ = packet.dts;
        if (packet.pts != AV_NOPTS_VALUE && secondsOf(packet.pts) > range_.upper) fedPastEnd_ = true;
    }

    /// Every frame up to the range's end, and one behind it, has been fed.
    bool isComplete() const override {
        return fedPastEnd_ && lastShownDecodeTime_ != AV_NOPTS_VALUE && secondsOf(lastShownDecodeTime_) > range_.upper;
    }

    FrameImporter importer_;
    SourceRange range_;
    std::deque<Picture> waiting_;
    std::int64_t lastShownDecodeTime_ = AV_NOPTS_VALUE;
    bool fedPastEnd_ = false;
    bool started_ = false;
};

} // namespace

std::unique_ptr<VideoReader> openVideoReader(const ImportedClip& clip, PixelLayout layout, SourceRange range,
                                             const CancelCheck& isCancelled) {
    return std::make_unique<FFmpegVideoReader>(clip, layout, range, isCancelled);
}

} // namespace flowtide::ffmpeg
