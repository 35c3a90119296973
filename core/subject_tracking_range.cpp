// Joins tracked stretches.
#include "core/subject_tracking_range.h"

#include <algorithm>
#include <cmath>

namespace flowtide {

namespace {

constexpr double sameTime = 1e-6; ///< s

bool isSame(double a, double b) {
    return std::abs(a - b) <= sameTime;
}

} // namespace

std::vector<SubjectTrackingRange> SubjectTrackingRange::merged(std::vector<SubjectTrackingRange> ranges) {
    std::stable_sort(ranges.begin(), ranges.end(), [](const auto& a, const auto& b) { return a.start < b.start; });
    std::vector<SubjectTrackingRange> result;
    for (const SubjectTrackingRange& range : ranges) {
        if (result.empty() || range.start > result.back().end + sameTime) {
            result.push_back(range);
            continue;
        }
        SubjectTrackingRange& last = result.back();
        if (isSame(range.start, last.start)) last.lostBefore = last.lostBefore && range.lostBefore;
        if (isSame(range.end, last.end)) {
            last.lostAfter = last.lostAfter && range.lostAfter;
            last.lastFrameTime = std::max(last.lastFrameTime, range.lastFrameTime);
        } else if (range.end > last.end) {
            last.end = range.end;
            last.lostAfter = range.lostAfter;
            last.lastFrameTime = range.lastFrameTime;
        }
    }
    return result;
}

} // namespace flowtide
