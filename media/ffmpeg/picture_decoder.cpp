// Feeding packets, seeking far enough back, and telling a cut file from a complete one.
#include "media/ffmpeg/picture_decoder.h"

#include "media/flowtide_error.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace flowtide::ffmpeg {

namespace {

// With open groups of pictures the first frame that decodes after a seek can lie behind the time asked for: look a
// little earlier first, then in steps that double, so that all attempts together cost little more than the last.
constexpr double firstBackOffSeconds = 0.25;

// Earlier than any sample: samples that an edit list hides can have times far before the first one that it shows, and
// where edits make times go back a search for a time finds one of several places.
constexpr std::int64_t beforeAllSamples = std::numeric_limits<std::int64_t>::min() / 2;

} // namespace

MovieInput openPictures(const std::filesystem::path& path) {
    MovieInput movie = openMovie(path);
    if (!movie.video) throw FlowtideError::noVideoTrack();
    deliverOnly(*movie.format, *movie.video);
    return movie;
}

bool hasOnlyKeyFrames(const MovieInput& movie) {
    const AVCodecDescriptor* codec = avcodec_descriptor_get(movie.video->codecpar->codec_id);
    if (codec && (codec->props & AV_CODEC_PROP_INTRA_ONLY)) return true;
    const int count = avformat_index_get_entries_count(movie.video);
    for (int i = 0; i < count; ++i)
        if (!(avformat_index_get_entry(movie.video, i)->flags & AVINDEX_KEYFRAME)) return false;
    return count > 0;
}

PictureDecoder::PictureDecoder(MovieInput&& movie, DecoderThreads threads, CancelCheck isCancelled)
    : movie_(std::move(movie))
    , decoder_(openDecoder(*movie_.video, "This clip's video codec cannot be decoded", threads))
    , isCancelled_(std::move(isCancelled))
    , packet_(makePacket())
    , lastIndexed_(lastIndexedDecodeTime(*movie_.video))
    , reachedIndexEnd_(!lastIndexed_) {
    if (lastIndexed_) firstIndexed_ = avformat_index_get_entry(movie_.video, 0)->timestamp;
}

std::int64_t PictureDecoder::timestampAt(double seconds) const {
    const AVRational base = movie_.video->time_base;
    return static_cast<std::int64_t>(std::floor(seconds * base.den / base.num));
}

const AVIndexEntry* PictureDecoder::keyFrameAt(double time) const {
    const int found = av_index_search_timestamp(movie_.video, timestampAt(time), AVSEEK_FLAG_BACKWARD);
    return found < 0 ? nullptr : avformat_index_get_entry(movie_.video, found);
}

bool PictureDecoder::startsAtBeginning() const {
    if (firstDecodeTime_ == AV_NOPTS_VALUE) return false;
    // What a later edit hides can have times before those of the first sample.
    return firstIndexed_ ? firstDecodeTime_ == firstIndexed_ : firstDecodeTime_ <= 0;
}

void PictureDecoder::seekBack(double time, const std::function<bool()>& startsEarlyEnough) {
    const int damagedBefore = damagedFrames_;
    double target = time;
    for (double backOff = firstBackOffSeconds;; backOff *= 2) {
        damagedFrames_ = damagedBefore;
        seek(target > 0 ? timestampAt(target) : beforeAllSamples);
        if (startsEarlyEnough() || target <= 0 || startsAtBeginning()) return;
        target -= backOff;
        // From the same key frame the same frames would come again.
        if (firstDecodeTime_ != AV_NOPTS_VALUE) target = std::min(target, secondsOf(firstDecodeTime_ - 1));
    }
}

void PictureDecoder::seek(std::int64_t timestamp) {
    // A file that cannot seek is read from where it stands: slower, and never wrong, since times are compared.
    av_seek_frame(movie_.format.get(), movie_.video->index, timestamp, AVSEEK_FLAG_BACKWARD);
    avcodec_flush_buffers(decoder_.get());
    firstDecodeTime_ = AV_NOPTS_VALUE;
    reachedIndexEnd_ = !lastIndexed_;
    draining_ = false;
    truncated_ = false;
}

std::optional<PictureDecoder::Picture> PictureDecoder::decodeNext() {
    for (;;) {
        FramePtr frame = makeFrame();
        const Received received = receiveFrame(*decoder_, *frame, draining_, [this] { ++damagedFrames_; });
        if (received == Received::end) return endOfFrames();
        if (received == Received::frame) {
            if (frame->decode_error_flags != 0 || (frame->flags & AV_FRAME_FLAG_CORRUPT)) ++damagedFrames_;
            if (frame->best_effort_timestamp == AV_NOPTS_VALUE) continue;
            const double seconds = secondsOf(frame->best_effort_timestamp);
            const double duration = secondsOf(std::max<std::int64_t>(frame->pkt_duration, 0));
            return Picture{std::move(frame), seconds, duration};
        }
        feed();
    }
}

void PictureDecoder::feed() {
    if (draining_) return;
    throwIfCancelled(isCancelled_);
    const int read = isComplete() ? AVERROR_EOF : av_read_frame(movie_.format.get(), packet_.get());
    if (read < 0) {
        truncated_ = !isComplete() && (read != AVERROR_EOF || !reachedIndexEnd_);
        draining_ = true;
        if (avcodec_send_packet(decoder_.get(), nullptr) < 0) ++damagedFrames_; // of one that was still being decoded
        return;
    }
    if (packet_->stream_index == movie_.video->index) {
        if (firstDecodeTime_ == AV_NOPTS_VALUE) firstDecodeTime_ = packet_->dts;
        reachedIndexEnd_ = reachesIndexEnd(*packet_, lastIndexed_);
        beforeDecoding(*packet_, *decoder_);
        // The decoder was emptied before, so it always takes the packet; what it cannot decode is a lost frame.
        if (avcodec_send_packet(decoder_.get(), packet_.get()) < 0) ++damagedFrames_;
    }
    av_packet_unref(packet_.get());
}

std::optional<PictureDecoder::Picture> PictureDecoder::endOfFrames() const {
    // A file that was cut off ends like any other; only its index tells that more should have come.
    if (truncated_) throw FlowtideError::readerFailed("Video decode failed mid-file");
    return std::nullopt;
}

} // namespace flowtide::ffmpeg
