// Following a subject from its seed in one direction: kept, lost, picked up again, given up.
#pragma once

#include "core/subject_box.h"
#include "core/subject_continuity.h"
#include "media/tracking/object_tracker.h"
#include "media/tracking/subject_picture.h"

#include <deque>
#include <memory>
#include <optional>
#include <vector>

namespace flowtide::tracking {

/// The subject in one frame.
struct Sighting {
    double time = 0; ///< source seconds
    SubjectBox box;  ///< inside the frame
    friend bool operator==(const Sighting&, const Sighting&) = default;
};

/// One direction's state. Pictures come in the order of walking, away from the seed.
class DirectionTracking {
public:
    /// Starts from a tracker that knows the subject and its box in the frame at `time`.
    DirectionTracking(std::unique_ptr<ObjectTracker> tracker, const SubjectBox& seedBox, double time);

    /// Looks at the next picture. False once the subject has been looked for too long.
    bool follow(const SubjectPicture& picture, double time);

    const std::vector<Sighting>& sightings() const { return sightings_; } ///< without the seed, as they were made
    const std::vector<double>& lostFrames() const { return lostFrames_; } ///< times of the frames without a sighting
    bool isLooking() const { return lost_.has_value(); }

private:
    struct Loss {
        SubjectBox box;
        double time;
        double velocityX; ///< per second of walking
        double velocityY;
    };

    void keep(const SubjectPicture& picture, const TrackedObject& object, double time);
    void lose();
    void look(const SubjectPicture& picture, double time);

    std::unique_ptr<ObjectTracker> tracker_;
    std::deque<std::unique_ptr<ObjectTracker>> snapshots_; ///< oldest first
    int sinceSnapshot_ = 0;
    SubjectTrackingContinuity continuity_;
    SubjectBox box_; ///< the last accepted one; may reach out of the frame
    double lastTime_;
    std::optional<Loss> lost_;
    std::vector<TrackedObject> candidates_; ///< of the last pictures, one each, that agree with each other
    SubjectTrackingContinuity candidateContinuity_;
    std::vector<Sighting> candidateSightings_;
    std::vector<Sighting> sightings_;
    std::vector<double> lostFrames_;
};

} // namespace flowtide::tracking
