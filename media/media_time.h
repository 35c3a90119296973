// Exact media times: frame intervals and time bases as fractions of seconds.
#pragma once

#include <cstdint>

namespace flowtide {

/// A rational number of seconds (or of any unit per second), always in lowest terms with a positive denominator.
struct MediaTime {
    std::int64_t numerator = 0;
    std::int64_t denominator = 1;

    /// Reduces; a denominator of 0 gives 0.
    static MediaTime reduced(std::int64_t numerator, std::int64_t denominator);

    double seconds() const { return static_cast<double>(numerator) / static_cast<double>(denominator); }
    /// `count` times this, in seconds, rounded once: frame i starts exactly here however large i is.
    double secondsTimes(std::int64_t count) const;

    friend bool operator==(const MediaTime&, const MediaTime&) = default;
};

/// The frame interval that a nominal rate stands for: 1001/30000 for 29.97, 1/25 for 25, 100/1250 reduced for 12.5.
MediaTime nominalFrameDuration(double frameRate);

/// How far, in frames per second, two rates may lie apart and still be the same: an export's and its source's, a
/// track's nominal one and that of its sample interval, an average and the standard rate that it means.
constexpr double frameRateTolerance = 0.01;

/// How many frames an output of `outputDuration` seconds has: at least 1.
std::int64_t outputFrameCount(double outputDuration, MediaTime frameDuration);

/// A source time that is computed through the time map comes out up to 1e-12 s below the frame that it means; a frame
/// that starts within this many seconds after it counts as reached.
constexpr double frameReachedGraceSeconds = 1e-6;

} // namespace flowtide
