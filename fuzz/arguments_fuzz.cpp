// Any command line: the grammar turns it into a job that keeps its promises, or refuses it with a sentence.
#include "cli/export_job.h"
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

void checkJob(const HeadlessExportJob& job, double duration) {
    for (std::size_t i = 0; i < job.keyframes.size(); ++i) {
        require(within(job.keyframes[i].time, 0, duration) && within(job.keyframes[i].speed, 0.01, 100));
        require(i == 0 || job.keyframes[i].time - job.keyframes[i - 1].time >= 0.01);
    }
    require(job.sourceRange.lower >= 0 && job.sourceRange.lower < job.sourceRange.upper &&
            job.sourceRange.upper <= duration);
    for (const auto& range : job.opticalFlowRanges.value_or(SourceRanges{}))
        require(range.lower >= 0 && range.lower < range.upper && range.upper <= duration);
    if (job.verticalCrop) {
        require(std::isfinite(job.verticalCrop->aspectRatio) && job.verticalCrop->aspectRatio > 0);
        require(within(job.verticalCrop->smoothing, 0, 1));
        for (const auto& point : job.verticalCrop->centerKeyframes)
            require(within(point.time, job.sourceRange.lower, job.sourceRange.upper) && within(point.speed, 0, 1));
    }
    for (const auto& block : job.zoom.value_or(ZoomSettings{}).blocks) {
        require(within(block.amount, 1.1, 4) && within(block.rampDuration, 0, 3));
        require(within(block.focalX, 0, 1) && within(block.focalY, 0, 1));
        require(block.focalKeyframes.empty() || block.focalKeyframes.size() == 2);
    }
    require(job.smoothFrameRate > 0);
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
        checkJob(HeadlessExport::parseJob(HeadlessExport::parseArguments(arguments), duration,
                                          [](const std::string& warning) { require(!warning.empty()); }),
                 duration);
    } catch (const FlowtideError& error) {
        require(error.kind() == FlowtideError::Case::invalidArgument && *error.what() != '\0');
    }
    return 0;
}
