// Finds a lost subject again in one picture.
#pragma once

#include "core/subject_box.h"
#include "media/tracking/object_tracker.h"

#include <optional>
#include <vector>

namespace flowtide::tracking {

/// What is known of a subject when it is looked for.
struct LostSubject {
    SubjectBox lastBox;                  ///< the last accepted one
    double velocityX = 0;                ///< then, in frame widths per second of walking
    double velocityY = 0;                ///< frame heights
    double lostSeconds = 0;              ///< since then
    std::optional<SubjectBox> candidate; ///< what the picture before showed
};

/// The place in the picture that may be taken for the subject, judged by the tracker as it was before the loss.
std::optional<TrackedObject> findAgain(ObjectTracker& tracker, const SubjectPicture& picture, const LostSubject& lost);

} // namespace flowtide::tracking
