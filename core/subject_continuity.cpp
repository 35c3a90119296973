// The limits of a plausible step. They were chosen by people for subjects that people film; nothing follows from them.
#include "core/subject_continuity.h"

#include <algorithm>
#include <cmath>

namespace flowtide {

namespace {

constexpr double frameMargin = 0.02; ///< how far a box may reach out of the frame
constexpr double leastGrowth = 0.45; ///< of the area, from box to box
constexpr double mostGrowth = 2.2;
constexpr double smallestArea = 1e-6;      ///< against a division by zero
constexpr double shortestInterval = 0.001; ///< s
constexpr double velocityGain = 0.35;

/// How far the midpoint may lie beside where it was expected, along one axis.
struct Reach {
    double perSecond; ///< frame fractions
    double most;      ///< by time
    double ofBox;     ///< shares of the box's side, in addition
    double leastOfBox;
};
constexpr Reach across{0.8, 0.12, 0.7, 0.025};
constexpr Reach along{1.5, 0.2, 0.55, 0.035};

bool isWithin(const Reach& reach, double side, double interval, double distance) {
    return std::abs(distance) <=
           std::min(interval * reach.perSecond, reach.most) + std::max(side * reach.ofBox, reach.leastOfBox);
}

bool isSound(const SubjectBox& box) {
    return box.width > smallestSubject && box.height > smallestSubject && box.x >= -frameMargin &&
           box.y >= -frameMargin && box.maxX() <= 1 + frameMargin && box.maxY() <= 1 + frameMargin;
}

double intervalBetween(double time, double earlier) {
    return std::max(std::abs(time - earlier), shortestInterval);
}

} // namespace

bool SubjectTrackingContinuity::isPlausible(const SubjectBox& bounds, double time) const {
    if (!box_) return true;
    const double growth = bounds.area() / std::max(box_->area(), smallestArea);
    if (!(growth >= leastGrowth && growth <= mostGrowth)) return false;
    const double interval = intervalBetween(time, time_);
    return isWithin(across, box_->width, interval, bounds.midX() - (box_->midX() + interval * velocityX_)) &&
           isWithin(along, box_->height, interval, bounds.midY() - (box_->midY() + interval * velocityY_));
}

bool SubjectTrackingContinuity::accept(const std::optional<SubjectBox>& bounds, float confidence, double time) {
    if (!bounds || !isSound(*bounds) || !(confidence >= lowestConfidence) || !isPlausible(*bounds, time)) {
        if (isFollowing_) lostTime_ = time;
        isFollowing_ = false;
        return false;
    }
    if (box_) {
        const double interval = intervalBetween(time, time_);
        const auto updated = [&](double velocity, double distance) {
            return (1 - velocityGain) * velocity + velocityGain * distance / interval;
        };
        velocityX_ = updated(velocityX_, bounds->midX() - box_->midX());
        velocityY_ = updated(velocityY_, bounds->midY() - box_->midY());
    }
    box_ = bounds;
    time_ = time;
    lostTime_ = 0;
    isFollowing_ = true;
    return true;
}

} // namespace flowtide
