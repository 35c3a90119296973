// Searches the table between source and output time by bisection, and interpolates it linearly.
#include "core/time_map.h"

#include "core/clamp.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace flowtide {
namespace {

/// The index of the stretch that holds `time`: the last entry but the final one whose `field` is not above it.
std::size_t stretchAt(const std::vector<TimeMap::Entry>& entries, double TimeMap::Entry::*field, double time) {
    std::size_t lower = 0;
    std::size_t upper = entries.size() - 1;
    while (lower + 1 < upper) {
        const std::size_t middle = (lower + upper) / 2;
        (entries[middle].*field <= time ? lower : upper) = middle;
    }
    return lower;
}

double interpolated(double x, double x0, double x1, double y0, double y1) {
    if (x0 == x1) return y0;
    return y0 + (x - x0) / (x1 - x0) * (y1 - y0);
}

} // namespace

TimeMap::TimeMap(std::vector<Entry> entries, SourceRange sourceRange, double outputDuration)
    : entries_(std::move(entries))
    , sourceRange_(sourceRange)
    , outputDuration_(outputDuration) {}

OutputSeconds TimeMap::outputTime(SourceSeconds source) const {
    if (entries_.empty()) return {};
    const double time = clamped(source.value, sourceRange_.lower, sourceRange_.upper);
    const std::size_t index = stretchAt(entries_, &Entry::source, time);
    const Entry& from = entries_[index];
    const Entry& to = entries_[std::min(index + 1, entries_.size() - 1)];
    return {interpolated(time, from.source, to.source, from.output, to.output)};
}

SourceSeconds TimeMap::sourceTime(OutputSeconds output) const {
    if (entries_.empty()) return {};
    const OutputSeconds time{clamped(output.value, 0, outputDuration_)};
    return interpolatedSource(stretchAt(entries_, &Entry::output, time.value), time);
}

SourceSeconds TimeMap::sourceTime(OutputSeconds output, std::size_t& cursor) const {
    if (entries_.empty()) return {};
    const OutputSeconds time{clamped(output.value, 0, outputDuration_)};
    const std::size_t last = entries_.size() < 2 ? 0 : entries_.size() - 2;
    std::size_t index = std::min(cursor, last);
    while (index > 0 && entries_[index].output > time.value)
        --index;
    while (index < last && entries_[index + 1].output <= time.value)
        ++index;
    cursor = index;
    return interpolatedSource(index, time);
}

SourceSeconds TimeMap::interpolatedSource(std::size_t index, OutputSeconds output) const {
    if (entries_.empty()) return {};
    const Entry& from = entries_[index];
    const Entry& to = entries_[std::min(index + 1, entries_.size() - 1)];
    return {interpolated(output.value, from.output, to.output, from.source, to.source)};
}

TimeMap TimeMap::sliced(SourceRange range) const {
    if (entries_.empty()) return {};
    const double lower = clamped(range.lower, sourceRange_.lower, sourceRange_.upper);
    const double upper = clamped(range.upper, lower, sourceRange_.upper);
    const double outputStart = outputTime({lower}).value;
    const double duration = outputTime({upper}).value - outputStart;

    const auto first = std::partition_point(entries_.begin(), entries_.end(),
                                            [lower](const Entry& entry) { return entry.source <= lower; });
    const auto last =
        std::partition_point(first, entries_.end(), [upper](const Entry& entry) { return entry.source < upper; });
    std::vector<Entry> entries;
    entries.reserve(static_cast<std::size_t>(last - first) + 2);
    entries.push_back({lower, 0});
    std::transform(first, last, std::back_inserter(entries), [outputStart](const Entry& entry) {
        return Entry{entry.source, entry.output - outputStart};
    });
    entries.push_back({upper, duration});
    return TimeMap(std::move(entries), {lower, upper}, duration);
}

} // namespace flowtide
