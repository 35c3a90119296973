// Lookup and eviction.
#include "media/player/frame_cache.h"

#include "media/media_time.h"

#include <cmath>
#include <limits>
#include <utility>
#include <vector>

namespace flowtide {

namespace {

// A frame behind the playhead is worth as much as one this many times as far ahead: a step back or a change of
// direction finds a few, while play has most of the room.
constexpr double behindWeight = 4;

double distance(MediumId medium, const SpannedFrame& frame, const Playhead& playhead) {
    if (medium != playhead.medium) return std::numeric_limits<double>::infinity();
    const double time = playhead.time + frameReachedGraceSeconds;
    const double before = frame.from - time; // positive: the frame lies after the playhead
    const double after = time - frame.end;   // not negative: it lies before it
    if (before <= 0 && after < 0) return 0;
    const bool ahead = (before > 0) == (playhead.direction > 0);
    return (before > 0 ? before : after) * (ahead ? 1 : behindWeight);
}

} // namespace

std::size_t byteCount(const VideoFrame& frame) {
    std::size_t bytes = 0;
    for (std::size_t plane = 0; plane < frame.planes.size(); ++plane)
        bytes += static_cast<std::size_t>(std::abs(frame.planes[plane].stride)) *
                 static_cast<std::size_t>(planeHeight(frame.layout, frame.height, plane));
    return bytes;
}

bool FrameCache::insert(MediumId medium, const SpannedFrame& frame, const Playhead& playhead) {
    // Frames are freed after the lock has been left.
    std::vector<Entry> dropped;
    const std::scoped_lock guard(lock_);
    const Key key{medium, frame.from};
    auto& entry = entries_[key];
    bytes_ -= entry.bytes;
    dropped.push_back(std::exchange(entry, Entry{frame, byteCount(frame.frame)}));
    bytes_ += entry.bytes;

    bool kept = true;
    while (bytes_ > budget_ && entries_.size() > 1) {
        auto farthest = entries_.end();
        double most = 0;
        for (auto it = entries_.begin(); it != entries_.end(); ++it) {
            const double here = distance(it->first.first, it->second.frame, playhead);
            if (here <= most) continue;
            most = here;
            farthest = it;
        }
        if (farthest == entries_.end()) break;
        if (farthest->first == key) kept = false;
        bytes_ -= farthest->second.bytes;
        dropped.push_back(std::move(farthest->second));
        entries_.erase(farthest);
        if (!kept) break;
    }
    return kept;
}

FrameCache::Entries::const_iterator FrameCache::covering(MediumId medium, double time) const {
    auto it = entries_.upper_bound({medium, time + frameReachedGraceSeconds});
    if (it == entries_.begin()) return entries_.end();
    --it;
    const bool covers = it->first.first == medium && time + frameReachedGraceSeconds < it->second.frame.end;
    return covers ? it : entries_.end();
}

std::optional<SpannedFrame> FrameCache::find(MediumId medium, double time) const {
    const std::scoped_lock guard(lock_);
    const auto it = covering(medium, time);
    return it == entries_.end() ? std::nullopt : std::optional(it->second.frame);
}

double FrameCache::coveredUntil(MediumId medium, double time, int direction, double limit) const {
    const std::scoped_lock guard(lock_);
    auto it = covering(medium, time);
    double reached = time;
    while (it != entries_.end() && it->first.first == medium) {
        const SpannedFrame& frame = it->second.frame;
        if (direction > 0) {
            if (frame.from > reached + frameReachedGraceSeconds) break;
            reached = frame.end;
            if (reached >= limit) return limit;
            ++it;
        } else {
            if (frame.end + frameReachedGraceSeconds < reached) break;
            reached = frame.from;
            if (reached <= limit) return limit;
            if (it == entries_.begin()) break;
            --it;
        }
    }
    return reached;
}

void FrameCache::clear() {
    Entries dropped;
    const std::scoped_lock guard(lock_);
    dropped.swap(entries_);
    bytes_ = 0;
}

std::size_t FrameCache::bytes() const {
    const std::scoped_lock guard(lock_);
    return bytes_;
}

} // namespace flowtide
