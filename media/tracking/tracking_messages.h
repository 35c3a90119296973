// What a tracking job says to people.
#pragma once

#include "core/subject_track.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace flowtide::tracking {

constexpr const char* following = "Following the subject…";
constexpr const char* looking = "Looking for the subject…";

/// Whether nothing was found but what was drawn.
bool isSeedAlone(const SubjectTrackResult& result);

/// How a job ended that left so many framing keyframes; `undoKeys` as the platform writes them.
std::string finishedMessage(const SubjectTrackResult& result, std::size_t keyframeCount, std::string_view undoKeys);

} // namespace flowtide::tracking
