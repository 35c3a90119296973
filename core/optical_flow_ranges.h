// Where the curve is so slow that in-between frames are needed, and the arithmetic of such range lists.
#pragma once

#include "core/speed_keyframe.h"
#include "core/time.h"
#include "core/uuid.h"

#include <cstddef>
#include <vector>

namespace flowtide {

using SourceRanges = std::vector<SourceRange>;

constexpr std::size_t mostRanges = 1'000; ///< of one list of Optical Flow or original-frame ranges

/// A range that is stored in projects and shown in the editor; `start` and `end` in source seconds.
struct OpticalFlowRange {
    Uuid id;
    double start = 0;
    double end = 0;
    friend bool operator==(const OpticalFlowRange&, const OpticalFlowRange&) = default;
};

namespace AutomaticOpticalFlow {

/// The stretches of `trim` whose speed delivers fewer than `smoothFrameRate` unique frames of a `frameRate` source per
/// output second, normalised. Empty when the rate, the duration or the trim makes no sense.
SourceRanges ranges(const SpeedKeyframes& keyframes, double smoothing, double sourceDuration, SourceRange trim,
                    double frameRate, double smoothFrameRate);

} // namespace AutomaticOpticalFlow

namespace OpticalFlowScope {

/// Clipped to `within`, sorted by start, overlapping and touching ranges merged, empty ones dropped.
SourceRanges normalized(const SourceRanges& ranges, SourceRange within);

/// Whether a time lies in one of the normalised `ranges`; a range's end is outside it.
bool contains(const SourceRanges& ranges, SourceSeconds time);

} // namespace OpticalFlowScope
} // namespace flowtide
