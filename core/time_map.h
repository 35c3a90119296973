// The table between source and output time; every retimed frame and sample goes through it.
#pragma once

#include "core/time.h"

#include <cstddef>
#include <vector>

namespace flowtide {

/// Samples of the retiming, strictly increasing in `source`, non-decreasing in `output`, the first output 0.
/// Immutable once built (by CurveEngine::buildTimeMap or sliced()).
class TimeMap {
public:
    /// One row; its fields name their time base.
    struct Entry {
        double source; ///< source seconds
        double output; ///< output seconds
        friend bool operator==(const Entry&, const Entry&) = default;
    };

    TimeMap() = default;
    TimeMap(std::vector<Entry> entries, SourceRange sourceRange, double outputDuration);

    const std::vector<Entry>& entries() const { return entries_; }
    /// The trimmed part of the clip that the map covers.
    SourceRange sourceRange() const { return sourceRange_; }
    /// Output length in seconds: the last entry's output.
    double outputDuration() const { return outputDuration_; }

    /// Output time of a source time; times outside the range are clamped into it. O(log n).
    OutputSeconds outputTime(SourceSeconds source) const;
    /// Source time of an output time, clamped into [0, outputDuration]. O(log n).
    SourceSeconds sourceTime(OutputSeconds output) const;
    /// The same for loops that walk through output time; `cursor` starts at 0. Amortised constant time when it grows.
    SourceSeconds sourceTime(OutputSeconds output, std::size_t& cursor) const;
    /// Source time of `output` on the stretch that begins at entry `index` (a valid index).
    SourceSeconds interpolatedSource(std::size_t index, OutputSeconds output) const;
    /// The part of the map for a range of source time, its output starting at 0; timing agrees with the whole map.
    TimeMap sliced(SourceRange range) const;

    friend bool operator==(const TimeMap&, const TimeMap&) = default;

private:
    std::vector<Entry> entries_;
    SourceRange sourceRange_;
    double outputDuration_ = 0;
};

} // namespace flowtide
