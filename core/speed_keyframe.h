// The point record that both the speed curve and the framing curve are made of.
#pragma once

#include "core/uuid.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace flowtide {

/// What a keyframe is for: a user's point, or the speed at a trim point.
enum class SpeedKeyframeRole { curve, trimStart, trimEnd };

/// The role's stored name: "curve", "trimStart" or "trimEnd".
constexpr std::string_view rawValue(SpeedKeyframeRole role) {
    switch (role) {
    case SpeedKeyframeRole::trimStart:
        return "trimStart";
    case SpeedKeyframeRole::trimEnd:
        return "trimEnd";
    case SpeedKeyframeRole::curve:
        break;
    }
    return "curve";
}

/// One point of a curve over source time. In a framing curve `speed` holds the crop centre, 0...1.
struct SpeedKeyframe {
    Uuid id;          ///< identity for selection, dragging and undo; survives every move
    double time = 0;  ///< seconds of the source, from the clip's start
    double speed = 1; ///< playback speed at `time`, realTimeSpeed as recorded
    SpeedKeyframeRole role = SpeedKeyframeRole::curve;

    friend bool operator==(const SpeedKeyframe&, const SpeedKeyframe&) = default;
};

using SpeedKeyframes = std::vector<SpeedKeyframe>;

constexpr double realTimeSpeed = 1;
constexpr double lowestSpeed = 0.01;          ///< speeds are raised to it when read from text and when integrated
constexpr double highestSpeed = 100.0;        ///< and lowered to it
constexpr std::size_t mostKeyframes = 19'999; ///< of one stored curve

} // namespace flowtide
