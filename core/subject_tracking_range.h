// A stretch of the clip whose framing came from tracking a subject.
#pragma once

#include "core/uuid.h"

#include <cstddef>

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
    friend bool operator==(const SubjectTrackingRange&, const SubjectTrackingRange&) = default;
};

} // namespace flowtide
