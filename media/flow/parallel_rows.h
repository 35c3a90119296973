// Work on independent rows, shared out to the machine's cores.
#pragma once

#include <functional>

namespace flowtide::flow {

/// Calls `work(begin, end)` for bands that together cover 0...height, on as many threads as there are cores. Rows must
/// not depend on each other, so that the result is the same however they are shared out.
void parallelRows(int height, const std::function<void(int begin, int end)>& work);

} // namespace flowtide::flow
