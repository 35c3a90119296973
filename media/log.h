// Where the log lines of a run go.
#pragma once

#include <functional>
#include <string_view>

namespace flowtide {

/// Takes one complete line without its line feed; callable from any thread.
using LogSink = std::function<void(std::string_view)>;

} // namespace flowtide
