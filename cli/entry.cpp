// Decides from the words alone what a run of the program is.
#include "cli/entry.h"

#include "cli/demo.h"
#include "cli/headless_export.h"
#include "cli/help.h"
#include "media/flowtide_error.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

namespace flowtide::FlowtideMain {

namespace {

bool hasDisplay() {
    const auto isSet = [](const char* name) {
        const char* value = std::getenv(name);
        return value && *value;
    };
    return isSet("DISPLAY") || isSet("WAYLAND_DISPLAY");
}

/// The first word that looks like an option, if any.
std::optional<std::string> firstOption(const HeadlessExport::Arguments& arguments) {
    const auto option =
        std::find_if(arguments.begin(), arguments.end(), [](const auto& word) { return word.starts_with('-'); });
    return option == arguments.end() ? std::nullopt : std::optional(*option);
}

int answer(std::string_view text, const Console& console) {
    try {
        console.printText(text);
        return 0;
    } catch (const FlowtideError& error) {
        console.complain(error.what());
        return 1;
    }
}

int openWindow(const HeadlessExport::Arguments& arguments, const Console& console, const WindowStart& startWindow) {
    if (!startWindow) {
        console.complain("This build of Loftwell Video has no window. Use --headless-export; --help tells how.");
        return 1;
    }
    if (!hasDisplay()) {
        console.complain("Loftwell Video found no display to open its window on. To export without a window, use "
                         "--headless-export; --help tells how.");
        return 1;
    }
    return startWindow(arguments.empty() ? std::nullopt : std::optional<std::filesystem::path>(arguments.front()));
}

} // namespace

int main(const HeadlessExport::Arguments& arguments, const MediaBackend& backend, const Console& console,
         const WindowStart& startWindow) {
    const auto has = [&](const char* word) {
        return std::find(arguments.begin(), arguments.end(), word) != arguments.end();
    };
    if (has("--headless-export") || has("--headless-proxy")) return HeadlessExport::run(arguments, backend, console);
    if (has("--help") || has("-h")) return answer(helpText, console);
    if (has("--version")) return answer(fmt::format("Loftwell Video {} (Flowtide)\n", FLOWTIDE_VERSION), console);
    if (const auto option = firstOption(arguments)) {
        console.complain(fmt::format("Unknown option {}. See --help.", *option));
        return 1;
    }
    if (!arguments.empty() && arguments.front() == "demo")
        return runDemo(arguments.size() > 1 ? arguments[1] : "flowtide-demo", backend, console);
    return openWindow(arguments, console, startWindow);
}

} // namespace flowtide::FlowtideMain
