// When the samples of a track are shown, without decoding them.
#pragma once

#include "media/ffmpeg/handles.h"
#include "media/frame_rate.h"

#include <filesystem>

namespace flowtide::ffmpeg {

/// The times of the samples that are shown of a track, in ticks of its time base, in rising order: from the file's
/// index, or, where that does not reach the track's end (fragmented files list only the fragments read so far), from
/// its packets. An index holds decode times; for reordered pictures their intervals are those of the presentation.
SampleTimes sampleTimes(const std::filesystem::path& path, AVStream& stream);

} // namespace flowtide::ffmpeg
