// How high a value usually is, and how much it varies.
#pragma once

#include <algorithm>
#include <cmath>

namespace flowtide::tracking {

/// The running mean and deviation of a positive value. What is a fall for one subject is nothing unusual for another,
/// that is blurred or turns.
class UsualLevel {
public:
    void add(double value) {
        if (mean_ <= 0) {
            mean_ = value;
            deviation_ = firstDeviation * value;
            return;
        }
        deviation_ += rate * (gaussian * std::abs(value - mean_) - deviation_);
        mean_ += rate * (value - mean_);
    }

    /// By how many deviations a value lies below the mean; 0 before the first value.
    double fallTo(double value) const {
        return mean_ > 0 ? (mean_ - value) / std::max(deviation_, leastDeviation * mean_) : 0;
    }

private:
    static constexpr double rate = 0.05; ///< slow enough for what comes gradually to be noticed
    static constexpr double firstDeviation = 0.3;
    static constexpr double leastDeviation = 0.1; ///< of the mean
    static constexpr double gaussian = 1.25;      ///< standard deviation ÷ mean absolute deviation

    double mean_ = 0;
    double deviation_ = 0;
};

} // namespace flowtide::tracking
