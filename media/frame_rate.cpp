// Finds the interval that most of a track's samples have.
#include "media/frame_rate.h"

#include <algorithm>
#include <cmath>

namespace flowtide {

namespace {

// A frame that is a tenth early or late still belongs to the rate of the others.
constexpr double rateTolerance = 0.1;

// Rounding to ticks makes neighbours of one interval; below this many ticks the next one could be another rate.
constexpr double fewestTicks = 4;

/// A hostile file's times can be anything: unsigned differences wrap instead of overflowing.
std::uint64_t difference(std::int64_t later, std::int64_t earlier) {
    return static_cast<std::uint64_t>(later) - static_cast<std::uint64_t>(earlier);
}

std::vector<std::uint64_t> sortedIntervals(std::span<const std::int64_t> times) {
    std::vector<std::uint64_t> intervals;
    for (std::size_t i = 1; i < times.size(); ++i)
        intervals.push_back(difference(times[i], times[i - 1]));
    std::sort(intervals.begin(), intervals.end());
    return intervals;
}

std::uint64_t mostFrequent(std::span<const std::uint64_t> sorted) {
    std::uint64_t best = 0;
    std::ptrdiff_t bestCount = 0;
    for (auto begin = sorted.begin(); begin != sorted.end();) {
        const auto end = std::upper_bound(begin, sorted.end(), *begin);
        if (*begin > 0 && end - begin > bestCount) {
            best = *begin;
            bestCount = end - begin;
        }
        begin = end;
    }
    return best;
}

} // namespace

std::optional<std::int64_t> constantSampleInterval(std::span<const std::int64_t> times) {
    const auto intervals = sortedIntervals(times);
    if (intervals.empty() || intervals.front() != intervals.back() || intervals.front() == 0) return std::nullopt;
    return static_cast<std::int64_t>(intervals.front());
}

std::optional<double> nominalSampleInterval(std::span<const std::int64_t> times) {
    const auto intervals = sortedIntervals(times);
    if (intervals.empty() || intervals.back() == 0) return std::nullopt;
    const double average =
        static_cast<double>(difference(times.back(), times.front())) / static_cast<double>(intervals.size());
    const auto frequent = static_cast<double>(mostFrequent(intervals));
    const double reach = std::max(frequent * rateTolerance, frequent >= fewestTicks ? 1.0 : 0.0);
    double sum = 0;
    std::size_t count = 0;
    for (const std::uint64_t interval : intervals)
        if (std::abs(static_cast<double>(interval) - frequent) <= reach) {
            sum += static_cast<double>(interval);
            ++count;
        }
    return 2 * count >= intervals.size() ? sum / static_cast<double>(count) : average;
}

} // namespace flowtide
