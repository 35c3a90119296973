// What the kernels' tests share: random planes, plain sampling, and the comparison with plain arithmetic.
#pragma once

#include "media/flow/field.h"
#include "media/flow/gray_image.h"
#include "media/flow/kernels/kernels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <string>
#include <vector>

namespace flowtide::flow {

/// Sizes below, at and above one vector and one tile, and no multiples of either.
struct Size {
    int width;
    int height;
};
constexpr Size kernelSizes[] = {{1, 1}, {2, 3}, {3, 2}, {7, 9}, {8, 8}, {17, 5}, {37, 41}, {66, 35}};

class Random {
public:
    explicit Random(unsigned seed)
        : engine_(seed) {}
    /// A whole number from `low` to `high`, both included.
    int whole(int low, int high) { return static_cast<int>(std::floor(real(low, high + 1.0))); }
    double real(double low, double high) { return low + (high - low) * static_cast<double>(engine_()) / 0x1p32; }
    std::int16_t motion(int reach) { return static_cast<std::int16_t>(whole(-reach, reach)); }

private:
    std::mt19937 engine_;
};

template <typename Value, typename Make>
Field<Value> filledField(Size size, const Make& make) {
    Field<Value> field(size.width, size.height);
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x)
            field(x, y) = make(x, y);
    return field;
}

template <typename Make>
GrayImage grayImage(Size size, const Make& make) {
    GrayImage image(size.width, size.height);
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x)
            image.row(y)[x] = static_cast<std::uint8_t>(make(x, y));
    image.pad();
    return image;
}

/// Noise in which black and white are frequent.
inline GrayImage noiseImage(Size size, Random& random) {
    return grayImage(size, [&](int, int) { return std::clamp(random.whole(-128, 383), 0, 255); });
}

/// A texture without abrupt edges, moved.
inline GrayImage waveImage(Size size, double dx, double dy) {
    return grayImage(size, [&](int x, int y) {
        const double u = x - dx;
        const double v = y - dy;
        return std::lround(128 + 40 * std::sin(0.31 * u + 0.2 * v) + 35 * std::sin(0.47 * v - 0.1 * u) +
                           30 * std::sin(0.83 * u + 0.71 * v));
    });
}

/// The image's pixel, or the nearest one inside.
inline int pixel(const GrayImage& image, int x, int y) {
    return image.row(std::clamp(y, 0, image.height() - 1))[std::clamp(x, 0, image.width() - 1)];
}

/// Bilinear, with the edges repeated.
inline double bilinear(const GrayImage& image, double x, double y) {
    const int column = static_cast<int>(std::floor(x));
    const int row = static_cast<int>(std::floor(y));
    const double fx = x - column;
    const double fy = y - row;
    return (1 - fy) * ((1 - fx) * pixel(image, column, row) + fx * pixel(image, column + 1, row)) +
           fy * ((1 - fx) * pixel(image, column, row + 1) + fx * pixel(image, column + 1, row + 1));
}

/// The 5 × 5 mean of a function of pixels; places outside count as the nearest one inside.
template <typename Error>
double meanAround(Size size, int x, int y, const Error& error) {
    double sum = 0;
    for (int dy = -2; dy <= 2; ++dy)
        for (int dx = -2; dx <= 2; ++dx)
            sum += error(std::clamp(x + dx, 0, size.width - 1), std::clamp(y + dy, 0, size.height - 1));
    return sum / 25;
}

/// Compares whatever a kernel made with exact values at the places from (left, top) to (right, bottom). Where the exact
/// value is NaN, two results are equally right; that may be so at one place in twenty.
template <typename Made, typename Exact>
void compare(const std::string& what, int left, int top, int right, int bottom, double tolerance, const Made& made,
             const Exact& exact) {
    int undecided = 0;
    for (int y = top; y < bottom; ++y)
        for (int x = left; x < right; ++x) {
            const double wanted = exact(x, y);
            const double got = made(x, y);
            undecided += std::isnan(wanted);
            if (std::abs(got - wanted) > tolerance) {
                ADD_FAILURE() << what << " of " << right << " x " << bottom << " at " << x << ", " << y << ": " << got
                              << " instead of " << wanted;
                return;
            }
        }
    EXPECT_LE(undecided, 2 + (right - left) * (bottom - top) / 20) << what;
}
template <typename Made, typename Exact>
void compare(const std::string& what, Size size, double tolerance, const Made& made, const Exact& exact) {
    compare(what, 0, 0, size.width, size.height, tolerance, made, exact);
}
/// Whole numbers are the exact ones, rounded; a hundredth is the single-precision arithmetic's.
constexpr double rounding = 0.51;

/// Runs a kernel on two bands of rows, the lower first, so that what it writes past its band's end is seen.
template <typename Run>
void inTwoBands(int rows, int unit, const Run& run) {
    const int middle = rows / 2 / unit * unit;
    run(middle, rows);
    run(0, middle);
}

/// A test of every set of kernels that the machine can run.
class KernelTest : public testing::TestWithParam<InstructionSet> {
protected:
    const Kernels& kernels = kernelsFor(GetParam());
    Random random{7};
};
inline std::vector<InstructionSet> instructionSets() {
    std::vector<InstructionSet> sets{InstructionSet::baseline};
    if (bestInstructionSet() != sets.front()) sets.push_back(bestInstructionSet());
    return sets;
}
inline std::string instructionSetName(const testing::TestParamInfo<InstructionSet>& set) {
    return set.param == InstructionSet::avx2 ? "avx2" : "baseline";
}

} // namespace flowtide::flow
