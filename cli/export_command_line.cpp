// Takes the options out of the words, and fills a request from what they say.
#include "cli/export_command_line.h"

#include "cli/decimal.h"
#include "media/flowtide_error.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace flowtide::HeadlessExport {

namespace {

constexpr std::array<std::string_view, 7> optionNames{"--vertical-crop", "--vertical-smoothing", "--vertical-aspect",
                                                      "--zoom",          "--flow-ranges",        "--smooth-fps",
                                                      "--interpolation"};
constexpr std::ptrdiff_t mostPositionals = 5; // input, output, curve, smoothing, trim

double decimalOr(const std::optional<std::string>& text, double otherwise) {
    return text ? parseDecimal(*text).value_or(otherwise) : otherwise;
}

FrameInterpolation parseInterpolation(const std::string& word) {
    if (word == "optical-flow") return FrameInterpolation::opticalFlow;
    if (word == "nearest") return FrameInterpolation::nearest;
    throw FlowtideError::invalidArgument("Use --interpolation optical-flow or nearest.");
}

} // namespace

bool isOption(const std::string& name) {
    return std::find(optionNames.begin(), optionNames.end(), name) != optionNames.end();
}

std::optional<std::string> SortedWords::option(const std::string& name) const {
    const auto found = options.find(name);
    return found == options.end() ? std::nullopt : std::optional(found->second);
}

std::optional<std::string> SortedWords::positional(std::size_t index) const {
    return index < positionals.size() ? std::optional(positionals[index]) : std::nullopt;
}

SortedWords sortWords(Arguments list) {
    SortedWords words;
    for (const std::string_view name : optionNames)
        if (auto value = takeOption(list, std::string(name))) words.options.emplace(name, std::move(*value));
    const auto marker = std::find(list.begin(), list.end(), "--headless-export");
    const auto first = marker == list.end() ? marker : marker + 1;
    const auto last = first + std::min(list.end() - first, mostPositionals);
    words.positionals.assign(first, last);
    words.left.assign(list.begin(), marker);
    words.left.insert(words.left.end(), last, list.end());
    return words;
}

HeadlessExportArguments parseArguments(const SortedWords& words) {
    HeadlessExportArguments arguments;
    arguments.verticalCrop = words.option("--vertical-crop");
    arguments.verticalSmoothing = decimalOr(words.option("--vertical-smoothing"), arguments.verticalSmoothing);
    arguments.verticalAspect = parseAspect(words.option("--vertical-aspect"));
    arguments.zoom = words.option("--zoom");
    arguments.flowRanges = words.option("--flow-ranges");
    arguments.smoothFrameRate = decimalOr(words.option("--smooth-fps"), arguments.smoothFrameRate);
    arguments.request.interpolation = parseInterpolation(words.option("--interpolation").value_or("nearest"));
    if (words.positionals.size() < 2)
        throw FlowtideError::invalidArgument(
            "Usage: Flowtide --headless-export <input> <output> [curve] [smoothing] [trim]");
    arguments.input = words.positionals[0];
    arguments.request.outputURL = words.positionals[1];
    arguments.curve = words.positional(2);
    arguments.request.smoothing = decimalOr(words.positional(3), arguments.request.smoothing);
    arguments.trim = words.positional(4);
    return arguments;
}

ExportRequest parseRequest(const HeadlessExportArguments& arguments, ImportedClip clip, const WarningSink& warn) {
    if (!(arguments.smoothFrameRate > 0))
        throw FlowtideError::invalidArgument("Use --smooth-fps with a positive frame rate.");
    ExportRequest request = arguments.request;
    request.keyframes = parseCurve(arguments.curve, clip.duration, warn);
    const SourceRange range = parseSourceRange(arguments.trim, clip.duration);
    request.sourceRange = range;
    if (const auto ranges = parseOpticalFlowRanges(arguments.flowRanges, clip.duration))
        request.opticalFlowRanges = *ranges;
    else if (request.interpolation == FrameInterpolation::opticalFlow)
        request.opticalFlowRanges = AutomaticOpticalFlow::ranges(request.keyframes, request.smoothing, clip.duration,
                                                                 range, clip.frameRate, arguments.smoothFrameRate);
    request.verticalCrop = parseVerticalCrop(arguments.verticalCrop, arguments.verticalAspect,
                                             arguments.verticalSmoothing, clip.duration, range);
    request.zoom = parseZoomBlocks(arguments.zoom);
    request.clip = std::move(clip);
    return request;
}

} // namespace flowtide::HeadlessExport
