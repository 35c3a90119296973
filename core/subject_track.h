// What tracking a subject found, and what is made of it: tracked stretches and the crop's keyframes.
#pragma once

#include "core/speed_keyframe.h"
#include "core/subject_tracking_range.h"
#include "core/time.h"

#include <vector>

namespace flowtide {

struct SubjectTrackResult {
    /// The subject in one frame.
    struct Sample {
        double time = 0;    ///< source seconds
        double centerX = 0; ///< horizontal centre, 0...1 of the displayed frame's width
        friend bool operator==(const Sample&, const Sample&) = default;
    };

    std::vector<Sample> samples;    ///< in time order, no two at one time
    std::vector<double> lostFrames; ///< times of the frames that were searched without finding the subject, in order
    bool lostSubject = false;       ///< tracking gave up, on either side
    bool lostBeforeSeed = false;    ///< the subject was not found again towards the range's start
    bool lostAfterSeed = false;     ///< likewise towards its end

    /// A framing curve of few points that keeps the subject in the crop. `cropFraction`: the crop's width as a share of
    /// the frame's; from 1 on there is no travel, and the crop stays centred. `tolerance`: how far beside the crop's
    /// centre the subject may be, as a share of the crop's width (½: at its edge). `radius`: seconds before and after a
    /// sample that its place in the crop is to suit as well; the larger, the calmer. Empty without samples.
    SpeedKeyframes keyframes(double cropFraction, double tolerance = calmTolerance, double radius = calmRadius) const;

    /// The stretches that were tracked, inside `within`. One ends where two samples lie more than 1.5 frame durations
    /// (seconds) apart; the subject was lost there if it was looked for in between. None is empty.
    std::vector<SubjectTrackingRange> trackedRanges(double frameDuration, SourceRange within) const;

    /// Between these the subject has room to move without the crop following, and the points are few: about one every
    /// three seconds on what people film.
    static constexpr double calmTolerance = 0.25;
    static constexpr double calmRadius = 0.4; ///< s

    friend bool operator==(const SubjectTrackResult&, const SubjectTrackResult&) = default;
};

} // namespace flowtide
