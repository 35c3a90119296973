// An entry of the list of recent projects.
#pragma once

#include "core/uuid.h"
#include "project/files/url.h"
#include "project/reference_date.h"

#include <string>
#include <vector>

namespace flowtide {

/// What the projects sidebar shows of a project, without opening it.
struct RecentProject {
    Uuid id;                 ///< the project's
    std::string name;        ///< the clip's file name
    Url projectURL;          ///< the project's file
    std::string fingerprint; ///< the clip's
    ReferenceDate savedAt;
    friend bool operator==(const RecentProject&, const RecentProject&) = default;
};

using RecentProjects = std::vector<RecentProject>; ///< newest addition first

} // namespace flowtide
