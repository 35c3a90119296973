// The headless run that makes a preview proxy.
#pragma once

#include "cli/arguments.h"
#include "cli/console.h"
#include "media/media_io.h"

namespace flowtide::HeadlessExport {

/// Makes the proxy of the clip named after the first "--headless-proxy" and prints where it is; it stays there. Blocks;
/// termination requests cancel it. Throws FlowtideError or ProjectError with the sentence to show; no file is left
/// then.
void runProxy(const Arguments& arguments, const MediaBackend& backend, const Console& console);

} // namespace flowtide::HeadlessExport
