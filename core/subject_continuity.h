// Whether a tracked box can be where the subject has gone.
#pragma once

#include "core/subject_box.h"

#include <optional>

namespace flowtide {

/// Judges the boxes of one tracking direction, one after the other: each must be a plausible step from the last one
/// that was accepted. Times are source seconds and may run backwards.
class SubjectTrackingContinuity {
public:
    /// Knows no box: the first one is judged by itself alone.
    SubjectTrackingContinuity() = default;

    /// Whether the box is sound, confident (0...1, at least `lowestConfidence`) and a plausible step; if so, the next
    /// one is measured against it. No box is never accepted.
    bool accept(const std::optional<SubjectBox>& bounds, float confidence, double time);

    /// The last accepted box.
    const std::optional<SubjectBox>& box() const { return box_; }
    /// When the first of the frames that were rejected since the last accepted one was seen; 0 when none was.
    double lostTime() const { return lostTime_; }
    double time() const { return time_; }           ///< of the last accepted box
    double velocityX() const { return velocityX_; } ///< of its midpoint, smoothed; frame widths per second
    double velocityY() const { return velocityY_; } ///< frame heights per second

    static constexpr float lowestConfidence = 0.35F;

private:
    bool isPlausible(const SubjectBox& bounds, double time) const;

    std::optional<SubjectBox> box_;
    double time_ = 0;
    double lostTime_ = 0;
    bool isFollowing_ = false; ///< the last box was accepted
    double velocityX_ = 0;
    double velocityY_ = 0;
};

} // namespace flowtide
