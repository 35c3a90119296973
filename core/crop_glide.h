// Smooths the crop's path over output time, so that the frame glides instead of following each point.
#pragma once

#include <cstddef>
#include <vector>

namespace flowtide::CropGlide {

/// A sample that the smoothed path is pulled towards.
struct Anchor {
    std::size_t index;
    double value;
};

/// Seconds of output: a movement to and fro of this period keeps half of its travel at full glide.
constexpr double fullGlideSeconds = 1.5;

/// Penalised least squares with third differences as the penalty, which statistics calls Whittaker–Henderson graduation
/// (E. T. Whittaker, "On a new method of graduation", Proc. Edinburgh Math. Soc. 41, 1923), with the anchors as heavier
/// observations. The penalty's weight is (period / 2π step)⁶: a wave of that period is halved, and of shorter ones
/// hardly anything is left. `raw` holds crop centres (0...1) every `step` output
/// seconds, `glide` is 0 (as drawn) to 1. Returns as many values, each in 0...1; the raw ones unchanged when there is
/// nothing to smooth. Linear in the number of samples: the matrix has seven diagonals.
std::vector<double> smoothTrajectory(const std::vector<double>& raw, double step, const std::vector<Anchor>& anchors,
                                     double glide);

} // namespace flowtide::CropGlide
