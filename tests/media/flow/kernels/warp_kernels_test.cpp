// Drawing, against cubic convolution in real numbers.
#include "tests/media/flow/kernels/kernel_test.h"

#include <array>
#include <cstring>

namespace flowtide::flow {
namespace {

class FlowWarpKernels : public KernelTest {};
INSTANTIATE_TEST_SUITE_P(Sets, FlowWarpKernels, testing::ValuesIn(instructionSets()), instructionSetName);

/// A plane of samples of one or two bytes, with rows farther apart than they are long.
struct Plane {
    Size size;
    int bitDepth;
    std::ptrdiff_t stride;
    std::vector<std::uint8_t> memory;

    Plane(Size of, int depth)
        : size(of)
        , bitDepth(depth)
        , stride((depth > 8 ? 2 : 1) * (of.width + 3))
        , memory(static_cast<std::size_t>(stride * of.height)) {}

    PlaneView view() const { return {memory.data(), stride, size.width, size.height, bitDepth > 8 ? 2 : 1, bitDepth}; }
    int at(int x, int y) const {
        const std::uint8_t* row = memory.data() + std::clamp(y, 0, size.height - 1) * stride;
        const int column = std::clamp(x, 0, size.width - 1);
        return bitDepth > 8 ? row[2 * column] + 256 * row[2 * column + 1] : row[column];
    }
    void fillRandomly(Random& random) {
        for (int y = 0; y < size.height; ++y)
            for (int x = 0; x < size.width; ++x) {
                // Black and white are frequent, so that results would leave the range.
                const int most = (1 << bitDepth) - 1;
                const auto code = static_cast<std::uint16_t>(std::clamp(random.whole(-most, 2 * most), 0, most));
                std::uint8_t* row = memory.data() + y * stride;
                if (bitDepth > 8)
                    std::memcpy(row + 2 * x, &code, 2);
                else
                    row[x] = static_cast<std::uint8_t>(code);
            }
    }
    /// Keys' cubic convolution with a = -1/2 at a place in sixteenths, with the edges repeated.
    double cubic(int x16, int y16) const {
        const auto weight = [](double distance) {
            const double d = std::abs(distance);
            return d < 1 ? 1.5 * d * d * d - 2.5 * d * d + 1 : d < 2 ? -0.5 * d * d * d + 2.5 * d * d - 4 * d + 2 : 0;
        };
        const int column = x16 >> 4;
        const int row = y16 >> 4;
        double sum = 0;
        for (int j = -1; j <= 2; ++j)
            for (int i = -1; i <= 2; ++i)
                sum += weight((x16 & 15) / 16.0 - i) * weight((y16 & 15) / 16.0 - j) * at(column + i, row + j);
        return sum;
    }
};

/// The field of a phase at half the luma's resolution.
struct PhaseInput {
    Field<MotionVector> motion;
    Field<MotionVector> shift;
    Field<std::int16_t> secondWeight;
};

/// How the field's motion changes from place to place.
enum class Motion { uniform, sloping, rough, far };

PhaseInput phaseInput(Size field, Motion kind, Random& random) {
    const auto vectors = [&](int reach) {
        const MotionVector all{random.motion(reach), random.motion(reach)};
        return filledField<MotionVector>(field, [&](int x, int y) -> MotionVector {
            switch (kind) {
            case Motion::uniform:
                return all;
            case Motion::sloping: // neighbours differ by about what may be drawn at one place
                return {static_cast<std::int16_t>(all.x + x * (y % 7) / 5),
                        static_cast<std::int16_t>(all.y - x * (y % 5) / 6)};
            case Motion::rough:
                return {random.motion(reach), random.motion(reach)};
            case Motion::far:
                return {random.motion(30000), random.motion(30000)};
            }
            return {};
        });
    };
    return {vectors(400), vectors(60), filledField<std::int16_t>(field, [&](int, int) {
                return static_cast<std::int16_t>(random.whole(0, 16384));
            })};
}

/// A value of the half-resolution field at a sample of a plane. Luma columns and rows 2k and 2k + 1 lie a quarter of a
/// field pixel to either side of k; chroma of half width lies on the even columns, of half height between two rows.
template <typename Value>
double fieldAt(Size field, int x, int y, bool halfWidth, bool halfHeight, const Value& value) {
    const auto halved = [](int luma) {
        const int whole = luma / 2;
        return whole + (luma % 2 == 0 ? -0.25 : 0.25);
    };
    const double column = halfWidth ? x - 0.25 : halved(x);
    const double row = halfHeight ? y : halved(y);
    const int left = static_cast<int>(std::floor(column));
    const int top = static_cast<int>(std::floor(row));
    const auto clamped = [&](int i, int j) -> double {
        return value(std::clamp(i, 0, field.width - 1), std::clamp(j, 0, field.height - 1));
    };
    const auto across = [&](int j) {
        return (left + 1 - column) * clamped(left, j) + (column - left) * clamped(left + 1, j);
    };
    return (top + 1 - row) * across(top) + (row - top) * across(top + 1);
}

/// How a plane samples the picture.
struct Sampling {
    int bitDepth;
    bool halfWidth;
    bool halfHeight;
};

/// One plane's drawing in real numbers.
class ExactWarp {
public:
    ExactWarp(Size luma, Sampling sampling, Motion kind, float phase, Random& random)
        : sampling_(sampling)
        , phase_(phase)
        , isShifted_(phase > 0.3F)
        , field_{(luma.width + 1) / 2, (luma.height + 1) / 2}
        , size_{sampling.halfWidth ? field_.width : luma.width, sampling.halfHeight ? field_.height : luma.height}
        , first_(size_, sampling.bitDepth)
        , second_(size_, sampling.bitDepth)
        , input_(phaseInput(field_, kind, random)) {
        first_.fillRandomly(random);
        second_.fillRandomly(random);
    }

