// Random keyframe lists for the property tests, the same on every run and every machine.
#pragma once

#include "core/keyframe_rules.h"
#include "core/speed_keyframe.h"

#include <cmath>
#include <cstdint>
#include <random>

namespace flowtide {

class RandomCurves {
public:
    explicit RandomCurves(std::uint32_t seed)
        : engine_(seed) {}

    /// Uniform within the bounds. (The library's distributions differ between implementations.)
    double between(double lower, double upper) {
        return lower + (upper - lower) * (static_cast<double>(engine_()) / 4294967296.0);
    }
    int count(int lower, int upper) { return static_cast<int>(std::floor(between(lower, upper + 1.0))); }

    /// Sorted points from a little before the clip to a little after it; speeds spread evenly over the octaves from
    /// below the lowest speed to above the highest; now and then equal times and trim roles.
    SpeedKeyframes curve(int points, double duration) {
        SpeedKeyframes keyframes;
        for (int i = 0; i < points; ++i) {
            double time = between(-0.1 * duration, 1.1 * duration);
            if (!keyframes.empty() && count(0, 7) == 0) time = keyframes.back().time;
            const int kind = count(0, 9);
            const auto role = kind == 0   ? SpeedKeyframeRole::trimStart
                              : kind == 1 ? SpeedKeyframeRole::trimEnd
                                          : SpeedKeyframeRole::curve;
            keyframes.push_back({.id = {}, .time = time, .speed = std::exp2(between(-8, 8)), .role = role});
        }
        sortByTime(keyframes);
        return keyframes;
    }

private:
    std::mt19937 engine_;
};

} // namespace flowtide
