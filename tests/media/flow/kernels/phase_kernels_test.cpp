// Splatting, fusion, the median and blend weights, against their definitions.
#include "tests/media/flow/kernels/kernel_test.h"

namespace flowtide::flow {
namespace {

class FlowPhaseKernels : public KernelTest {
protected:
    /// Motion that is the same over stretches of some pixels, as motion mostly is, and rough in between.
    Field<MotionVector> motionField(Size size, int reach) {
        MotionVector stretch{};
        return filledField<MotionVector>(size, [&](int x, int y) {
            if (x % 13 == 0 || (y / 3 % 3 == 0 && x % 3 == 0)) stretch = {random.motion(reach), random.motion(reach)};
            return stretch;
        });
    }
    Field<std::uint8_t> bytes(Size size) {
        return filledField<std::uint8_t>(
            size, [&](int, int) { return static_cast<std::uint8_t>(std::min(random.whole(0, 400), 255)); });
    }
};
INSTANTIATE_TEST_SUITE_P(Sets, FlowPhaseKernels, testing::ValuesIn(instructionSets()), instructionSetName);

constexpr int phases[] = {1, 4096, 8192, 13000, 16383}; // of 16384

/// A component times a phase, to the nearest 64th.
int scaled(int component, int phase) {
    return static_cast<int>(std::floor(component * (phase / 16384.0) + 0.5));
}

TEST_P(FlowPhaseKernels, SplattingKeepsTheMostConfidentThenTheNearest) {
    for (const Size size : kernelSizes)
        for (const int phase : phases)
            for (const bool reversed : {false, true}) {
                Field<MotionVector> motion = motionField(size, phase % 3 == 0 ? 300 : 2000);
                Field<std::uint8_t> confidence = bytes(size);
                const std::size_t count = static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height);
                std::vector<std::uint64_t> cells(count);
                kernels.splat({size.width, size.height, motion.row(0), confidence.row(0), nullptr}, phase, reversed,
                              cells.data());
                Field<MotionVector> splatted(size.width, size.height);
                Field<std::uint8_t> certainty(size.width, size.height);
                inTwoBands(size.height, 1, [&](int begin, int end) {
                    kernels.resolveSplat(cells.data(), size.width, {splatted.row(0), certainty.row(0)}, begin, end);
                });

                /// What won a cell; rivals as good may have other vectors.
                struct Winner {
                    int confidence = -1;
                    int squared = 0;
                    std::vector<MotionVector> vectors;
                };
                Field<Winner> winners(size.width, size.height);
                for (int y = 0; y < size.height; ++y)
                    for (int x = 0; x < size.width; ++x) {
                        const MotionVector v = motion(x, y);
                        const int tx = 64 * x + scaled(v.x, phase);
                        const int ty = 64 * y + scaled(v.y, phase);
                        for (int row = ty >> 6; row <= (ty >> 6) + 1; ++row)
                            for (int column = tx >> 6; column <= (tx >> 6) + 1; ++column) {
                                if (column < 0 || row < 0 || column >= size.width || row >= size.height) continue;
                                Winner& winner = winners(column, row);
                                const int sixteenth = confidence(x, y) / 16;
                                const int squared =
                                    (64 * column - tx) * (64 * column - tx) + (64 * row - ty) * (64 * row - ty);
                                if (std::pair(sixteenth, -squared) < std::pair(winner.confidence, -winner.squared))
                                    continue;
                                if (sixteenth != winner.confidence || squared != winner.squared)
                                    winner = {sixteenth, squared, {}};
                                winner.vectors.push_back(v);
                            }
                    }
                compare(
                    "certainty", size, 0, [&](int x, int y) { return certainty(x, y); },
                    [&](int x, int y) { return std::max(winners(x, y).confidence, 0) * 16; });
                compare(
                    "splatted", size, 0,
                    [&](int column, int row) {
                        // A hole shows its row's nearest vector, of two the one to the left.
                        int from = -1;
                        for (int x = 0; x < size.width; ++x)
                            if (!winners(x, row).vectors.empty() &&
                                (from < 0 || std::abs(x - column) < std::abs(from - column)))
                                from = x;
                        const int sign = reversed ? -1 : 1;
                        const MotionVector got = splatted(column, row);
                        if (from < 0) return got.x == 0 && got.y == 0;
                        const auto& vectors = winners(from, row).vectors;
                        return std::any_of(vectors.begin(), vectors.end(),
                                           [&](MotionVector v) { return got.x == sign * v.x && got.y == sign * v.y; });
                    },
                    [](int, int) { return 1; });
            }
}

TEST_P(FlowPhaseKernels, FusionTakesWhatTheImagesAgreeOn) {
    for (const Size size : kernelSizes)
        for (const int phase : {3000, 8192}) {
            const GrayImage first = waveImage(size, 0, 0);
            const GrayImage second = waveImage(size, 3, 1.5);
            Field<MotionVector> motions[2];
            Field<std::uint8_t> confidences[2] = {bytes(size), bytes(size)};
            for (auto& motion : motions) {
                motion = motionField(size, 110);
                for (int y = 0; y < size.height; ++y)
                    for (int x = 0; x < size.width; ++x) // right, or up to some pixels off; often a little
                        motion(x, y) = {static_cast<std::int16_t>(192 + motion(x, y).x / (y % 5 == 0 ? 1 : 3)),
                                        static_cast<std::int16_t>(96 + motion(x, y).y / (x / 16 % 2 == 0 ? 1 : 3))};
            }
            Field<MotionVector> fused(size.width, size.height);
            inTwoBands((size.height + 15) / 16, 1, [&](int begin, int end) {
                kernels.fuseProjections(
                    {first.view(), second.view(), phase}, {motions[0].row(0), confidences[0].row(0)},
                    {motions[1].row(0), confidences[1].row(0)}, size.width, size.height, fused.row(0), begin, end);
            });
            const auto cost = [&](int n, int x, int y) {
                const double error = meanAround(size, x, y, [&](int i, int j) {
                    const MotionVector v = motions[n](i, j);
                    const double fx = i - scaled(v.x, phase) / 64.0;
                    const double fy = j - scaled(v.y, phase) / 64.0;
                    return std::abs(bilinear(first, fx, fy) - bilinear(second, fx + v.x / 64.0, fy + v.y / 64.0));
                });
                return error - confidences[n](x, y) * 2.0 / 255;
            };
            for (const bool isX : {true, false}) {
                const auto component = [&](MotionVector v) -> int { return isX ? v.x : v.y; };
                compare(
                    "fused", size, 0, [&](int x, int y) { return component(fused(x, y)); },
                    [&](int x, int y) -> double {
                        const MotionVector a = motions[0](x, y);
                        const MotionVector b = motions[1](x, y);
                        if (std::hypot(a.x - b.x, a.y - b.y) < 64)
                            return std::floor((component(a) + component(b)) / 2.0);
                        const double gain = cost(0, x, y) - cost(1, x, y);
                        if (std::abs(gain) < 1e-3) return std::nan("");
                        return component(gain > 0 ? b : a);
                    });
            }
        }
}

TEST_P(FlowPhaseKernels, TheMedianIsTheMiddleOfFive) {
    for (const Size size : kernelSizes) {
        const Field<MotionVector> motion = filledField<MotionVector>(size, [&](int, int) {
            return MotionVector{random.motion(32000), random.motion(32000)};
        });
        Field<MotionVector> result(size.width, size.height);
        inTwoBands(size.height, 1, [&](int begin, int end) {
            kernels.crossMedian(motion.row(0), size.width, size.height, result.row(0), begin, end);
        });
        for (const auto component : {&MotionVector::x, &MotionVector::y})
            compare(
                "median", size, 0, [&](int x, int y) { return result(x, y).*component; },
                [&](int x, int y) {
                    int five[] = {motion(x, y).*component, motion.clamped(x - 1, y).*component,
                                  motion.clamped(x + 1, y).*component, motion.clamped(x, y - 1).*component,
                                  motion.clamped(x, y + 1).*component};
                    std::sort(five, five + 5);
                    return five[2];
                });
    }
}

TEST_P(FlowPhaseKernels, BlendWeightsFollowVisibility) {
    for (const Size size : kernelSizes)
        for (const int phase : phases)
            for (const bool isShifted : {false, true}) {
                const GrayImage first = noiseImage(size, random);
                const GrayImage second = noiseImage(size, random);
                Field<MotionVector> motion = motionField(size, 300);
                Field<MotionVector> shift = motionField(size, 90);
                Field<std::uint8_t> seen[2] = {bytes(size), bytes(size)};
                Field<std::int16_t> weights(size.width, size.height);
                const auto flowOf = [&](int n) {
                    return MotionView{size.width, size.height, nullptr, nullptr, seen[n].row(0)};
                };
                const PhasePlanes planes{size.width, size.height, motion.row(0), isShifted ? shift.row(0) : nullptr,
                                         weights.row(0)};
                inTwoBands(size.height, 1, [&](int begin, int end) {
                    kernels.blendWeights({first.view(), second.view(), phase}, flowOf(0), flowOf(1), planes, begin,
                                         end);
                });
                compare(
                    "second frame's weight", size, 0.6, [&](int x, int y) { return weights(x, y); },
                    [&](int x, int y) -> double {
                        const MotionVector v = motion(x, y);
                        const MotionVector s = isShifted ? shift(x, y) : MotionVector{};
                        const double t = phase / 16384.0;
                        const double x1 = x + (s.x - scaled(v.x, phase)) / 64.0;
                        const double y1 = y + (s.y - scaled(v.y, phase)) / 64.0;
                        const double places[2][2] = {{x1, y1}, {x1 + v.x / 64.0, y1 + v.y / 64.0}};
                        bool isInside[2];
                        double visibility[2]; // of each frame's pixel in the other
                        for (int n = 0; n < 2; ++n) {
                            const int column = static_cast<int>(std::floor(places[n][0] + 0.5));
                            const int row = static_cast<int>(std::floor(places[n][1] + 0.5));
                            isInside[n] = column >= 0 && row >= 0 && column < size.width && row < size.height;
                            visibility[n] = seen[n].clamped(column, row) / 255.0;
                        }
                        if (isInside[0] && isInside[1] && visibility[0] >= 1 && visibility[1] >= 1) return phase;
                        const double difference = std::abs(bilinear(first, places[0][0], places[0][1]) -
                                                           bilinear(second, places[1][0], places[1][1]));
                        const double influence = std::pow(difference / (difference + 10), 2);
                        const auto weightOf = [&](int n) {
                            return isInside[n] ? 1 - influence * (0.9 - visibility[1 - n]) : 0.001;
                        };
                        const double one = (1 - t) * weightOf(0);
                        const double other = t * weightOf(1);
                        return 16384 * other / (one + other);
                    });
            }
}

} // namespace
} // namespace flowtide::flow
