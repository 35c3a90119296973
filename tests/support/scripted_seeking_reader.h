// A player's reader that decodes a script: numbered frames in groups of pictures, without files or codecs.
#pragma once

#include "media/cancel_check.h"
#include "media/media_time.h"
#include "media/seeking_reader.h"
#include "tests/support/clip_maker.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <utility>

namespace flowtide::test {

/// How players see the scripted media; unset hooks do nothing.
struct PlaybackScript {
    std::int64_t keyInterval = 1; ///< frames in a group of pictures; every second one refers to none
    double indexLead = 0;         ///< seconds by which the index names key frames too early, as by decode times
    std::function<double(std::int64_t)> frameTime{}; ///< of a frame, in seconds; i × the clip's frame duration unset
    std::function<bool(const ImportedClip&, std::int64_t)> neverComes{}; ///< reading a frame only ends when cancelled
    std::function<void(const ImportedClip&)> onOpen{};                   ///< may throw
    std::function<void(const ImportedClip&, std::int64_t)> onFrame{};    ///< before a frame is decoded; may throw
};

class ScriptedSeekingReader : public SeekingReader {
public:
    ScriptedSeekingReader(PlaybackScript script, ImportedClip clip, PixelLayout layout, CancelCheck isCancelled)
        : script_(std::move(script))
        , clip_(std::move(clip))
        , layout_(layout)
        , isCancelled_(std::move(isCancelled))
        , count_(std::llround(clip_.duration / clip_.frameDuration.seconds())) {
        if (script_.onOpen) script_.onOpen(clip_);
    }

    bool everyFrameIsKey() const override { return script_.keyInterval == 1; }
    double keyFrameAt(double time) const override { return timeOf(keyOf(shownAt(time + script_.indexLead))); }
    void seekTo(double time) override {
        next_ = keyOf(shownAt(time));
        skipTo_ = -infinity;
    }
    void skipTo(double time) override { skipTo_ = time; }

    std::optional<SpannedFrame> next() override {
        while (next_ < count_ && isLeftOut(next_))
            ++next_;
        if (next_ >= count_) return std::nullopt;
        do
            throwIfCancelled(isCancelled_);
        while (script_.neverComes && script_.neverComes(clip_, next_));
        if (script_.onFrame) script_.onFrame(clip_, next_);
        SpannedFrame result;
        result.frame = numberedFrame(layout_, static_cast<int>(clip_.encodedWidth()),
                                     static_cast<int>(clip_.encodedHeight()), next_);
        result.time = timeOf(next_);
        result.from = next_ == 0 ? -infinity : result.time;
        ++next_;
        result.end = next_ == count_ ? infinity : timeOf(next_);
        return result;
    }

private:
    static constexpr double infinity = std::numeric_limits<double>::infinity();

    double timeOf(std::int64_t frame) const {
        return script_.frameTime ? script_.frameTime(frame) : clip_.frameDuration.secondsTimes(frame);
    }
    std::int64_t shownAt(double time) const {
        std::int64_t frame = 0;
        while (frame + 1 < count_ && timeOf(frame + 1) <= time + frameReachedGraceSeconds)
            ++frame;
        return frame;
    }
    std::int64_t keyOf(std::int64_t frame) const { return frame - frame % script_.keyInterval; }
    /// As packets tell it: a frame's duration is the nominal one, whatever comes after it.
    bool isLeftOut(std::int64_t frame) const {
        const bool isReferred = frame % script_.keyInterval % 2 == 0;
        return !isReferred && timeOf(frame) + clip_.frameDuration.seconds() <= skipTo_ + frameReachedGraceSeconds;
    }

    PlaybackScript script_;
    ImportedClip clip_;
    PixelLayout layout_;
    CancelCheck isCancelled_;
    std::int64_t count_;
    std::int64_t next_ = 0;
    double skipTo_ = -infinity;
};

} // namespace flowtide::test
