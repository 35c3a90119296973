// Project documents and the library's index as JSON text, in the form that every build of the system shares: sorted
// keys, upper-case UUIDs, dates in seconds since 2001, percent-encoded file URLs, Base64.
#pragma once

#include "project/flowtide_project.h"
#include "project/recent_project.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace flowtide {

constexpr std::size_t maximumProjectBytes = 16'777'216; ///< larger documents are neither written nor read
constexpr std::size_t maximumRecentIndexBytes = 1'048'576;

/// Validates and writes. Throws ProjectError for a broken rule, and for a document that would be too large to read.
std::string encodeProject(const FlowtideProject& project);
/// Reads and validates. Throws ProjectError.
FlowtideProject decodeProject(std::string_view text);

/// Throws ProjectError when a date is not finite.
std::string encodeRecentProjects(const RecentProjects& projects);
/// Throws ProjectError.
RecentProjects decodeRecentProjects(std::string_view text);

} // namespace flowtide
