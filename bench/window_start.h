// What it costs a program to bring its window up, seen from outside.
#pragma once

#include <string>
#include <vector>

namespace flowtide::bench {

struct WindowStart {
    bool appeared = false;
    double firstPaintCpuSeconds = 0; ///< all its threads, until most of the screen shows its picture
    double firstPaintWallSeconds = 0;
    double settledCpuSeconds = 0; ///< until it rested for a second
    double restingCpuShare = 0;   ///< of one core, in the five seconds after that
};

/// Starts a program on this process's display, which shows nothing else, and ends it again.
WindowStart startOnDisplay(const std::vector<std::string>& words);

} // namespace flowtide::bench
