// The rules that fit a keyframe list to a trimmed part of the clip.
#pragma once

#include "core/speed_keyframe.h"
#include "core/time.h"

#include <optional>

namespace flowtide {

/// Orders by time; points at equal times keep their order. A time that is NaN comes last.
void sortByTime(SpeedKeyframes& keyframes);

namespace KeyframeRules {

constexpr double boundaryMatchTolerance = 0.001; ///< s; a keyframe this near to a trim point serves as that boundary
constexpr double interiorMargin = 0.001;         ///< s; how far inside the range a user's point must lie to be kept
constexpr double minimumRange = 0.000001;        ///< s; a shorter range gets no end boundary
constexpr double headlessMinimumSpacing = 0.01;  ///< s; nearer points are dropped by the command line

/// The speeds of new trim boundaries.
struct BoundaryValues {
    double start;
    double end;
};

/// The clip's length in seconds as the rules count it: 0 when it is negative or not a number that means anything.
double usableDuration(double sourceDuration);

/// The part of `range` inside the clip; empty at its start when it is inverted.
SourceRange clippedToSource(SourceRange range, double sourceDuration);

/// The curve actually used for a trimmed range: it begins exactly at the range's start and, unless the range is
/// empty, ends exactly at its end. Boundaries that no keyframe supplies get `boundaryValue`.
SpeedKeyframes curveForSourceRange(SpeedKeyframes keyframes, double sourceDuration, SourceRange sourceRange,
                                   double boundaryValue);

/// The editor's list after the trim changed: the user's points, then explicit boundary points where the clip is
/// trimmed. Not re-sorted.
SpeedKeyframes applyingTrimBoundaries(const SpeedKeyframes& keyframes, double sourceDuration, SourceRange sourceRange,
                                      double boundaryValue, std::optional<BoundaryValues> boundaryValues);

} // namespace KeyframeRules
} // namespace flowtide
