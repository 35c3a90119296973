// What of a source an export does not keep: told, since the result stays as it is.
#pragma once

#include "media/imported_clip.h"
#include "media/media_io.h"

#include <optional>
#include <string>
#include <vector>

namespace flowtide {

/// One sentence for each thing that the source has and its export will not, in the order of the file's parts: codec,
/// pictures, sound, further streams.
std::vector<std::string> exportWarnings(const ImportedClip& source, const VideoSettings& video,
                                        const std::optional<AudioSettings>& audio);

} // namespace flowtide
