// A stretch of the clip whose framing came from tracking a subject.
#pragma once

#include "core/uuid.h"

#include <cstddef>
#include <vector>

namespace flowtide {

constexpr std::size_t mostTrackingRanges = 10'000; ///< of one project

/// Stored in projects and shown in the coverage bar; times in source seconds.
struct SubjectTrackingRange {
    Uuid id;
    double start = 0;
    double end = 0;
    bool lostBefore = false;  ///< the subject was lost at the start
    bool lostAfter = false;   ///< the subject was lost at the end
    double lastFrameTime = 0; ///< the last frame that was tracked before the loss

    /// Sorted by start, those that overlap or touch within a microsecond made one. Where both end together the subject
    /// was lost there only if it was in both; else the range that reaches farther tells.
    static std::vector<SubjectTrackingRange> merged(std::vector<SubjectTrackingRange> ranges);

    friend bool operator==(const SubjectTrackingRange&, const SubjectTrackingRange&) = default;
};

} // namespace flowtide
