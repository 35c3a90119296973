// The curve and its map computed the plain way, one scan and one set of tangents per evaluation: what the fast code
// must equal to the last bit.
#pragma once

#include "core/keyframe_rules.h"
#include "core/speed_keyframe.h"
#include "core/time_map.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

namespace flowtide::naive {

constexpr double epsilon = 0.000001;

inline double secant(const SpeedKeyframes& k, std::size_t i) {
    return (k[i + 1].speed - k[i].speed) / std::max(k[i + 1].time - k[i].time, epsilon);
}

inline double slope(const SpeedKeyframes& k, std::size_t i) {
    const std::size_t n = k.size();
    if (n < 2) return 0;
    if (i > 0 && i < n - 1) {
        const double h0 = std::max(k[i].time - k[i - 1].time, epsilon);
        const double h1 = std::max(k[i + 1].time - k[i].time, epsilon);
        const double d0 = (k[i].speed - k[i - 1].speed) / h0;
        const double d1 = (k[i + 1].speed - k[i].speed) / h1;
        if (d0 * d1 <= 0) return 0;
        const double m = (h0 + h1) / (h0 / d0 + h1 / d1);
        return std::isfinite(m) ? m : 0;
    }
    if (n == 2) return secant(k, 0);
    const double d = secant(k, i == 0 ? 0 : n - 2);
    const double e = secant(k, i == 0 ? 1 : n - 3);
    if (d * e <= 0) return 0;
    return (d < 0 ? -1.0 : 1.0) * std::min(std::abs(d), 3 * std::abs(e));
}

inline double value(double t, const SpeedKeyframes& k, double smoothing, double lower, double upper) {
    const auto limited = [&](double v) { return std::max(std::min(v, upper), lower); };
    if (k.empty()) return limited(1.0);
    if (k.size() == 1 || t <= k.front().time) return limited(k.front().speed);
    if (t >= k.back().time) return limited(k.back().speed);
    for (std::size_t i = 1; i < k.size(); ++i) {
        if (!(k[i - 1].time <= t && t <= k[i].time)) continue;
        const double h = std::max(k[i].time - k[i - 1].time, epsilon);
        const double u = std::min(std::max((t - k[i - 1].time) / h, 0.0), 1.0);
        const double u2 = u * u;
        const double u3 = u * u * u;
        const double h00 = 2 * u3 - 3 * u2 + 1;
        const double h10 = u3 - 2 * u2 + u;
        const double h01 = 3 * u2 - 2 * u3;
        const double h11 = u3 - u2;
        const double y0 = k[i - 1].speed;
        const double y1 = k[i].speed;
        const double cubic = h00 * y0 + h10 * h * slope(k, i - 1) + h01 * y1 + h11 * h * slope(k, i);
        const double linear = y0 + u * (y1 - y0);
        const double s = std::min(std::max(smoothing, 0.0), 1.0);
        return limited(linear + s * (cubic - linear));
    }
    return limited(k.back().speed);
}

inline TimeMap buildTimeMap(const SpeedKeyframes& keyframes, double duration, SourceRange requested, int steps,
                            double smoothing) {
    const double d = std::max(duration, 0.0);
    double lo = std::max(std::min(requested.lower, d), 0.0);
    double hi = std::max(std::min(requested.upper, d), lo);
    if (d > 0 && hi - lo < epsilon) {
        hi = std::min(lo + epsilon, d);
        lo = std::max(hi - epsilon, 0.0);
    }
    const SpeedKeyframes curve = KeyframeRules::curveForSourceRange(keyframes, d, {lo, hi}, 1.0);
    const double span = std::max(hi - lo, epsilon);
    double gap = 0;
    for (std::size_t i = 1; i < curve.size(); ++i) {
        if (curve[i].time < lo || curve[i - 1].time > hi) continue;
        const double g = curve[i].time - curve[i - 1].time;
        if (g > 0 && (gap == 0 || g < gap)) gap = g;
    }
    const double step = std::max(0.0005, (gap == 0 ? span : gap) * 0.25);
    const int count = std::min(std::max(static_cast<int>(std::min(span / step, 1e9)), steps), 400000);
    const double dt = span / count;
    std::vector<TimeMap::Entry> entries;
    double sum = 0;
    for (int i = 0; i <= count; ++i) {
        entries.push_back({lo + i * dt, sum});
        if (i < count) sum += dt / std::max(value(lo + i * dt + dt / 2, curve, smoothing, 0.01, 100.0), 0.01);
    }
    return TimeMap(std::move(entries), {lo, hi}, sum);
}

} // namespace flowtide::naive
