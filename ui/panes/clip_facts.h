// What the inspector says of a clip.
#pragma once

#include "media/imported_clip.h"

#include <QString>
#include <vector>

namespace flowtide {

struct ClipFact {
    QString name;
    QString value;
    bool isMeasured = false; ///< written in the type of measured values
};

struct ClipFactGroup {
    QString title;
    std::vector<ClipFact> facts;
};

/// Container, pictures and sound. `home`: the user's folder, which is written as "~".
std::vector<ClipFactGroup> clipFacts(const ImportedClip& clip, const std::filesystem::path& home);

/// A folder, "~" standing for the user's.
QString folderText(const std::filesystem::path& folder, const std::filesystem::path& home);

} // namespace flowtide
