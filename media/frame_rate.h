// A track's nominal frame rate, from the times of its samples.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace flowtide {

/// The presentation times of a track's samples, in ticks of its time base, in rising order.
using SampleTimes = std::vector<std::int64_t>;

/// The distance of the samples when it never varies, in ticks; nothing below two samples. The last sample's own length
/// counts for nothing: writers often make it up.
std::optional<std::int64_t> constantSampleInterval(std::span<const std::int64_t> times);

/// The interval that stands for the track's rate, in ticks: the most frequent one, when at least half of all samples
/// have it within a tenth, else the average. Since clocks jitter and ticks round, it is the mean of those within the
/// tenth; where the interval is constant, that one. Nothing when the times tell none.
std::optional<double> nominalSampleInterval(std::span<const std::int64_t> times);

} // namespace flowtide
