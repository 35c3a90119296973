// The headless runs: jobs that open no window.
#pragma once

#include "cli/arguments.h"
#include "cli/console.h"
#include "media/media_io.h"

namespace flowtide::HeadlessExport {

/// Runs the export, or the proxy build where "--headless-proxy" is among the arguments, and returns the exit status: 0
/// once the verified file is in place or the proxy is made, or 1 after one line on standard error. Termination requests
/// cancel it.
int run(const Arguments& arguments, const MediaBackend& backend, const Console& console);

} // namespace flowtide::HeadlessExport
