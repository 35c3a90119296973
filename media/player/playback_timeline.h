// Where the playhead is, as a function of a clock.
#pragma once

#include "core/time.h"

namespace flowtide {

/// The fastest that a player plays, in either direction.
constexpr double highestPlaybackRate = 8;
/// A rate that can be played: within ± highestPlaybackRate; 0 for what is no number.
double playableRate(double rate);

/// A playhead that moves evenly from an anchor, between 0 and the output's duration. `clock` arguments are seconds of
/// one PlaybackClock; they may lie before the anchor.
class PlaybackTimeline {
public:
    PlaybackTimeline() = default;
    /// Stands at 0. `duration` is in output seconds.
    explicit PlaybackTimeline(double duration);

    double duration() const { return duration_; }
    /// Output seconds per clock second; negative backwards, 0 at rest.
    double rate() const { return rate_; }
    OutputSeconds position(double clock) const;
    /// The limit in the direction of play has been reached. Never at rest.
    bool ended(double clock) const;

    /// Goes on from where the playhead is at `clock`.
    void setRate(double rate, double clock);
    /// Jumps, the rate unchanged.
    void moveTo(OutputSeconds position, double clock);

    friend bool operator==(const PlaybackTimeline&, const PlaybackTimeline&) = default;

private:
    double duration_ = 0;
    double anchor_ = 0; ///< output seconds at anchorClock_
    double anchorClock_ = 0;
    double rate_ = 0;
};

} // namespace flowtide
