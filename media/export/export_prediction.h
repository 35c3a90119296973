// What the written file of an export will be like, so that a mismatch is known before hours of rendering.
#pragma once

#include "core/output_size.h"
#include "media/imported_clip.h"
#include "media/media_io.h"

#include <cstdint>
#include <optional>

namespace flowtide {

/// The record that a probe of the finished movie will give, as far as verification looks at it.
ImportedClip predictedOutput(const VideoSettings& video, const std::optional<AudioSettings>& audio,
                             OutputSize displaySize, std::int64_t frameCount, FileType fileType);

} // namespace flowtide
