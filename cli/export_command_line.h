// A headless export's command line: sorted into words, then read as far as that needs no clip, then as a request.
#pragma once

#include "cli/arguments.h"
#include "media/export/export_request.h"

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace flowtide {

/// What the command line says before the clip is known.
struct HeadlessExportArguments {
    std::filesystem::path input;
    ExportRequest request; ///< what needs no clip: the destination, the smoothing, the interpolation
    double verticalAspect = widthOverHeight(CropAspectRatio::nineBySixteen);
    double verticalSmoothing = 0.5;
    double smoothFrameRate = 30; ///< unique source frames per output second
    // Read once the clip's duration is known.
    std::optional<std::string> curve;
    std::optional<std::string> trim;
    std::optional<std::string> verticalCrop;
    std::optional<std::string> zoom;
    std::optional<std::string> flowRanges;
};

namespace HeadlessExport {

/// A command line by its words alone.
struct SortedWords {
    std::map<std::string, std::string> options; ///< values by name
    std::vector<std::string> positionals;       ///< what follows --headless-export, up to the trim
    std::vector<std::string> left;              ///< what neither took

    std::optional<std::string> option(const std::string& name) const;
    /// Counted from the input, 0.
    std::optional<std::string> positional(std::size_t index) const;
};

SortedWords sortWords(Arguments list);

/// Whether --`name` is an option of the headless export.
bool isOption(const std::string& name);

/// Throws FlowtideError.
HeadlessExportArguments parseArguments(const SortedWords& words);

/// Reads the texts against the clip. Where in-between frames are wanted and no ranges are given, they are derived from
/// the curve. Throws FlowtideError.
ExportRequest parseRequest(const HeadlessExportArguments& arguments, ImportedClip clip, const WarningSink& warn);

} // namespace HeadlessExport
} // namespace flowtide
