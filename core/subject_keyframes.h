// The steps from a tracked subject to few framing keyframes.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace flowtide::SubjectKeyframes {

/// Indices of neighbouring samples, both inclusive.
struct Window {
    std::size_t first = 0;
    std::size_t last = 0;
    friend bool operator==(const Window&, const Window&) = default;
};

/// For each of the rising `times` those that lie within `radius` seconds of it, both ends inclusive.
std::vector<Window> windows(std::span<const double> times, double radius);

/// The values that are allowed at a time.
struct Gate {
    double time = 0;
    double lowest = 0;
    double highest = 0;
};

/// The shortest path through all gates, by value at each: straight wherever it is free, level where it starts and ends.
/// Times rise strictly.
std::vector<double> tautString(std::span<const Gate> allowed);

} // namespace flowtide::SubjectKeyframes
