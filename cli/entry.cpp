// The entry.
#include "cli/entry.h"

#include "cli/demo.h"
#include "cli/headless_export.h"
#include "cli/help.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>

namespace flowtide::FlowtideMain {

namespace {

bool hasDisplay() {
    const auto isSet = [](const char* name) {
        const char* value = std::getenv(name);
        return value && *value;
    };
    return isSet("DISPLAY") || isSet("WAYLAND_DISPLAY");
}

int startWindow(const HeadlessExport::Arguments& arguments, const Console& console) {
    const auto option =
        std::find_if(arguments.begin(), arguments.end(), [](const auto& word) { return word.starts_with('-'); });
    if (option != arguments.end())
        console.complain(fmt::format("Unknown option {}. Try --help.", *option));
    else if (!hasDisplay())
        console.complain("Loftwell Video found no display to open its window on. To export without a window, use "
                         "--headless-export; --help tells how.");
    else
        console.complain("This version of Loftwell Video has no window yet. Use --headless-export; --help tells how.");
    return 1;
}

} // namespace

int run(const HeadlessExport::Arguments& arguments, const MediaBackend& backend, const Console& console) {
    const auto has = [&](const char* word) {
        return std::find(arguments.begin(), arguments.end(), word) != arguments.end();
    };
    if (has("--headless-export") || has("--headless-proxy")) return HeadlessExport::run(arguments, backend, console);
    if (has("--help") || has("-h")) {
        console.output << helpText << std::flush;
        return 0;
    }
    if (has("--version")) {
        console.print(fmt::format("Loftwell Video {} (Flowtide)", FLOWTIDE_VERSION));
        return 0;
    }
    if (!arguments.empty() && arguments.front() == "demo")
        return runDemo(arguments.size() > 1 ? arguments[1] : "flowtide-demo", backend, console);
    return startWindow(arguments, console);
}

} // namespace flowtide::FlowtideMain
