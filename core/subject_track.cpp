// Cuts samples into tracked stretches.
#include "core/subject_track.h"

#include <algorithm>

namespace flowtide {

namespace {

constexpr double longestStep = 1.5; ///< frame durations between two samples of one stretch

} // namespace

std::vector<SubjectTrackingRange> SubjectTrackResult::trackedRanges(double frameDuration, SourceRange within) const {
    const auto wasLostBetween = [&](double from, double to) {
        const auto found = std::upper_bound(lostFrames.begin(), lostFrames.end(), from);
        return found != lostFrames.end() && *found < to;
    };
    std::vector<SubjectTrackingRange> ranges;
    const Sample* last = nullptr;
    for (const Sample& sample : samples) {
        if (sample.time < within.lower || sample.time > within.upper) continue;
        const bool isContinued = last && sample.time - last->time <= longestStep * frameDuration;
        if (!isContinued) {
            const bool wasLost =
                last ? wasLostBetween(last->time, sample.time) : lostBeforeSeed && sample == samples.front();
            if (last) ranges.back().lostAfter = wasLost;
            ranges.push_back({.id = Uuid::random(), .start = sample.time, .lostBefore = wasLost});
        }
        ranges.back().end = std::min(sample.time + frameDuration, within.upper);
        ranges.back().lastFrameTime = sample.time;
        last = &sample;
    }
    if (last) ranges.back().lostAfter = lostAfterSeed && *last == samples.back();
    // A frame that is first shown where `within` ends is not shown in it.
    std::erase_if(ranges, [](const SubjectTrackingRange& range) { return !(range.start < range.end); });
    return ranges;
}

} // namespace flowtide
