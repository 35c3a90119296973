// Runs a proxy from its word to the file, and prints what it did.
#include "cli/headless_proxy.h"

#include "cli/cancel_on_signal.h"
#include "cli/progress_bar.h"
#include "cli/run_display.h"
#include "media/flowtide_error.h"
#include "media/preview/proxy_engine.h"
#include "media/preview/temporary_items.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>

namespace flowtide::HeadlessExport {

namespace {

constexpr const char* proxyWord = "--headless-proxy";

/// What is neither the word nor the input, as a warning; empty when nothing is left.
std::string untakenWords(const Arguments& arguments, Arguments::const_iterator input) {
    std::string words;
    for (auto word = arguments.begin(); word != arguments.end(); ++word)
        if (word != input && word != std::prev(input))
            words += fmt::format("{}\"{}\"", words.empty() ? "" : ", ", *word);
    return words.empty() ? words : fmt::format("[Headless] Warning: Nothing takes {}. See --help.", words);
}

std::string description(const ImportedClip& clip) {
    return fmt::format("{}x{}, {:.6f}s, frameDuration {:.6f}", clip.width, clip.height, clip.duration,
                       clip.frameDuration.seconds());
}

void showProgressBar(const ImportedClip& clip, const Console& console, RunDisplay& display) {
    if (!standardErrorIsTerminal()) return;
    display.show(std::make_unique<ProgressBar>(
        outputFrameCount(clip.duration, clip.frameDuration), standardErrorColumns,
        [&error = console.error](const std::string& text) { error << text << std::flush; }));
}

} // namespace

void runProxy(const Arguments& arguments, const MediaBackend& backend, const Console& console) {
    const auto word = std::find(arguments.begin(), arguments.end(), proxyWord);
    if (arguments.end() - word < 2) throw FlowtideError::invalidArgument("Usage: Flowtide --headless-proxy <input>");
    const auto input = std::next(word);
    RunDisplay display(console);
    TemporaryItems items;
    ProxyEngine engine(backend, items, [&display](std::string_view sentence) {
        display.warn("[Headless] Warning: " + std::string(sentence));
    });
    const CancelOnSignal cancelOnSignal([&engine] { engine.cancel(); });

    const ImportedClip clip = ImportedClip::load(backend, *input);
    if (const std::string warning = untakenWords(arguments, input); !warning.empty()) display.warn(warning);
    showProgressBar(clip, console, display);
    // At 1 the bar speaks of a verification, which a proxy has not.
    static constexpr double nearlyDone = 0.999;
    const std::filesystem::path path =
        engine.makeProxy(clip, [&display](double fraction) { display.progress(std::min(fraction, nearlyDone)); });
    const ImportedClip proxy = ImportedClip::load(backend, path);
    display.hideBar();
    display.print("[Headless] Proxy: " + path.string());
    display.print("[Headless] Source: " + description(clip));
    display.print("[Headless] Proxy:  " + description(proxy));
    // Until here it was the run's own, and goes with it when it could not say where the file is.
    items.release(path);
}

} // namespace flowtide::HeadlessExport
