// How to get at a frame that is missing: by decoding on, or by way of a key frame.
#pragma once

#include <functional>
#include <optional>

namespace flowtide {

/// A stretch of a medium that is not decoded yet, in seconds of its file.
struct MissingStretch {
    double time = 0;   ///< going forwards its first moment, going backwards its end: what is needed soonest
    int direction = 1; ///< of play: 1 or -1
    double reach = 0;  ///< how many seconds to decode at once when going backwards
    double floor = 0;  ///< going backwards, nothing before this is needed
};

struct DecodePlan {
    bool seeks = false; ///< go to the key frame at or before `from` first
    double from = 0;    ///< the first moment that is wanted; frames before it are passed through
};

/// The plan for a reader that stands at `position` (the end of the frame that it delivered last; nothing when it has
/// delivered none). `keyFrameAt` gives the time of the last key frame at or before a time. Going backwards a stretch is
/// decoded forwards, since frames can be decoded no other way.
DecodePlan planDecode(const MissingStretch& missing, std::optional<double> position,
                      const std::function<double(double)>& keyFrameAt);

} // namespace flowtide
