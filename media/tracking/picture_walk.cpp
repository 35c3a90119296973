// Reads forwards; walks back through stretches that were read forwards.
#include "media/tracking/picture_walk.h"

#include "media/decode_layout.h"
#include "media/media_time.h"

#include <algorithm>
#include <deque>
#include <utility>

namespace flowtide::tracking {

namespace {

// More would need more memory, fewer more decoding: each stretch is decoded from the key frame before it.
constexpr std::size_t mostHeldPictures = 120;

/// Runs what reads, and gives its failures the sentence for tracking.
template <typename Read>
auto reading(const char* failure, Read read) {
    try {
        return read();
    } catch (const FlowtideError& error) {
        if (error.kind() == FlowtideError::Case::noVideoTrack)
            throw FlowtideError::trackingFailed("The clip has no video track.");
        if (error.kind() != FlowtideError::Case::readerFailed) throw;
        throw FlowtideError::trackingFailed(failure);
    }
}

class ForwardWalk : public PictureWalk {
public:
    /// `earliest`: the time of a frame that begins before it.
    ForwardWalk(const PictureSource& source, SourceRange range, double earliest, const char* firstFailure)
        : isCancelled_(source.isCancelled)
        , range_(range)
        , earliest_(earliest)
        , failure_(firstFailure)
        , maker_(source.clip.preferredTransform) {
        reader_ = reading(failure_, [&] {
            return source.backend.openVideo(source.clip, decodePixelFormat(source.clip), range, isCancelled_);
        });
    }

    std::optional<TimedPicture> next() override {
        throwIfCancelled(isCancelled_);
        const auto frame = reading(failure_, [&] { return reader_->next(); });
        if (!frame || frame->time.value >= range_.upper - frameReachedGraceSeconds) {
            // A range inside the last frame is shown by it.
            if (hasBegun_ || !frame) return std::nullopt;
        }
        auto picture = maker_.make(frame->frame);
        if (!picture) throw FlowtideError::trackingFailed("Could not prepare a tracking frame.");
        hasBegun_ = true;
        failure_ = stoppedDecoding;
        return TimedPicture{std::move(*picture), std::max(frame->time.value, earliest_)};
    }

private:
    CancelCheck isCancelled_;
    SourceRange range_;
    double earliest_;
    const char* failure_;
    SubjectPictureMaker maker_;
    std::unique_ptr<VideoReader> reader_;
    bool hasBegun_ = false;
};

class BackwardWalk : public PictureWalk {
public:
    BackwardWalk(PictureSource source, SourceRange range)
        : source_(std::move(source))
        , rest_(range) {}

    std::optional<TimedPicture> next() override {
        throwIfCancelled(source_.isCancelled);
        if (held_.empty()) readStretch();
        if (held_.empty()) return std::nullopt;
        TimedPicture picture = std::move(held_.back());
        held_.pop_back();
        return picture;
    }

private:
    void readStretch() {
        if (!(rest_.lower < rest_.upper - frameReachedGraceSeconds)) return;
        const double length = static_cast<double>(mostHeldPictures) * source_.clip.frameDuration.seconds();
        SourceRange stretch{std::max(rest_.lower, rest_.upper - length), rest_.upper};
        ForwardWalk walk(source_, stretch, rest_.lower, stoppedDecoding);
        while (auto picture = walk.next()) {
            // A frame that began at the end is the one that the walk came from.
            if (picture->time >= rest_.upper - frameReachedGraceSeconds) break;
            held_.push_back(std::move(*picture));
            // Where frames follow each other faster than they say, the earlier ones are read again.
            if (held_.size() > mostHeldPictures) held_.pop_front();
        }
        rest_.upper = held_.empty() ? rest_.lower : held_.front().time;
    }

    PictureSource source_;
    SourceRange rest_; ///< what has not been read
    std::deque<TimedPicture> held_;
};

} // namespace

std::unique_ptr<PictureWalk> walkForwards(const PictureSource& source, SourceRange range,
                                          std::optional<double> earliest) {
    return std::make_unique<ForwardWalk>(source, range, earliest.value_or(range.lower), cannotDecode);
}

std::unique_ptr<PictureWalk> walkBackwards(const PictureSource& source, SourceRange range) {
    return std::make_unique<BackwardWalk>(source, range);
}

} // namespace flowtide::tracking
