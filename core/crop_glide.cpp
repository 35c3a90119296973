// Solves the glide's least squares by a banded Cholesky factorisation.
#include "core/crop_glide.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace flowtide::CropGlide {

namespace {

constexpr double anchorWeight = 200; // observations that an anchor outweighs, so that drawn points are met closely
constexpr std::size_t fewestSamples = 8;
constexpr double shortestTau = 0.001;   // seconds
constexpr double smallestPivot = 1e-12; // keeps a near-singular system from dividing by zero
constexpr std::array<double, 4> thirdDifference{1, -3, 3, -1};

/// A symmetric matrix with three off-diagonals: row i holds its entries (i, i), (i, i−1), (i, i−2), (i, i−3).
using Band = std::vector<std::array<double, 4>>;

void addPenalty(Band& matrix, double lambda) {
    for (std::size_t row = 0; row + 3 < matrix.size(); ++row)
        for (std::size_t a = 0; a < 4; ++a)
            for (std::size_t b = 0; b <= a; ++b)
                matrix[row + a][a - b] += lambda * thirdDifference[a] * thirdDifference[b];
}

/// Turns the matrix into its lower Cholesky factor.
void factorise(Band& matrix) {
    for (std::size_t i = 0; i < matrix.size(); ++i) {
        for (std::size_t back = std::min<std::size_t>(i, 3); back > 0; --back) {
            const std::size_t j = i - back;
            double sum = matrix[i][back];
            for (std::size_t further = back + 1; further <= std::min<std::size_t>(i, 3); ++further)
                sum -= matrix[i][further] * matrix[j][further - back];
            matrix[i][back] = sum / matrix[j][0];
        }
        double pivot = matrix[i][0];
        for (std::size_t back = 1; back <= std::min<std::size_t>(i, 3); ++back)
            pivot -= matrix[i][back] * matrix[i][back];
        matrix[i][0] = std::sqrt(std::max(pivot, smallestPivot));
    }
}

void solve(const Band& factor, std::vector<double>& x) {
    const std::size_t n = x.size();
    for (std::size_t i = 0; i < n; ++i) {
        for (std::size_t back = 1; back <= std::min<std::size_t>(i, 3); ++back)
            x[i] -= factor[i][back] * x[i - back];
        x[i] /= factor[i][0];
    }
    for (std::size_t i = n; i-- > 0;) {
        for (std::size_t ahead = 1; ahead <= std::min<std::size_t>(n - 1 - i, 3); ++ahead)
            x[i] -= factor[i + ahead][ahead] * x[i + ahead];
        x[i] /= factor[i][0];
    }
}

} // namespace

std::vector<double> smoothTrajectory(const std::vector<double>& raw, double step, const std::vector<Anchor>& anchors,
                                     double glide) {
    const double tau = fullGlideSeconds * std::min(glide, 1.0);
    if (!(glide >= 0) || tau <= shortestTau || raw.size() < fewestSamples || !(step > 0)) return raw;
    // A path that stands still is its own solution, here without the solver's rounding.
    const auto staysPut = [&](double value) { return value == raw.front(); };
    if (std::all_of(raw.begin(), raw.end(), staysPut) &&
        std::all_of(anchors.begin(), anchors.end(), [&](const Anchor& anchor) { return staysPut(anchor.value); }))
        return raw;

    Band matrix(raw.size(), {1, 0, 0, 0});
    std::vector<double> x = raw;
    for (const Anchor& anchor : anchors) {
        if (anchor.index >= raw.size()) continue;
        matrix[anchor.index][0] += anchorWeight;
        x[anchor.index] += anchorWeight * anchor.value;
    }
    addPenalty(matrix, std::pow(tau / (2 * std::numbers::pi * step), 6));
    factorise(matrix);
    solve(matrix, x);
    for (double& value : x)
        value = std::clamp(value, 0.0, 1.0);
    return x;
}

} // namespace flowtide::CropGlide
