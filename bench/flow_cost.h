// What in-between frames cost at 1080p.
#pragma once

#include "media/media_io.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace flowtide::bench {

/// Prints CPU and wall time for a pair with its first in-between frame and for each further one, and the peak memory of
/// each method, beside minterpolate in its best and its fast mode. Does nothing where the clip is missing.
void printFlowCosts(const MediaBackend& backend, const std::filesystem::path& folder);

/// For the copies of this program that printFlowCosts starts to see how much memory they take: does their work when
/// `arguments` are theirs and gives the exit status.
std::optional<int> runAsMemoryProbe(const std::vector<std::string>& arguments);

} // namespace flowtide::bench