    Size size() const { return size_; }

    PlaneWarp warpTo(Plane& drawn) {
        return {first_.view(),
                second_.view(),
                {field_.width, field_.height, input_.motion.row(0), isShifted_ ? input_.shift.row(0) : nullptr,
                 input_.secondWeight.row(0)},
                phase_,
                sampling_.halfWidth,
                sampling_.halfHeight,
                drawn.memory.data(),
                drawn.stride};
    }

    /// A drawn sample, not yet rounded; NaN where a place is too near to the middle of two sixteenths.
    double at(int x, int y) const {
        const Places places = isSampledTogether(x / 8 * 8, y) ? placesOf(x / 8 * 8 + 3, y) : placesOf(x, y);
        if (places.isUndecided) return std::nan("");
        const double one = first_.cubic(16 * x + places.at[0], 16 * y + places.at[1]);
        const double other = second_.cubic(16 * x + places.at[2], 16 * y + places.at[3]);
        const double weight = valueAt(x, y, [&](int i, int j) { return input_.secondWeight(i, j); }) / 16384;
        return std::clamp(one + weight * (other - one), 0.0, static_cast<double>((1 << sampling_.bitDepth) - 1));
    }

    /// How far fixed point may be off before the last rounding, in codes. Alone: four sums across to a 64th of a code.
    /// Together: four products each to a 64th and to a 32nd. With 10 bits, all of it to four times as much.
    double tolerance(int x, int y) const {
        const double codes = sampling_.bitDepth == 8 ? 1 : 4;
        return 0.5 + codes * (isSampledTogether(x / 8 * 8, y) ? 2.0 / 64 + 2.0 / 32 : 0.75 / 64);
    }

private:
    /// In sixteenths of the plane's pixels, beside the sample: in the first frame x, y, in the second x, y.
    struct Places {
        int at[4];
        bool isUndecided = false;
    };
    /// Motion x, y, shift x, y in the same unit.
    using Parts = std::array<double, 4>;

