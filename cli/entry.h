// The program's entry decision: headless, a question about itself, the demo, or the window.
#pragma once

#include "cli/arguments.h"
#include "cli/console.h"
#include "media/media_io.h"

#include <filesystem>
#include <functional>
#include <optional>

namespace flowtide::FlowtideMain {

/// Opens the window, with a file or without one, and returns the exit status once it is closed.
using WindowStart = std::function<int(const std::optional<std::filesystem::path>& file)>;

/// Runs the program on its arguments (without its own name) and returns the exit status. `startWindow` is empty in a
/// build without a window.
int main(const HeadlessExport::Arguments& arguments, const MediaBackend& backend, const Console& console,
         const WindowStart& startWindow = {});

} // namespace flowtide::FlowtideMain
