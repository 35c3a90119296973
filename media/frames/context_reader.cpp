// How far to open: by the frame interval where there is one, else by looking at the frames that come.
#include "media/frames/context_reader.h"

#include <algorithm>
#include <deque>
#include <utility>

namespace flowtide {

namespace {

constexpr double leastReachSeconds = 0.25; // times stray a little from their interval, at the usual rates by less
constexpr double frameIntervals = 2;
constexpr double furtherBack = 4; // times as far at each attempt: few of them, and no reading of hours for seconds

/// A reader whose first frames were looked at already.
class LookedAhead : public VideoReader {
public:
    explicit LookedAhead(std::unique_ptr<VideoReader> reader)
        : reader_(std::move(reader)) {}

    /// Whether two frames come at or before a time; reads them.
    bool hasTwoUpTo(double time) {
        while (waiting_.size() < 2)
            if (auto frame = reader_->next())
                waiting_.push_back(std::move(*frame));
            else
                return false;
        return waiting_.back().time.value <= time;
    }

    std::optional<TimedFrame> next() override {
        if (waiting_.empty()) return reader_->next();
        TimedFrame frame = std::move(waiting_.front());
        waiting_.pop_front();
        return frame;
    }
    void skipTo(SourceSeconds time) override { reader_->skipTo(time); }
    int concealedFrameCount() const override { return reader_->concealedFrameCount(); }

private:
    std::unique_ptr<VideoReader> reader_;
    std::deque<TimedFrame> waiting_;
};

} // namespace

std::optional<double> contextReach(const ImportedClip& clip) {
    const auto& interval = clip.video.constantSampleInterval;
    if (!interval) return std::nullopt;
    return std::max(frameIntervals * interval->seconds(), leastReachSeconds);
}

std::unique_ptr<VideoReader> openWithContext(const MediaBackend& backend, const ImportedClip& clip, PixelLayout layout,
                                             SourceRange range, const CancelCheck& isCancelled) {
    if (const auto reach = contextReach(clip))
        return backend.openVideo(clip, layout, {std::max(range.lower - *reach, 0.0), range.upper + *reach},
                                 isCancelled);
    // To the clip's end: nothing is decoded that is not asked for, and how far the next frames lie nobody knows.
    for (double reach = leastReachSeconds;; reach *= furtherBack) {
        const double lower = std::max(range.lower - reach, 0.0);
        auto reader = std::make_unique<LookedAhead>(
            backend.openVideo(clip, layout, {lower, std::max(clip.duration, range.upper)}, isCancelled));
        if (lower <= 0 || reader->hasTwoUpTo(range.lower)) return reader;
    }
}

} // namespace flowtide
