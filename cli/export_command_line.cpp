// From the command line to a job.
#include "cli/export_job.h"

#include "cli/decimal.h"
#include "media/flowtide_error.h"

#include <algorithm>

namespace flowtide::HeadlessExport {

namespace {

double decimalOr(const std::optional<std::string>& text, double otherwise) {
    return text ? parseDecimal(*text).value_or(otherwise) : otherwise;
}

FrameInterpolation parseInterpolation(const std::string& word) {
    if (word == "optical-flow") return FrameInterpolation::opticalFlow;
    if (word == "nearest") return FrameInterpolation::nearest;
    throw FlowtideError::invalidArgument("Use --interpolation optical-flow or nearest.");
}

} // namespace

HeadlessExportArguments parseArguments(Arguments list) {
    HeadlessExportArguments arguments;
    arguments.verticalCrop = takeOption(list, "--vertical-crop");
    arguments.verticalSmoothing = decimalOr(takeOption(list, "--vertical-smoothing"), 0.5);
    arguments.verticalAspect = parseAspect(takeOption(list, "--vertical-aspect"));
    arguments.zoom = takeOption(list, "--zoom");
    arguments.flowRanges = takeOption(list, "--flow-ranges");
    arguments.smoothFrameRate = decimalOr(takeOption(list, "--smooth-fps"), 30);
    arguments.interpolation = parseInterpolation(takeOption(list, "--interpolation").value_or("nearest"));

    const auto word = std::find(list.begin(), list.end(), "--headless-export");
    const auto following = list.end() - word; // the word itself included
    if (following < 3)
        throw FlowtideError::invalidArgument(
            "Usage: Flowtide --headless-export <input> <output> [curve] [smoothing] [trim]");
    arguments.input = word[1];
    arguments.output = word[2];
    if (following > 3) arguments.curve = word[3];
    if (following > 4) arguments.smoothing = decimalOr(word[4], 0.5);
    if (following > 5) arguments.trim = word[5];
    return arguments;
}

HeadlessExportJob parseJob(const HeadlessExportArguments& arguments, double duration, const WarningSink& warn) {
    if (!(arguments.smoothFrameRate > 0))
        throw FlowtideError::invalidArgument("Use --smooth-fps with a positive frame rate.");
    HeadlessExportJob job;
    job.input = arguments.input;
    job.output = arguments.output;
    job.smoothing = arguments.smoothing;
    job.interpolation = arguments.interpolation;
    job.smoothFrameRate = arguments.smoothFrameRate;
    job.keyframes = parseCurve(arguments.curve, duration, warn);
    job.sourceRange = parseSourceRange(arguments.trim, duration);
    job.opticalFlowRanges = parseOpticalFlowRanges(arguments.flowRanges, duration);
    job.verticalCrop = parseVerticalCrop(arguments.verticalCrop, arguments.verticalAspect, arguments.verticalSmoothing,
                                         duration, job.sourceRange);
    job.zoom = parseZoomBlocks(arguments.zoom);
    return job;
}

} // namespace flowtide::HeadlessExport
