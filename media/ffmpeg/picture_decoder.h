// The decode loop of a movie's pictures, which all readers of pictures have in common.
#pragma once

#include "media/cancel_check.h"
#include "media/ffmpeg/movie_input.h"

#include <cstdint>
#include <functional>
#include <optional>

namespace flowtide::ffmpeg {

/// Opens a movie for its pictures alone. Throws FlowtideError.
MovieInput openPictures(const std::filesystem::path& path);

/// Whether every frame can be decoded by itself, as far as the codec or the file's index tells.
bool hasOnlyKeyFrames(const MovieInput& movie);

/// Decodes pictures one after the other from where it was sent: first from the beginning. A cancelled call leaves it
/// good for another seek only.
class PictureDecoder {
public:
    struct Picture {
        FramePtr frame;
        double seconds;
        double duration; ///< seconds; 0: unknown
    };

    PictureDecoder(MovieInput&& movie, DecoderThreads threads, CancelCheck isCancelled);
    virtual ~PictureDecoder() = default;
    PictureDecoder(const PictureDecoder&) = delete;
    PictureDecoder& operator=(const PictureDecoder&) = delete;

    /// The next picture in the decoder's order; nothing at the end. Throws FlowtideError::readerFailed where the file
    /// was cut off, and exportCancelled.
    std::optional<Picture> decodeNext();
    /// Goes to a key frame before a time, and to earlier ones until `startsEarlyEnough`, which decodes what it needs to
    /// know that, says so.
    void seekBack(double time, const std::function<bool()>& startsEarlyEnough);
    /// Decoding since the last seek began with the track's first sample.
    bool startsAtBeginning() const;
    /// The last key frame at or before a time; null where the index knows none.
    const AVIndexEntry* keyFrameAt(double time) const;
    /// The last packet that the index lists has been decoded; always without an index.
    bool hasReadAll() const { return reachedIndexEnd_; }
    /// Packets and frames that were damaged, those on the way from a key frame included.
    int damagedFrames() const { return damagedFrames_; }
    double secondsOf(std::int64_t timestamp) const { return ffmpeg::secondsOf(timestamp, movie_.video->time_base); }
    const MovieInput& movie() const { return movie_; }

private:
    /// Called with every packet before it is decoded.
    virtual void beforeDecoding(const AVPacket& packet, AVCodecContext& decoder) = 0;
    /// No further packet is needed.
    virtual bool isComplete() const { return false; }

    std::int64_t timestampAt(double seconds) const;
    void seek(std::int64_t timestamp);
    void feed();
    std::optional<Picture> endOfFrames() const;

    MovieInput movie_;
    CodecContextPtr decoder_;
    CancelCheck isCancelled_;
    PacketPtr packet_;
    std::optional<std::int64_t> firstIndexed_;
    std::optional<std::int64_t> lastIndexed_;
    std::int64_t firstDecodeTime_ = AV_NOPTS_VALUE; ///< of the packets fed since the last seek
    bool reachedIndexEnd_ = false;                  ///< the last packet read is the last one that the index lists
    bool draining_ = false;
    bool truncated_ = false;
    int damagedFrames_ = 0;
};

} // namespace flowtide::ffmpeg
