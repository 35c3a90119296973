// The headless runs: jobs that open no window.
#pragma once

#include "cli/arguments.h"
#include "cli/console.h"
#include "media/media_io.h"

namespace flowtide::HeadlessExport {

/// Runs the export, or the proxy build where "--headless-proxy" is among the arguments, and returns the exit status:
/// 0, or 1 after one line on standard error.
int run(const Arguments& arguments, const MediaBackend& backend, const Console& console);

/// The export run. Blocks until the verified file is in place; SIGINT and SIGTERM cancel it. Throws FlowtideError or
/// ProjectError with the sentence to show.
void runAsync(const Arguments& arguments, const MediaBackend& backend, const Console& console);

/// The proxy run. Building proxies is not available yet, so it always throws FlowtideError.
void runProxyAsync(const Arguments& arguments);

} // namespace flowtide::HeadlessExport