    template <typename Value>
    double valueAt(int x, int y, const Value& value) const {
        return fieldAt(field_, x, y, sampling_.halfWidth, sampling_.halfHeight, value);
    }
    Parts partsAt(int x, int y) const {
        // 64ths of a field pixel are 32nds of a luma pixel.
        const double unitX = sampling_.halfWidth ? 0.25 : 0.5;
        const double unitY = sampling_.halfHeight ? 0.25 : 0.5;
        const auto of = [&](const Field<MotionVector>& vectors, auto component) {
            return valueAt(x, y, [&](int i, int j) { return vectors(i, j).*component; });
        };
        return {unitX * of(input_.motion, &MotionVector::x), unitY * of(input_.motion, &MotionVector::y),
                isShifted_ ? unitX * of(input_.shift, &MotionVector::x) : 0,
                isShifted_ ? unitY * of(input_.shift, &MotionVector::y) : 0};
    }
    Places placesOf(int x, int y) const {
        const Parts parts = partsAt(x, y);
        Places places{};
        for (unsigned n = 0; n < 4; ++n) {
            const double value = parts[2 + n % 2] + (n < 2 ? -phase_ : 1 - phase_) * parts[n % 2];
            places.at[n] = static_cast<int>(std::floor(value + 0.5));
            // Single precision settles a place to a 128th before it is rounded.
            const double toHalf = std::abs(value - std::floor(value) - 0.5);
            places.isUndecided |= toHalf < 0.6 / 128 && std::floor(value * 128) != value * 128;
        }
        return places;
    }
    /// Eight neighbours of which none lies more than a sixteenth from where the fourth one's motion takes it are
    /// sampled there together, unless that reaches over the edge.
    bool isSampledTogether(int group, int y) const {
        if (group + 8 > size_.width) return false;
        const Parts fourth = partsAt(group + 3, y);
        for (int x = group; x < group + 8; ++x)
            for (unsigned n = 0; n < 4; ++n)
                if (std::abs(partsAt(x, y)[n] - fourth[n]) > (n < 2 ? 1 / std::max(phase_, 1 - phase_) : 1))
                    return false;
        const Places places = placesOf(group + 3, y);
        const auto isInside = [&](int n) {
            const int column = group + (places.at[n] >> 4);
            const int row = y + (places.at[n + 1] >> 4);
            return column >= 1 && row >= 1 && column + 15 <= size_.width && row + 2 < size_.height;
        };
        return isInside(0) && isInside(2);
    }

    Sampling sampling_;
    float phase_;
    bool isShifted_;
    Size field_;
    Size size_;
    Plane first_;
    Plane second_;
    PhaseInput input_;
};

TEST_P(FlowWarpKernels, PlanesAreCubicSamplesOfBothFramesBlended) {
    for (const Sampling sampling : {Sampling{8, false, false}, {8, true, true}, {10, false, false}, {10, true, false}})
        for (const Size luma : {Size{1, 1}, Size{5, 3}, Size{33, 8}, Size{47, 29}, Size{130, 21}})
            for (const Motion kind : {Motion::uniform, Motion::sloping, Motion::rough, Motion::far})
                for (const float phase : {0.25F, 0.5F, 0.875F}) {
                    ExactWarp exact(luma, sampling, kind, phase, random);
                    Plane drawn(exact.size(), sampling.bitDepth);
                    const PlaneWarp warp = exact.warpTo(drawn);
                    std::vector<float> scratch(warpScratchSize(warp.field.width));
                    inTwoBands(exact.size().height, 1,
                               [&](int begin, int end) { kernels.warp(warp, scratch.data(), begin, end); });
                    compare(
                        "sample's error to its bound", exact.size(), 1,
                        [&](int x, int y) { return (drawn.at(x, y) - exact.at(x, y)) / exact.tolerance(x, y); },
                        [&](int x, int y) { return 0 * exact.at(x, y); });
                }
}

} // namespace
} // namespace flowtide::flow
