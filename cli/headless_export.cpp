// Runs a headless export from its words to the verified file, and prints what it does.
#include "cli/headless_export.h"

#include "cli/argument_warnings.h"
#include "cli/cancel_on_signal.h"
#include "cli/decimal.h"
#include "cli/export_command_line.h"
#include "cli/headless_proxy.h"
#include "cli/progress_bar.h"
#include "cli/run_display.h"
#include "media/export/export_engine.h"
#include "media/export/export_plan.h"
#include "media/failure_sentence.h"
#include "media/flowtide_error.h"

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

void printRequest(const ExportRequest& request, RunDisplay& display) {
    display.print("[Headless] Curve: " + joined(request.keyframes, pointText, ", "));
    display.print("[Headless] Source range: " + rangeText(*request.sourceRange));
    if (request.verticalCrop) {
        const auto& points = request.verticalCrop->centerKeyframes;
        display.print("[Headless] Vertical crop centering: " +
                      (points.empty() ? std::string("center") : joined(points, pointText, ", ")));
    }
    if (request.zoom && !request.zoom->blocks.empty())
        display.print("[Headless] Zoom blocks: " + joined(request.zoom->blocks, zoomText, "; "));
}

void printDerivedRanges(const HeadlessExportArguments& arguments, const ExportRequest& request, RunDisplay& display) {
    if (arguments.flowRanges || request.interpolation == FrameInterpolation::nearest) return;
    const std::string ranges = joined(request.opticalFlowRanges, rangeText, ", ");
    constexpr double largestPrinted = 1e15; // stays whole in a double and fits the integer
    display.print(fmt::format("[Headless] Optical Flow ranges (auto, {} fps): {}",
                              static_cast<long long>(std::min(arguments.smoothFrameRate, largestPrinted)),
                              ranges.empty() ? "none" : ranges));
}

/// Prints a line of the export; a warning, and what is left out, is told on standard error too, where scripts look for
/// it.
void printExportLine(std::string_view line, RunDisplay& display) {
    display.print(line);
    constexpr std::string_view prefix = "[Export] ";
    constexpr std::string_view warning = "[Export] Warning: ";
    const auto warn = [&](std::size_t start) {
        display.warn("[Headless] Warning: " + std::string(line.substr(start)));
    };
    if (line.starts_with(warning))
        warn(warning.size());
    else if (line.starts_with("[Export] Vertical crop skipped"))
        warn(prefix.size());
}

void showProgressBar(std::int64_t frameCount, const Console& console, RunDisplay& display) {
    if (!standardErrorIsTerminal()) return;
    display.show(std::make_unique<ProgressBar>(
        frameCount, standardErrorColumns,
        [&error = console.error](const std::string& text) { error << text << std::flush; }));
}

void runExport(const Arguments& list, const MediaBackend& backend, const Console& console) {
    const SortedWords words = sortWords(list);
    const HeadlessExportArguments arguments = parseArguments(words);
    RunDisplay display(console);
    ExportEngine engine(backend, [&display](std::string_view line) { printExportLine(line, display); });
    const CancelOnSignal cancelOnSignal([&engine] { engine.cancel(); });

    const ExportRequest request = parseRequest(arguments, ImportedClip::load(backend, arguments.input),
                                               [&display](const std::string& warning) { display.warn(warning); });
    for (const std::string& warning : warningsAbout(words, request))
        display.warn("[Headless] Warning: " + warning);
    printDerivedRanges(arguments, request, display);
    printRequest(request, display);

    const ExportValidationReport report = engine.run(
        request, [&display](double fraction) { display.progress(fraction); },
        [&](const ExportPlan& plan) { showProgressBar(plan.frameCount, console, display); });
    display.hideBar();
    try {
        display.print("[Headless] Done — verified " + report.summary);
    } catch (const FlowtideError& error) {
        throw FlowtideError::outputFailed(fmt::format("The export is in place, but: {}", error.what()));
    }
}

} // namespace

int run(const Arguments& arguments, const MediaBackend& backend, const Console& console) {
    try {
        if (std::find(arguments.begin(), arguments.end(), "--headless-proxy") != arguments.end())
            runProxy(arguments, backend, console);
        else
            runExport(arguments, backend, console);
        return 0;
    } catch (const std::exception& error) {
        console.complain("[Headless] Export failed: " + sentenceFor(error));
        return 1;
    }
}

} // namespace flowtide::HeadlessExport
