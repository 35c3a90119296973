// Keeps the two workers of a render near to each other in output time.
#pragma once

#include <array>
#include <condition_variable>
#include <mutex>

namespace flowtide {

/// A muxer holds back what it cannot interleave yet, so a track that runs ahead fills memory. Each track waits here
/// while it is further ahead of the other than the slack. Thread-safe.
class InterleaveGate {
public:
    enum class Track { video, audio };

    /// `slackSeconds` of output time; a track that does not take part counts as finished.
    InterleaveGate(double slackSeconds, bool hasAudio);

    /// Says that `track` has appended everything before `outputSeconds`, then waits while it is too far ahead. Returns
    /// at once after release().
    void advance(Track track, double outputSeconds);
    /// The track has ended; the other never waits for it again.
    void finish(Track track);
    /// Lets everybody through for good: the render has failed or was cancelled.
    void release();

private:
    static std::size_t index(Track track) { return track == Track::video ? 0 : 1; }

    const double slackSeconds_;
    std::mutex lock_; ///< guards everything below
    std::condition_variable changed_;
    std::array<double, 2> reached_{};
    std::array<bool, 2> finished_{};
    bool released_ = false;
};

} // namespace flowtide
