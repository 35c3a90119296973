// HDR mastering and light-level data across the libav boundary.
#pragma once

#include "media/ffmpeg/handles.h"
#include "media/imported_clip.h"

#include <string>

namespace flowtide::ffmpeg {

/// Takes what the container says of a stream; for PQ material that says it in its pictures, of the first picture.
void readHDRMetadata(AVStream& stream, CarriedMetadata& metadata);

/// Attaches the data to an output stream, for the container.
void attachHDRMetadata(AVStream& stream, const CarriedMetadata& metadata);

/// The data as parameters of the HEVC encoder, ":"-separated; empty without any.
std::string hevcHDRParameters(const CarriedMetadata& metadata);

} // namespace flowtide::ffmpeg
