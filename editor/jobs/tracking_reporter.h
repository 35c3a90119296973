// Makes of what a tracking tells of every frame what a session is told.
#pragma once

#include "editor/jobs/session_media.h"
#include "media/tracking/subject_tracking_engine.h"
#include "media/tracking/tracking_preview.h"

#include <functional>
#include <limits>

namespace flowtide {

/// Shares and samples as they come, pictures no faster than they can be followed. One thread at a time.
class TrackingReporter {
public:
    static constexpr double pictureIntervalSeconds = 1.0 / 12; ///< at least, between two pictures

    /// `now`: seconds of a steady clock.
    TrackingReporter(const ImportedClip& clip, std::function<void(TrackingProgress)> onProgress,
                     std::function<double()> now);

    /// For the tracking; not to be called once this is gone.
    SubjectTrackingCallbacks callbacks();

private:
    void look(const tracking::TimedPicture& picture, const std::optional<SubjectBox>& box);
    void report();

    std::function<void(TrackingProgress)> onProgress_;
    std::function<double()> now_;
    tracking::TrackingPreview preview_;
    TrackingProgress latest_;                                   ///< what has not been told yet
    double shownAt_ = -std::numeric_limits<double>::infinity(); ///< of now()
};

} // namespace flowtide
