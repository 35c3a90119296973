// Decoded frames around the playhead, within a budget of bytes.
#pragma once

#include "media/video_frame.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <utility>

namespace flowtide {

/// Tells the media of a player apart; never used again for another one.
using MediumId = std::uint64_t;

/// Where playback is, in one medium's own seconds.
struct Playhead {
    MediumId medium = 0;
    double time = 0;
    int direction = 1; ///< of play: 1 forwards, -1 backwards
};

/// Bytes of a frame's planes, padding of the rows included.
std::size_t byteCount(const VideoFrame& frame);

/// Thread-safe. Frames are found by the time at which they are shown; when there are too many, those farthest from the
/// playhead go first, what lies behind it before what lies ahead, and other media before the playhead's.
class FrameCache {
public:
    explicit FrameCache(std::size_t budgetBytes)
        : budget_(budgetBytes) {}

    /// Takes a frame in and drops what must go. False when that was the frame itself: the cache is full of frames that
    /// are needed sooner. A frame that covers the playhead is always kept.
    bool insert(MediumId medium, const SpannedFrame& frame, const Playhead& playhead);
    /// The frame shown at a time.
    std::optional<SpannedFrame> find(MediumId medium, double time) const;
    /// How far the medium is covered without a gap from `time` on, in the direction of play, at most up to `limit`.
    /// `time` itself when it is not covered.
    double coveredUntil(MediumId medium, double time, int direction, double limit) const;

    void clear();
    std::size_t bytes() const;
    std::size_t budget() const { return budget_; }

private:
    struct Entry {
        SpannedFrame frame;
        std::size_t bytes = 0;
    };
    using Key = std::pair<MediumId, double>; ///< medium, and the time from which the frame is shown
    using Entries = std::map<Key, Entry>;

    Entries::const_iterator covering(MediumId medium, double time) const;

    const std::size_t budget_;
    mutable std::mutex lock_; ///< guards everything below
    Entries entries_;
    std::size_t bytes_ = 0;
};

} // namespace flowtide
