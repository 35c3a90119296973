// The headless dispatcher and its runs.
#include "cli/headless_export.h"

#include "cli/cancel_on_signal.h"
#include "cli/decimal.h"
#include "cli/export_job.h"
#include "cli/progress_bar.h"
#include "core/curve_engine.h"
#include "media/export_engine.h"
#include "media/flowtide_error.h"
#include "media/frame_schedule.h"

#include <fmt/format.h>

#include <algorithm>
#include <memory>

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
    const auto caseName = [&] {
        switch (block.mode) {
        case ZoomMode::zoomIn:
            return "zoomIn";
        case ZoomMode::zoomOut:
            return "zoomOut";
        case ZoomMode::constant:
            return "constant";
        case ZoomMode::inOut:
            break;
        }
        return "inOut";
    };
    return fmt::format("{}-{} ×{} {}", shortestDecimal(block.startTime), shortestDecimal(block.endTime),
                       shortestDecimal(block.amount), caseName());
}

void printJob(const HeadlessExportJob& job, const Console& console) {
    console.print("[Headless] Curve: " + joined(job.keyframes, pointText, ", "));
    console.print("[Headless] Source range: " + rangeText(job.sourceRange));
    if (job.verticalCrop) {
        const auto& points = job.verticalCrop->centerKeyframes;
        console.print("[Headless] Vertical crop centering: " +
                      (points.empty() ? std::string("center") : joined(points, pointText, ", ")));
    }
    if (job.zoom) console.print("[Headless] Zoom blocks: " + joined(job.zoom->blocks, zoomText, "; "));
}

void deriveOpticalFlowRanges(HeadlessExportJob& job, const ImportedClip& clip, const Console& console) {
    if (job.opticalFlowRanges || job.interpolation == FrameInterpolation::nearest) return;
    job.opticalFlowRanges = AutomaticOpticalFlow::ranges(job.keyframes, job.smoothing, clip.duration, job.sourceRange,
                                                         clip.frameRate, job.smoothFrameRate);
    const std::string ranges = joined(*job.opticalFlowRanges, rangeText, ", ");
    console.print(fmt::format("[Headless] Optical Flow ranges (auto, {} fps): {}",
                              static_cast<long long>(std::min(job.smoothFrameRate, 1e15)),
                              ranges.empty() ? "none" : ranges));
}

std::unique_ptr<ProgressBar> progressBar(const ExportRequest& request, const Console& console) {
    const auto columns = standardErrorColumns();
    if (!columns) return nullptr;
    const TimeMap map = CurveEngine::buildTimeMap(request.keyframes, request.clip.duration, request.sourceRange,
                                                  CurveEngine::exportTimeMapSteps, request.smoothing);
    return std::make_unique<ProgressBar>(outputFrameCount(map.outputDuration(), request.clip.frameDuration), *columns,
                                         [&console](const std::string& text) { console.error << text << std::flush; });
}

void runExport(const Arguments& arguments, const MediaBackend& backend, const Console& console) {
    const HeadlessExportArguments parsed = parseArguments(arguments);
    ExportEngine engine(backend, [&console](std::string_view line) { console.print(line); });
    const CancelOnSignal cancelOnSignal([&engine] { engine.cancel(); });
    ExportRequest request;
    request.clip = ImportedClip::load(backend, parsed.input);
    HeadlessExportJob job =
        parseJob(parsed, request.clip.duration, [&console](const std::string& warning) { console.complain(warning); });
    deriveOpticalFlowRanges(job, request.clip, console);
    printJob(job, console);

    request.keyframes = job.keyframes;
    request.sourceRange = job.sourceRange;
    request.smoothing = job.smoothing;
    request.interpolation = job.interpolation;
    request.opticalFlowRanges = job.opticalFlowRanges;
    request.verticalCrop = job.verticalCrop;
    request.zoom = job.zoom;
    request.outputURL = job.output;
    const ExportValidationReport report = [&] {
        const auto bar = progressBar(request, console);
        return engine.run(request, [&bar](double fraction) {
            if (bar) bar->update(fraction);
        });
    }();
    console.print("[Headless] Done — verified " + report.summary);
}

void runProxy(const Arguments& arguments) {
    const auto word = std::find(arguments.begin(), arguments.end(), "--headless-proxy");
    if (arguments.end() - word < 2) throw FlowtideError::invalidArgument("Usage: Flowtide --headless-proxy <input>");
    throw FlowtideError::proxyFailed("This version cannot build proxies yet.");
}

} // namespace

int run(const Arguments& arguments, const MediaBackend& backend, const Console& console) {
    try {
        if (std::find(arguments.begin(), arguments.end(), "--headless-proxy") != arguments.end())
            runProxy(arguments);
        else
            runExport(arguments, backend, console);
        return 0;
    } catch (const std::exception& error) {
        console.complain(fmt::format("[Headless] Export failed: {}", error.what()));
        return 1;
    }
}

} // namespace flowtide::HeadlessExport
