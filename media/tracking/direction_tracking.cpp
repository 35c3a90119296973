// The states of following and looking.
#include "media/tracking/direction_tracking.h"

#include "media/tracking/subject_search.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace flowtide::tracking {

namespace {

constexpr int snapshotInterval = 5; ///< accepted frames
// What was learnt in the last frames before a loss may be what hid the subject.
constexpr std::size_t snapshotCount = 3;
constexpr std::size_t agreeingFrames = 3;
constexpr double longestSearch = 4; ///< s

/// The part of a box inside the frame.
SubjectBox insideFrame(const SubjectBox& box) {
    const double left = std::clamp(box.x, 0.0, 1.0);
    const double top = std::clamp(box.y, 0.0, 1.0);
    return {left, top, std::clamp(box.maxX(), 0.0, 1.0) - left, std::clamp(box.maxY(), 0.0, 1.0) - top};
}

} // namespace

DirectionTracking::DirectionTracking(std::unique_ptr<ObjectTracker> tracker, const SubjectBox& seedBox, double time)
    : tracker_(std::move(tracker))
    , box_(seedBox)
    , lastTime_(time) {
    continuity_.accept(insideFrame(seedBox), 1, time);
    snapshots_.push_back(tracker_->copy());
}

bool DirectionTracking::follow(const SubjectPicture& picture, double time) {
    if (lost_) {
        look(picture, time);
        return !lost_ || std::abs(time - lost_->time) <= longestSearch;
    }
    const TrackedObject object = tracker_->locate(picture, box_, TrackingLevel::fast);
    if (continuity_.accept(insideFrame(object.box), static_cast<float>(object.confidence), time)) {
        keep(picture, object, time);
        return true;
    }
    lose();
    look(picture, time);
    return true;
}

void DirectionTracking::keep(const SubjectPicture& picture, const TrackedObject& object, double time) {
    tracker_->learn(picture, object);
    sightings_.push_back({time, insideFrame(object.box)});
    box_ = object.box;
    lastTime_ = time;
    if (++sinceSnapshot_ < snapshotInterval) return;
    sinceSnapshot_ = 0;
    snapshots_.push_back(tracker_->copy());
    if (snapshots_.size() > snapshotCount) snapshots_.pop_front();
}

void DirectionTracking::lose() {
    // The filter's velocity is per second of absolute time; walking adds no sign of its own.
    lost_ = Loss{box_, lastTime_, continuity_.velocityX(), continuity_.velocityY()};
    tracker_ = snapshots_.front()->copy();
    candidateSightings_.clear();
}

void DirectionTracking::look(const SubjectPicture& picture, double time) {
    LostSubject subject{lost_->box, lost_->velocityX, lost_->velocityY, std::abs(time - lost_->time), std::nullopt};
    if (!candidates_.empty()) subject.candidate = candidates_.back().box;
    lostFrames_.push_back(time);
    const auto found = findAgain(*tracker_, picture, subject);
    if (!found) {
        candidates_.clear();
        candidateSightings_.clear();
        return;
    }
    const SubjectBox visible = insideFrame(found->box);
    const auto confidence = static_cast<float>(found->confidence);
    if (candidates_.empty() || !candidateContinuity_.accept(visible, confidence, time)) {
        candidates_.clear();
        candidateSightings_.clear();
        candidateContinuity_ = {};
        if (!candidateContinuity_.accept(visible, confidence, time)) return;
    }
    candidates_.push_back(*found);
    candidateSightings_.push_back({time, visible});
    if (candidates_.size() < agreeingFrames) return;

    // The frames that led here showed it too.
    lostFrames_.resize(lostFrames_.size() - candidates_.size());
    candidateSightings_.pop_back();
    sightings_.insert(sightings_.end(), candidateSightings_.begin(), candidateSightings_.end());
    continuity_ = candidateContinuity_;
    lost_.reset();
    candidates_.clear();
    candidateSightings_.clear();
    snapshots_.clear();
    snapshots_.push_back(tracker_->copy());
    sinceSnapshot_ = 0;
    keep(picture, *found, time);
}

} // namespace flowtide::tracking
