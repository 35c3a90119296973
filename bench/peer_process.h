// Runs other programs and says what they cost.
#pragma once

#include <string>
#include <vector>

namespace flowtide::bench {

/// What one run of a program cost, all its threads and children included.
struct ProcessCost {
    bool succeeded = false;
    double wallSeconds = 0;
    double cpuSeconds = 0;
    double peakMegabytes = 0; ///< of the program alone, sampled every few milliseconds
    double idleSeconds = 0;   ///< summed over the machine's cores, while it ran
    std::string output;       ///< standard output
};

/// Runs a program found on the PATH; its standard error is dropped.
ProcessCost runProcess(const std::vector<std::string>& words);

/// CPU time of this process so far, in seconds, all its threads included.
double cpuSeconds();

/// The most memory that this process has held so far.
double peakMegabytes();

/// The middle one of several measurements.
double median(std::vector<double> values);

} // namespace flowtide::bench
