// What a tracking job says to people.
#pragma once

#include "core/subject_track.h"

#include <cstddef>
#include <string>

namespace flowtide::tracking {

constexpr const char* following = "Following the subject…";
constexpr const char* looking = "Looking for the subject…";

/// How a job ended that left so many framing keyframes.
std::string finishedMessage(const SubjectTrackResult& result, std::size_t keyframeCount);

} // namespace flowtide::tracking
