// Finds the traps; the grammar itself (arguments.cpp) passes over them.
#include "cli/argument_warnings.h"

#include "cli/decimal.h"
#include "core/keyframe_rules.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <utility>

namespace flowtide::HeadlessExport {

namespace {

using Warnings = std::vector<std::string>;

void addUntakenWords(const SortedWords& words, Warnings& warnings) {
    std::string untaken;
    for (auto word = words.left.begin(); word != words.left.end(); ++word) {
        if (!isOption(*word)) {
            untaken += fmt::format("{}\"{}\"", untaken.empty() ? "" : ", ", *word);
        } else if (words.option(*word)) {
            warnings.push_back(fmt::format("Only the first {} counts.", *word));
            if (word + 1 != words.left.end()) ++word; // its value
        } else {
            warnings.push_back(fmt::format("{} has no value and no effect.", *word));
        }
    }
    if (!untaken.empty()) warnings.push_back(fmt::format("Nothing takes {}. See --help.", untaken));
}

void addUnreadNumbers(const SortedWords& words, const ExportRequest& request, Warnings& warnings) {
    const auto add = [&](const std::optional<std::string>& text, const char* meaning, double used) {
        if (text && !parseDecimal(*text))
            warnings.push_back(fmt::format("\"{}\" is no number; the {} is {}.", *text, meaning, used));
    };
    const HeadlessExportArguments defaults;
    // An empty word in a position stands for the default.
    if (words.positional(3) != "") add(words.positional(3), "smoothing", request.smoothing);
    add(words.option("--vertical-smoothing"), "crop's smoothing", defaults.verticalSmoothing);
    add(words.option("--smooth-fps"), "threshold of slow motion", defaults.smoothFrameRate);
}

void addOptionsWithoutEffect(const SortedWords& words, const ExportRequest& request, Warnings& warnings) {
    const auto add = [&](const char* option, const char* needed) {
        if (words.option(option)) warnings.push_back(fmt::format("{} has no effect without {}.", option, needed));
    };
    if (request.interpolation != FrameInterpolation::opticalFlow)
        for (const char* option : {"--flow-ranges", "--smooth-fps"})
            add(option, "--interpolation optical-flow");
    if (!request.verticalCrop)
        for (const char* option : {"--vertical-aspect", "--vertical-smoothing"})
            add(option, "--vertical-crop");
}

void addZoomFields(const SortedWords& words, Warnings& warnings) {
    for (const ZoomFields& zoom : splitZoomBlocks(words.option("--zoom").value_or(""))) {
        if (!zoom.mode.empty() && !parseZoomMode(zoom.mode))
            warnings.push_back(
                fmt::format("Unknown zoom mode \"{}\"; the block \"{}\" ramps in and out.", zoom.mode, zoom.text));
        for (const std::string& word : zoom.meaninglessWords())
            warnings.push_back(
                fmt::format("\"{}\" means nothing in the zoom block \"{}\" and is left out.", word, zoom.text));
    }
}

/// Of points that a curve over the trim is made of. `what` and `value` name them and their value.
void addPointsOutsideTheTrim(const char* what, const char* value, const SpeedKeyframes& points, double otherwise,
                             const ExportRequest& request, Warnings& warnings) {
    if (points.empty()) return;
    const SourceRange range = *request.sourceRange;
    const SpeedKeyframes curve = KeyframeRules::curveForSourceRange(points, request.clip.duration, range, otherwise);
    std::string before;
    std::string after;
    for (const SpeedKeyframe& point : points) {
        const auto isPoint = [&](const SpeedKeyframe& kept) { return kept.id == point.id; };
        if (std::any_of(curve.begin(), curve.end(), isPoint)) continue;
        std::string& side = point.time <= range.lower + KeyframeRules::interiorMargin ? before : after;
        side +=
            fmt::format("{}{}:{}", side.empty() ? "" : ", ", shortestDecimal(point.time), shortestDecimal(point.speed));
    }
    const auto add = [&](const std::string& outside, const char* side, const char* edge, double atEdge) {
        if (!outside.empty())
            warnings.push_back(fmt::format("{} points {} the trim have no effect ({}); the export {} at {} {}.", what,
                                           side, outside, edge, value, shortestDecimal(atEdge)));
    };
    add(before, "before", "starts", curve.front().speed);
    add(after, "after", "ends", curve.back().speed);
}

void addPointsOutsideTheTrim(const SortedWords& words, const ExportRequest& request, Warnings& warnings) {
    // The default curve spans the whole clip.
    if (!words.positional(2).value_or("").empty())
        addPointsOutsideTheTrim("Curve", "speed", request.keyframes, realTimeSpeed, request, warnings);
    addPointsOutsideTheTrim("Crop", "position",
                            parseCropPoints(words.option("--vertical-crop").value_or(""), request.clip.duration),
                            centeredCrop, request, warnings);
}

void addStretchesOutsideTheTrim(const SortedWords& words, const ExportRequest& request, Warnings& warnings) {
    const SourceRange trim = *request.sourceRange;
    const auto add = [&](const std::string& stretch, double start, double end) {
        if (end <= start)
            warnings.push_back(fmt::format("The {} ends no later than it begins and has no effect.", stretch));
        else if (end <= trim.lower || trim.upper <= start)
            warnings.push_back(fmt::format("The {} lies outside the trim and has no effect.", stretch));
    };
    for (const ZoomFields& fields : splitZoomBlocks(words.option("--zoom").value_or("")))
        if (const auto zoom = parseZoomBlocks(fields.text))
            for (const ZoomBlock& block : zoom->blocks)
                add(fmt::format("zoom block \"{}\"", fields.text), block.startTime, block.endTime);
    if (request.interpolation != FrameInterpolation::opticalFlow) return;
    const auto ranges = parseOpticalFlowRanges(words.option("--flow-ranges"), request.clip.duration);
    for (const SourceRange& range : ranges.value_or(SourceRanges{}))
        add(fmt::format("flow range {}:{}", shortestDecimal(range.lower), shortestDecimal(range.upper)), range.lower,
            range.upper);
}

void addForeignExtension(const ExportRequest& request, Warnings& warnings) {
    std::string extension = request.outputURL.extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    const bool isKnown = extension == ".mov" || extension == ".qt" || extension == ".mp4" || extension == ".m4v";
    if (extension.empty() || (isKnown && fileTypeForPath(request.outputURL) == request.clip.fileType)) return;
    warnings.push_back(fmt::format("The destination is named {}, but is written in the source's container, {}.",
                                   request.outputURL.extension().string(), fileTypeName(request.clip.fileType)));
}

} // namespace

std::vector<std::string> warningsAbout(const SortedWords& words, const ExportRequest& request) {
    Warnings warnings;
    addUntakenWords(words, warnings);
    addUnreadNumbers(words, request, warnings);
    addOptionsWithoutEffect(words, request, warnings);
    addZoomFields(words, warnings);
    addPointsOutsideTheTrim(words, request, warnings);
    addStretchesOutsideTheTrim(words, request, warnings);
    addForeignExtension(request, warnings);
    return warnings;
}

} // namespace flowtide::HeadlessExport
