// HDR mastering and light-level data across the libav boundary.
#pragma once

#include "media/ffmpeg/handles.h"
#include "media/imported_clip.h"

#include <filesystem>
#include <string>

namespace flowtide::ffmpeg {

/// Takes what the container says of a stream.
void readHDRMetadata(AVStream& stream, CarriedMetadata& metadata);

/// Adds what only the pictures of a movie say, as its first one has it: mastering display and light level where the
/// container names none, and whether there is data that no export carries. A picture that does not decode adds nothing.
void readHDRMetadataOfFirstPicture(const std::filesystem::path& path, VideoTrack& track, CarriedMetadata& metadata);

/// Attaches the data to an output stream, for the container.
void attachHDRMetadata(AVStream& stream, const CarriedMetadata& metadata);

/// The data as parameters of the HEVC encoder, ":"-separated; empty without any.
std::string hevcHDRParameters(const CarriedMetadata& metadata);

} // namespace flowtide::ffmpeg
