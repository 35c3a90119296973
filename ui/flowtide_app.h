// The program with a window.
#pragma once

#include "ui/session_host.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace flowtide {

/// Runs the window until it is closed and returns the exit status. `file`: a clip or project to open; without one the
/// last project is restored. `complain` takes the sentence when no window can be opened. On the main thread, once.
int runFlowtideApp(const WindowPlatform& platform, const std::optional<std::filesystem::path>& file,
                   const std::function<void(const std::string& sentence)>& complain);

} // namespace flowtide
