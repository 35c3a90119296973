// "Flowtide demo": something to look at with nothing at hand.
#pragma once

#include "cli/console.h"
#include "media/media_io.h"

#include <filesystem>

namespace flowtide {

/// Makes a short clip in `folder`, exports it with a speed ramp beside it and says where both are. Returns the exit
/// status.
int runDemo(const std::filesystem::path& folder, const MediaBackend& backend, const Console& console);

} // namespace flowtide
