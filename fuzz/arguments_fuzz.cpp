// Any command line: the grammar turns it into a request that keeps its promises, or refuses it with a sentence.
#include "cli/argument_warnings.h"
#include "cli/export_command_line.h"
#include "media/flowtide_error.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

using namespace flowtide;

void require(bool holds) {
    if (!holds) std::abort();
}

bool within(double value, double lower, double upper) {
    return value >= lower && value <= upper;
}

void checkRequest(const ExportRequest& request, double duration) {
    for (std::size_t i = 0; i < request.keyframes.size(); ++i) {
        require(within(request.keyframes[i].time, 0, duration) && within(request.keyframes[i].speed, 0.01, 100));
        require(i == 0 || request.keyframes[i].time - request.keyframes[i - 1].time >= 0.01);
    }
    require(request.sourceRange->lower >= 0 && request.sourceRange->lower < request.sourceRange->upper &&
            request.sourceRange->upper <= duration);
    for (const auto& range : request.opticalFlowRanges)
        require(range.lower >= 0 && range.lower < range.upper && range.upper <= duration);
    if (request.verticalCrop) {
        require(std::isfinite(request.verticalCrop->aspectRatio) && request.verticalCrop->aspectRatio > 0);
        require(within(request.verticalCrop->smoothing, 0, 1));
        for (const auto& point : request.verticalCrop->centerKeyframes)
            require(within(point.time, request.sourceRange->lower, request.sourceRange->upper) &&
                    within(point.speed, 0, 1));
    }
    for (const auto& block : request.zoom.value_or(ZoomSettings{}).blocks) {
        require(within(block.amount, 1.1, 4) && within(block.rampDuration, 0, 3));
        require(within(block.focalX, 0, 1) && within(block.focalY, 0, 1));
        require(block.focalKeyframes.empty() || block.focalKeyframes.size() == 2);
    }
}

} // namespace

/// The first eight bytes are the clip's duration, the rest the arguments, one a line.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    double duration = 0;
    if (size < sizeof duration) return 0;
    std::memcpy(&duration, data, sizeof duration);
    // What a probe lets through; the default curve's two points of a shorter clip lie nearer than drawn ones may.
    if (!(duration >= 0.01 && duration <= 31'536'000)) duration = 10;
    HeadlessExport::Arguments arguments(1);
    for (std::size_t i = sizeof duration; i < size; ++i) {
        const char character = static_cast<char>(data[i]);
        if (character == '\n')
            arguments.emplace_back();
        else
            arguments.back() += character;
    }
    try {
        const auto words = HeadlessExport::sortWords(arguments);
        ImportedClip clip;
        clip.duration = duration;
        clip.frameRate = 25;
        const ExportRequest request = HeadlessExport::parseRequest(
            HeadlessExport::parseArguments(words), clip, [](const std::string& warning) { require(!warning.empty()); });
        checkRequest(request, duration);
        for (const std::string& warning : HeadlessExport::warningsAbout(words, request))
            require(!warning.empty());
    } catch (const FlowtideError& error) {
        require(error.kind() == FlowtideError::Case::invalidArgument && *error.what() != '\0');
    }
    return 0;
}
