// Smooths the crop's path over output time.
#pragma once

#include <cstddef>
#include <vector>

namespace flowtide::CropGlide {

/// A sample that the smoothed path is pulled towards.
struct Anchor {
    std::size_t index;
    double value;
};

/// Seconds of output over which a full glide settles.
constexpr double fullGlideSeconds = 1.5;

/// Penalised least squares with a third-difference penalty. `raw` holds crop centres (0...1) every `step` output
/// seconds, `glide` is 0 (as drawn) to 1. Returns as many values, each in 0...1; the raw ones unchanged when there is
/// nothing to smooth. Linear in the number of samples.
std::vector<double> smoothTrajectory(const std::vector<double>& raw, double step, const std::vector<Anchor>& anchors,
                                     double glide);

} // namespace flowtide::CropGlide
