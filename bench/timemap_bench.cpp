// How long the largest time map takes to build, beside the arithmetic that no build can avoid and beside the plain
// build that scans the keyframes for every sample. All in one run, medians of several.
#include "core/curve_engine.h"
#include "tests/core/naive_time_map.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <random>
#include <vector>

namespace {

using namespace flowtide;

constexpr int keyframeCount = 19999;
constexpr double duration = 3600;
constexpr int intervals = 400000;
constexpr int runs = 15;
/// The plain build is measured with so many times fewer keyframes, over a clip as much shorter; its time grows with
/// the product of keyframes and intervals.
constexpr int naiveReduction = 20;

/// Irregular times, so that the closest pair asks for the most samples.
SpeedKeyframes keyframesOver(double seconds, int count) {
    std::mt19937 engine(7);
    const auto uniform = [&engine] { return static_cast<double>(engine()) / 4294967296.0; };
    SpeedKeyframes keyframes;
    for (int i = 0; i < count; ++i) {
        keyframes.push_back({.id = {}, .time = seconds * uniform(), .speed = std::exp2(6 * uniform() - 3)});
    }
    sortByTime(keyframes);
    return keyframes;
}

template <typename Work>
double medianMilliseconds(int count, Work work) {
    std::vector<double> times;
    for (int i = 0; i < count; ++i) {
        const auto start = std::chrono::steady_clock::now();
        work();
        times.push_back(std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

/// One segment's cubic and one division per interval, summed in order; nothing is searched or stored.
double bareArithmetic(double y0, double y1, double m0, double m1, double smoothing) {
    const double dt = 1.0 / intervals;
    double sum = 0;
    for (int i = 0; i < intervals; ++i) {
        const double u = i * dt + dt / 2;
        const double u2 = u * u;
        const double u3 = u2 * u;
        const double cubic =
            (2 * u3 - 3 * u2 + 1) * y0 + (u3 - 2 * u2 + u) * m0 + (3 * u2 - 2 * u3) * y1 + (u3 - u2) * m1;
        const double linear = y0 + u * (y1 - y0);
        sum += dt / (linear + smoothing * (cubic - linear));
    }
    return sum;
}

} // namespace

int main() {
    // Read through volatile, so that no result can be computed beforehand or dropped.
    volatile double one = 1;
    volatile double sink = 0;

    const SpeedKeyframes keyframes = keyframesOver(duration, keyframeCount);
    std::size_t entries = 0;
    const double build = medianMilliseconds(runs, [&] {
        const TimeMap map = CurveEngine::buildTimeMap(keyframes, duration, {}, 1, one);
        entries = map.entries().size();
        sink = map.outputDuration();
    });
    const double limit = medianMilliseconds(runs, [&] { sink = bareArithmetic(one, one + 2, one, one, one); });

    const SpeedKeyframes fewer = keyframesOver(duration / naiveReduction, keyframeCount / naiveReduction);
    const SourceRange shorter{0, duration / naiveReduction};
    std::size_t naiveEntries = 0;
    const double naiveSmall = medianMilliseconds(3, [&] {
        const TimeMap map = naive::buildTimeMap(fewer, shorter.upper, shorter, 1, one);
        naiveEntries = map.entries().size();
        sink = map.outputDuration();
    });
    const double scale = static_cast<double>(intervals) / static_cast<double>(naiveEntries - 1) * naiveReduction;

    std::printf("time map: %d keyframes over %.0f s, %zu entries, median of %d runs\n", keyframeCount, duration,
                entries, runs);
    std::printf("  buildTimeMap         %8.2f ms\n", build);
    std::printf("  bare arithmetic      %8.2f ms   build / bare  = %.2f\n", limit, build / limit);
    std::printf("  plain scan           %8.0f ms   plain / build = %.0f   (extrapolated: %d keyframes, %zu entries "
                "took %.1f ms, x %.0f)\n",
                naiveSmall * scale, naiveSmall * scale / build, keyframeCount / naiveReduction, naiveEntries,
                naiveSmall, scale);
    return 0;
}
