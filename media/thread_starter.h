// How the media layer makes its threads, so that a test can stand in for a system that has none left.
#pragma once

#include <functional>
#include <thread>

namespace flowtide {

/// Starts a thread that runs `body`. Throws std::system_error when there can be no more threads.
using ThreadStarter = std::function<std::jthread(std::function<void()> body)>;

/// The system's own threads.
std::jthread startThread(std::function<void()> body);

} // namespace flowtide
