// The one place that makes a thread.
#include "media/thread_starter.h"

#include <utility>

namespace flowtide {

std::jthread startThread(std::function<void()> body) {
    return std::jthread(std::move(body));
}

} // namespace flowtide
