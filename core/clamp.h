// Clamping that is total: it gives a usable number for every input.
#pragma once

namespace flowtide {

/// `value` limited to `upper` first and to `lower` last, so that `lower` wins when the bounds are inverted. NaN gives
/// `lower`.
constexpr double clamped(double value, double lower, double upper) {
    const double limited = upper < value ? upper : value;
    return lower < limited ? limited : lower;
}

} // namespace flowtide
