// The headless dispatcher and its runs.
#include "cli/headless_export.h"

#include "cli/cancel_on_signal.h"
#include "cli/decimal.h"
#include "cli/export_job.h"
#include "cli/failure_sentence.h"
#include "cli/progress_bar.h"
#include "cli/run_display.h"
#include "core/curve_engine.h"
#include "media/export/export_engine.h"
#include "media/flowtide_error.h"
#include "media/media_time.h"

#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <utility>

namespace flowtide::HeadlessExport {

namespace {

std::string rangeText(SourceRange range) {
    return fmt::format("{:.6f}:{:.6f}", range.lower, range.upper);
}

template <typename Items, typename Text>
std::string joined(const Items& items, const Text& text, const char* separator) {
    std::string line;
    for (const auto& item : items)
        line += (line.empty() ? "" : separator) + text(item);
    return line;
}

std::string pointText(const SpeedKeyframe& point) {
    return shortestDecimal(point.time) + ":" + shortestDecimal(point.speed);
}

std::string zoomText(const ZoomBlock& block) {
    return fmt::format("{}-{} ×{} {}", shortestDecimal(block.startTime), shortestDecimal(block.endTime),
                       shortestDecimal(block.amount), rawValue(block.mode));
}

void printJob(const HeadlessExportJob& job, RunDisplay& display) {
    display.print("[Headless] Curve: " + joined(job.keyframes, pointText, ", "));
    display.print("[Headless] Source range: " + rangeText(job.sourceRange));
    if (job.verticalCrop) {
        const auto& points = job.verticalCrop->centerKeyframes;
        display.print("[Headless] Vertical crop centering: " +
                      (points.empty() ? std::string("center") : joined(points, pointText, ", ")));
    }
    if (job.zoom && !job.zoom->blocks.empty())
        display.print("[Headless] Zoom blocks: " + joined(job.zoom->blocks, zoomText, "; "));
}

void deriveOpticalFlowRanges(HeadlessExportJob& job, const ImportedClip& clip, RunDisplay& display) {
    if (job.opticalFlowRanges || job.interpolation == FrameInterpolation::nearest) return;
    job.opticalFlowRanges = AutomaticOpticalFlow::ranges(job.keyframes, job.smoothing, clip.duration, job.sourceRange,
                                                         clip.frameRate, job.smoothFrameRate);
    const std::string ranges = joined(*job.opticalFlowRanges, rangeText, ", ");
    constexpr double largestPrinted = 1e15; // stays whole in a double and fits the integer
    display.print(fmt::format("[Headless] Optical Flow ranges (auto, {} fps): {}",
                              static_cast<long long>(std::min(job.smoothFrameRate, largestPrinted)),
                              ranges.empty() ? "none" : ranges));
}

ExportRequest requestFor(const HeadlessExportJob& job, ImportedClip clip) {
    ExportRequest request;
    request.clip = std::move(clip);
    request.keyframes = job.keyframes;
    request.sourceRange = job.sourceRange;
    request.smoothing = job.smoothing;
    request.interpolation = job.interpolation;
    request.opticalFlowRanges = job.opticalFlowRanges.value_or(SourceRanges{});
    request.verticalCrop = job.verticalCrop;
    request.zoom = job.zoom;
    request.outputURL = job.output;
    return request;
}

void showProgressBar(const ExportRequest& request, const Console& console, RunDisplay& display) {
    if (!standardErrorIsTerminal()) return;
    const TimeMap map = CurveEngine::buildTimeMap(request.keyframes, request.clip.duration, request.sourceRange,
                                                  CurveEngine::exportTimeMapSteps, request.smoothing);
    display.show(std::make_unique<ProgressBar>(
        outputFrameCount(map.outputDuration(), request.clip.frameDuration), standardErrorColumns,
        [&error = console.error](const std::string& text) { error << text << std::flush; }));
}

} // namespace

void runAsync(const Arguments& arguments, const MediaBackend& backend, const Console& console) {
    const HeadlessExportArguments parsed = parseArguments(arguments);
    RunDisplay display(console);
    ExportEngine engine(backend, [&display](std::string_view line) { display.print(line); });
    const CancelOnSignal cancelOnSignal([&engine] { engine.cancel(); });

    ImportedClip clip = ImportedClip::load(backend, parsed.input);
    HeadlessExportJob job =
        parseJob(parsed, clip.duration, [&display](const std::string& warning) { display.warn(warning); });
    deriveOpticalFlowRanges(job, clip, display);
    printJob(job, display);

    const ExportRequest request = requestFor(job, std::move(clip));
    showProgressBar(request, console, display);
    const ExportValidationReport report =
        engine.run(request, [&display](double fraction) { display.progress(fraction); });
    display.hideBar();
    try {
        display.print("[Headless] Done — verified " + report.summary);
    } catch (const FlowtideError& error) {
        throw FlowtideError::outputFailed(fmt::format("The export is in place, but: {}", error.what()));
    }
}

void runProxyAsync(const Arguments& arguments) {
    const auto word = std::find(arguments.begin(), arguments.end(), "--headless-proxy");
    if (arguments.end() - word < 2) throw FlowtideError::invalidArgument("Usage: Flowtide --headless-proxy <input>");
    throw FlowtideError::proxyFailed("Building proxies is not available in this version.");
}

int run(const Arguments& arguments, const MediaBackend& backend, const Console& console) {
    try {
        if (std::find(arguments.begin(), arguments.end(), "--headless-proxy") != arguments.end())
            runProxyAsync(arguments);
        else
            runAsync(arguments, backend, console);
        return 0;
    } catch (const std::exception& error) {
        console.complain("[Headless] Export failed: " + sentenceFor(error));
        return 1;
    }
}

} // namespace flowtide::HeadlessExport
