// Decoding on where that is nearer, and going back to a key frame where it isn't.
#include "media/frames/frames_around.h"

#include "media/media_time.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace flowtide {

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr std::size_t wantedAfter = 2;
// The frame before the one shown begins less than two intervals before a time, and ends less than one before it; that
// the frames come a little unevenly makes no difference.
constexpr double reachIntervals = 1.25;
constexpr double unevenReachSeconds = 0.25; // of frames at no constant pace, to begin with
constexpr double furtherBack = 4;           // times as far at each attempt, so that they are few

} // namespace

FramesAround::FramesAround(const MediaBackend& backend, ImportedClip clip, PixelLayout layout)
    : backend_(backend)
    , clip_(std::move(clip))
    , layout_(layout) {}

std::size_t FramesAround::countUpTo(double time) const {
    const auto after = std::find_if(held_.begin(), held_.end(), [&](const TimedFrame& frame) {
        return frame.time.value > time + frameReachedGraceSeconds;
    });
    return static_cast<std::size_t>(after - held_.begin());
}

/// Behind the frame that is shown.
std::size_t FramesAround::countAfter(double time) const {
    return held_.empty() ? 0 : held_.size() - std::max<std::size_t>(countUpTo(time), 1);
}

/// The frame before the one shown is held, or there is none.
bool FramesAround::hasEarlier(double time) const {
    return countUpTo(time) >= 2 || (startsTrack_ && !held_.empty());
}

std::vector<TimedFrame> FramesAround::at(SourceSeconds time, const CancelCheck& isCancelled) {
    isCancelled_ = isCancelled;
    try {
        throwIfCancelled(isCancelled_);
        find(time.value);
    } catch (...) {
        held_.clear(); // where the reader stands now is unknown
        throw;
    }
    if (held_.empty()) return {};
    const std::size_t shown = std::max<std::size_t>(countUpTo(time.value), 1) - 1;
    const auto at = [&](std::size_t index) { return held_.begin() + static_cast<std::ptrdiff_t>(index); };
    return {at(shown - std::min<std::size_t>(shown, 1)), at(std::min(shown + 1 + wantedAfter, held_.size()))};
}

void FramesAround::open() {
    if (!reader_) reader_ = backend_.openForPlayback(clip_, layout_, [this] { return isCancelled_ && isCancelled_(); });
}

void FramesAround::find(double time) {
    open();
    const auto& interval = clip_.video.constantSampleInterval;
    double reach = interval ? reachIntervals * interval->seconds() : unevenReachSeconds;
    double from = time - reach;
    bool seeks = !hasEarlier(time);
    // Ahead within a group of pictures seeking would only repeat work.
    if (!held_.empty() && countUpTo(time) == held_.size())
        seeks = reader_->keyFrameAt(from) > held_.back().time.value + frameReachedGraceSeconds;
    for (;; reach *= furtherBack, from = time - reach, seeks = true) {
        if (seeks) {
            held_.clear();
            endsTrack_ = false;
            reader_->seekTo(from);
        }
        // Where they come at no constant pace, any of them can be the one before.
        reader_->skipTo(interval ? from : -infinity);
        readPast(time);
        if (hasEarlier(time) || from <= 0) return;
    }
}

void FramesAround::readPast(double time) {
    while (!endsTrack_ && countAfter(time) < wantedAfter) {
        auto frame = reader_->next();
        if (!frame) {
            endsTrack_ = true;
            return;
        }
        if (held_.empty()) startsTrack_ = frame->from == -infinity;
        held_.push_back({std::move(frame->frame), {frame->time}});
        for (; countUpTo(time) > 2; startsTrack_ = false)
            held_.pop_front();
    }
}

} // namespace flowtide
