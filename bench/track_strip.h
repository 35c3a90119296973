// A picture of many frames with what was tracked in them.
#pragma once

#include "core/speed_keyframe.h"
#include "media/media_io.h"
#include "media/tracking/direction_tracking.h"

#include <filesystem>
#include <vector>

namespace flowtide::bench {

/// Writes a PPM with 24 frames of the clip in even distances, the tracked boxes in green, a red rim where there is
/// none, and the crop's edges in white. Throws FlowtideError::outputFailed when the file cannot be written.
void writeStrip(const std::filesystem::path& path, const MediaBackend& backend, const ImportedClip& clip,
                const std::vector<tracking::Sighting>& sightings, const SpeedKeyframes& keyframes, double cropFraction);

} // namespace flowtide::bench
