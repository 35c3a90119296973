// Decodes from anywhere, and leaves out what is only passed through.
#include "media/ffmpeg/seeking_reader.h"

#include "media/ffmpeg/frame_bridge.h"
#include "media/ffmpeg/picture_decoder.h"
#include "media/flowtide_error.h"
#include "media/media_time.h"

#include <algorithm>
#include <limits>
#include <set>
#include <utility>

namespace flowtide::ffmpeg {

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

class FFmpegSeekingReader : public SeekingReader, private PictureDecoder {
public:
    FFmpegSeekingReader(const ImportedClip& clip, PixelLayout layout, CancelCheck isCancelled)
        : FFmpegSeekingReader(openPictures(clip.url), clip, layout, std::move(isCancelled)) {}

    bool everyFrameIsKey() const override { return everyFrameIsKey_; }

    double keyFrameAt(double time) const override {
        const AVIndexEntry* entry = PictureDecoder::keyFrameAt(time);
        return entry ? secondsOf(entry->timestamp) : -infinity;
    }

    void seekTo(double time) override {
        seekBack(time + frameReachedGraceSeconds, [&] {
            waiting_.reset();
            fedToSkip_.clear();
            delivered_ = skipTo_ = -infinity;
            isFirst_ = true;
            waiting_ = decodeShown();
            return waiting_ && waiting_->seconds <= time + frameReachedGraceSeconds;
        });
    }

    void skipTo(double time) override { skipTo_ = time; }

    std::optional<SpannedFrame> next() override {
        if (!waiting_) waiting_ = decodeShown();
        if (!waiting_) return std::nullopt;
        Picture picture = std::move(*waiting_);
        waiting_.reset();
        SpannedFrame result;
        result.time = delivered_ = picture.seconds;
        result.from = std::exchange(isFirst_, false) && startsAtBeginning() ? -infinity : picture.seconds;
        result.end = endOf(picture);
        result.frame = importer_.import(std::move(picture.frame));
        return result;
    }

private:
    // Frame threads hold back a frame each: right for long groups of pictures, wrong where one frame is wanted.
    FFmpegSeekingReader(MovieInput&& movie, const ImportedClip& clip, PixelLayout layout, CancelCheck&& isCancelled)
        : PictureDecoder(std::move(movie),
                         hasOnlyKeyFrames(movie) ? DecoderThreads::lowDelay : DecoderThreads::throughput,
                         std::move(isCancelled))
        , everyFrameIsKey_(hasOnlyKeyFrames(this->movie()))
        , importer_(layout, static_cast<int>(clip.encodedWidth()), static_cast<int>(clip.encodedHeight())) {}

    /// Where the next frame begins, whether it is decoded or was left out.
    double endOf(const Picture& picture) {
        // Frames that refer to no other come in the order of their packets, whose durations then are theirs; waiting
        // for the next one would double the time to a single frame.
        if (everyFrameIsKey_ && picture.duration > 0 && !hasReadAll()) return picture.seconds + picture.duration;
        double next = infinity;
        try {
            waiting_ = decodeShown();
            if (waiting_) next = waiting_->seconds;
        } catch (const FlowtideError& error) {
            // This frame is whole; the next call tells.
            if (error.kind() != FlowtideError::Case::readerFailed) throw;
            next = picture.seconds + picture.duration;
        }
        const auto leftOut = fedToSkip_.upper_bound(picture.seconds);
        const double end = leftOut == fedToSkip_.end() ? next : std::min(next, *leftOut);
        fedToSkip_.erase(fedToSkip_.begin(), leftOut);
        return end;
    }

    std::optional<Picture> decodeShown() {
        while (auto picture = decodeNext())
            // Damage, or a guess of the frames' order that proved wrong, makes some come too late.
            if (picture->seconds > delivered_) return picture;
        return std::nullopt;
    }

    void beforeDecoding(const AVPacket& packet, AVCodecContext& decoder) override {
        const bool isTimed = packet.pts != AV_NOPTS_VALUE && packet.duration > 0;
        const bool isPassed = isTimed && secondsOf(packet.pts + packet.duration) <= skipTo_ + frameReachedGraceSeconds;
        decoder.skip_frame = isPassed ? AVDISCARD_NONREF : AVDISCARD_DEFAULT;
        if (isPassed && !(packet.flags & AV_PKT_FLAG_DISCARD)) fedToSkip_.insert(secondsOf(packet.pts));
    }

    const bool everyFrameIsKey_;
    FrameImporter importer_;
    std::optional<Picture> waiting_; ///< decoded, not delivered
    std::set<double> fedToSkip_;     ///< times, after the last frame's, of those that the decoder was free to leave out
    double delivered_ = -infinity;
    double skipTo_ = -infinity;
    bool isFirst_ = true; ///< nothing delivered since the last seek
};

} // namespace

std::unique_ptr<SeekingReader> openSeekingReader(const ImportedClip& clip, PixelLayout layout,
                                                 const CancelCheck& isCancelled) {
    return std::make_unique<FFmpegSeekingReader>(clip, layout, isCancelled);
}

} // namespace flowtide::ffmpeg
