// The program's entry decision: headless, a question about itself, the demo, or the window.
#pragma once

#include "cli/arguments.h"
#include "cli/console.h"
#include "media/media_io.h"

namespace flowtide::FlowtideMain {

/// Runs the program on its arguments (without its own name) and returns the exit status.
int main(const HeadlessExport::Arguments& arguments, const MediaBackend& backend, const Console& console);

} // namespace flowtide::FlowtideMain
