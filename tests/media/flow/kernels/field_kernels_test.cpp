// The consistency check and pull-push filling, against their formulas.
#include "tests/media/flow/kernels/kernel_test.h"

namespace flowtide::flow {
namespace {

class FlowFieldKernels : public KernelTest {};
INSTANTIATE_TEST_SUITE_P(Sets, FlowFieldKernels, testing::ValuesIn(instructionSets()), instructionSetName);

/// A random flow with its confidence.
struct Flow {
    Size size;
    Field<MotionVector> motion;
    Field<std::uint8_t> confidence;
    Field<std::uint8_t> visibility;

    Flow(Size of, Random& random, int reach)
        : size(of)
        , motion(filledField<MotionVector>(of,
                                           [&](int, int) {
                                               return MotionVector{random.motion(reach), random.motion(reach)};
                                           }))
        , confidence(filledField<std::uint8_t>(of,
                                               [&](int, int) {
                                                   // Often certain, often not at all, and around the limit from which a
                                                   // vector is never filled over.
                                                   constexpr int usual[] = {0, 0, 229, 230, 231, 255, 255};
                                                   const int kind = random.whole(0, 13);
                                                   return static_cast<std::uint8_t>(kind < 7 ? usual[kind]
                                                                                             : random.whole(0, 255));
                                               }))
        , visibility(of.width, of.height) {}

    MotionView view() { return {size.width, size.height, motion.row(0), confidence.row(0), visibility.row(0)}; }
    double known(int x, int y) const { return confidence(x, y) >= 230 ? 1 : std::max(confidence(x, y) / 255.0, 1e-4); }
};

/// A level of pull-push; values outside are the edge's.
struct Level {
    enum Plane { x, y, known, luma };
    Size size;
    std::ptrdiff_t stride;
    std::vector<float> memory;

    explicit Level(Size of)
        : size(of)
        , stride(of.width + 17)
        , memory(static_cast<std::size_t>(4 * stride * of.height + 16)) {}

    FillPlanes view() {
        float* origin = memory.data() + 1;
        const std::ptrdiff_t plane = stride * size.height;
        return {size.width, size.height, stride, origin, origin + plane, origin + 2 * plane, origin + 3 * plane};
    }
    /// Column -1 and those past the last one exist.
    float& at(Plane plane, int column, int row) {
        return memory[static_cast<std::size_t>(1 + (plane * size.height + row) * stride + column)];
    }
    double clamped(Plane plane, int column, int row) {
        return at(plane, std::clamp(column, 0, size.width - 1), std::clamp(row, 0, size.height - 1));
    }
    void fillRandomly(Random& random) {
        for (int row = 0; row < size.height; ++row) {
            for (int column = 0; column < size.width; ++column) {
                at(x, column, row) = static_cast<float>(random.real(-900, 900));
                at(y, column, row) = static_cast<float>(random.real(-900, 900));
                at(known, column, row) = static_cast<float>(random.whole(0, 2) / 2.0 + 1e-4 * random.real(0.1, 1));
                at(luma, column, row) = static_cast<float>(random.real(0, 255));
            }
            repeatEdges(row);
        }
    }
    void repeatEdges(int row) {
        for (const Plane plane : {x, y, known, luma}) {
            at(plane, -1, row) = at(plane, 0, row);
            std::fill(&at(plane, size.width, row), &at(plane, size.width, row) + 15, at(plane, size.width - 1, row));
        }
    }
};

Size halfOf(Size size) {
    return {(size.width + 1) / 2, (size.height + 1) / 2};
}

/// Compares a pulled level, its edges included, with means over 2 × 2 finer values, where the last ones count again.
template <typename Weight, typename Value, typename Luma>
void comparePulled(const std::string& what, Size fine, Level& coarse, const Weight& weight, const Value& value,
                   const Luma& luma) {
    const auto over = [&](int x, int y, const auto& of) {
        double sum = 0;
        for (const int row : {2 * y, std::min(2 * y + 1, fine.height - 1)})
            for (const int column : {2 * x, std::min(2 * x + 1, fine.width - 1)})
                sum += of(column, row);
        return sum;
    };
    for (const Level::Plane plane : {Level::x, Level::y, Level::known, Level::luma})
        compare(
            what + std::to_string(plane), -1, 0, coarse.size.width + 15, coarse.size.height, 0.002,
            [&](int x, int y) { return coarse.at(plane, x, y); },
            [&](int column, int y) {
                const int x = std::clamp(column, 0, coarse.size.width - 1);
                const double weights = over(x, y, weight);
                if (plane == Level::known) return std::min(weights, 1.0);
                if (plane == Level::luma) return over(x, y, luma) / 4;
                return over(x, y, [&](int c, int r) { return weight(c, r) * value(plane, c, r); }) / weights;
            });
}

/// What the coarser level says at a finer place: bilinear, but unlike luma counts less.
double interpolated(Level& coarse, Level::Plane plane, int x, int y, double luma) {
    double sum = 0;
    double weights = 0;
    for (int j = 0; j < 2; ++j)
        for (int i = 0; i < 2; ++i) {
            const int column = x / 2 + (i == 0 ? 0 : x % 2 == 0 ? -1 : 1);
            const int row = y / 2 + (j == 0 ? 0 : y % 2 == 0 ? -1 : 1);
            const double difference = coarse.clamped(Level::luma, column, row) - luma;
            const double weight =
                (i == 0 ? 0.75 : 0.25) * (j == 0 ? 0.75 : 0.25) / (1 + 0.01 * difference * difference);
            sum += weight * coarse.clamped(plane, column, row);
            weights += weight;
        }
    return sum / weights;
}

TEST_P(FlowFieldKernels, ConsistencyIsHowFarTheWayBackMisses) {
    for (const Size size : kernelSizes)
        for (const int spread : {20, 200}) {
            Flow there(size, random, 0);
            Field<MotionVector> back(size.width, size.height);
            for (int y = 0; y < size.height; ++y)
                for (int x = 0; x < size.width; ++x) {
                    there.motion(x, y) = {static_cast<std::int16_t>(150 + random.motion(spread)),
                                          static_cast<std::int16_t>(-90 + random.motion(spread))};
                    // Some lead to the very edges, which count as inside.
                    const int toEdges[] = {-x, size.width - 1 - x, -y, size.height - 1 - y};
                    const int edge = (x + 3 * y) % 12;
                    if (edge < 4)
                        (edge < 2 ? there.motion(x, y).x : there.motion(x, y).y) =
                            static_cast<std::int16_t>(64 * toEdges[edge]);
                    back(x, y) = {static_cast<std::int16_t>(-150 + random.motion(spread)),
                                  static_cast<std::int16_t>(90 + random.motion(spread))};
                }
            inTwoBands(size.height, 1,
                       [&](int begin, int end) { kernels.checkConsistency(there.view(), back.row(0), begin, end); });
            struct Match {
                bool isInside;
                double motionSquared;
                double missSquared;
            };
            const auto matched = [&](int x, int y) {
                const double vx = there.motion(x, y).x / 64.0;
                const double vy = there.motion(x, y).y / 64.0;
                const double tx = x + vx;
                const double ty = y + vy;
                const int column = static_cast<int>(std::floor(tx));
                const int row = static_cast<int>(std::floor(ty));
                double missX = vx;
                double missY = vy;
                for (int j = 0; j < 2; ++j)
                    for (int i = 0; i < 2; ++i) {
                        const double weight = (1 - std::abs(tx - column - i)) * (1 - std::abs(ty - row - j)) / 64;
                        missX += weight * back.clamped(column + i, row + j).x;
                        missY += weight * back.clamped(column + i, row + j).y;
                    }
                return Match{tx >= 0 && ty >= 0 && tx <= size.width - 1 && ty <= size.height - 1, vx * vx + vy * vy,
                             missX * missX + missY * missY};
            };
            compare(
                "confidence", size, rounding, [&](int x, int y) { return there.confidence(x, y); },
                [&](int x, int y) {
                    const Match match = matched(x, y);
                    const double nearness = 1 - match.missSquared / (4 * (1 + 0.02 * match.motionSquared));
                    return match.isInside && nearness > 0 ? 255 * std::pow(nearness, 8) : 0;
                });
            compare(
                "visibility", size, rounding, [&](int x, int y) { return there.visibility(x, y); },
                [&](int x, int y) {
                    const Match match = matched(x, y);
                    const double likelihood = std::min(1.0, (2 + 0.02 * match.motionSquared) / match.missSquared);
                    return match.isInside ? 255 * likelihood * likelihood : 0;
                });
        }
}

TEST_P(FlowFieldKernels, PullingAveragesByConfidence) {
    for (const Size size : kernelSizes) {
        Flow flow(size, random, 900);
        const GrayImage image = noiseImage(size, random);
        Level first(halfOf(size));
        inTwoBands(first.size.height, 1, [&](int begin, int end) {
            kernels.pullMotion(flow.view(), image.view(), first.view(), begin, end);
        });
        comparePulled(
            "first level", size, first, [&](int x, int y) { return flow.known(x, y); },
            [&](Level::Plane plane, int x, int y) {
                return plane == Level::x ? flow.motion(x, y).x : flow.motion(x, y).y;
            },
            [&](int x, int y) { return pixel(image, x, y); });

        Level fine(size);
        fine.fillRandomly(random);
        inTwoBands(first.size.height, 1,
                   [&](int begin, int end) { kernels.pull(fine.view(), first.view(), begin, end); });
        comparePulled(
            "next level", size, first, [&](int x, int y) { return fine.at(Level::known, x, y); },
            [&](Level::Plane plane, int x, int y) { return fine.at(plane, x, y); },
            [&](int x, int y) { return fine.at(Level::luma, x, y); });
    }
}

TEST_P(FlowFieldKernels, PushingCompletesFromTheCoarserLevel) {
    for (const Size size : kernelSizes) {
        Level coarse(halfOf(size));
        coarse.fillRandomly(random);
        Level fine(size);
        fine.fillRandomly(random);
        Level before = fine;
        inTwoBands(size.height, 1, [&](int begin, int end) { kernels.push(fine.view(), coarse.view(), begin, end); });
        for (const Level::Plane plane : {Level::x, Level::y})
            compare(
                "pushed", -1, 0, size.width + 15, size.height, 0.002,
                [&](int x, int y) { return fine.at(plane, x, y); },
                [&](int column, int y) {
                    const int x = std::clamp(column, 0, size.width - 1);
                    const double from = interpolated(coarse, plane, x, y, before.at(Level::luma, x, y));
                    return from + before.at(Level::known, x, y) * (before.at(plane, x, y) - from);
                });

        Flow flow(size, random, 900);
        const GrayImage image = noiseImage(size, random);
        Field<MotionVector> filled(size.width, size.height);
        inTwoBands(size.height, 1, [&](int begin, int end) {
            kernels.pushMotion(flow.view(), image.view(), coarse.view(), filled.row(0), begin, end);
        });
        for (const Level::Plane plane : {Level::x, Level::y}) {
            const auto component = [&](const Field<MotionVector>& of, int x, int y) -> double {
                return plane == Level::x ? of(x, y).x : of(x, y).y;
            };
            compare(
                "pushed motion", size, rounding, [&](int x, int y) { return component(filled, x, y); },
                [&](int x, int y) {
                    if (flow.confidence(x, y) >= 230) return component(flow.motion, x, y);
                    const double from = interpolated(coarse, plane, x, y, pixel(image, x, y));
                    return from + flow.known(x, y) * (component(flow.motion, x, y) - from);
                });
        }
    }
}

TEST_P(FlowFieldKernels, FoundVectorsComeBackWhereTheyMatchFarBetter) {
    for (const Size size : kernelSizes) {
        const GrayImage from = waveImage(size, 0, 0);
        const GrayImage to = waveImage(size, 2.5, -1.25);
        Flow flow(size, random, 0);
        Field<MotionVector> filled(size.width, size.height);
        for (int y = 0; y < size.height; ++y)
            for (int x = 0; x < size.width; ++x) {
                // Right, or off by some amount that is the same over a few pixels; the other half of the tiles differ
                // by too little to be looked at.
                const bool isClose = (x / 16 + y / 16) % 2 == 1;
                const int off = (x / 6 * 31 + y / 5 * 17) % 7 * (isClose ? 4 : 40);
                flow.motion(x, y) = {static_cast<std::int16_t>(160 + random.motion(12)), -80};
                filled(x, y) = flow.motion(x, y);
                if (flow.confidence(x, y) < 230) filled(x, y).x = static_cast<std::int16_t>(filled(x, y).x + off);
                if (!isClose && y / 6 % 3 == 0) std::swap(filled(x, y), flow.motion(x, y));
            }
        Field<MotionVector> result(size.width, size.height);
        inTwoBands((size.height + 15) / 16, 1, [&](int begin, int end) {
            kernels.restoreMatched(flow.view(), from.view(), to.view(), filled.row(0), result.row(0), begin, end);
        });
        const auto isLookedAt = [&](int left, int top) {
            for (int y = top; y < std::min(top + 16, size.height); ++y)
                for (int x = left; x < std::min(left + 16, size.width); ++x)
                    if (flow.confidence(x, y) < 230 &&
                        std::hypot(flow.motion(x, y).x - filled(x, y).x, flow.motion(x, y).y - filled(x, y).y) > 32)
                        return true;
            return false;
        };
        const auto errorOf = [&](const Field<MotionVector>& motion, int x, int y) {
            return meanAround(size, x, y, [&](int i, int j) {
                return std::abs(bilinear(to, i + motion(i, j).x / 64.0, j + motion(i, j).y / 64.0) - pixel(from, i, j));
            });
        };
        compare(
            "restored", size, 0, [&](int x, int y) { return result(x, y).x; },
            [&](int x, int y) -> double {
                if (!isLookedAt(x / 16 * 16, y / 16 * 16)) return filled(x, y).x;
                const double found = errorOf(flow.motion, x, y);
                const double gain = errorOf(filled, x, y) - 3 * found - 1;
                if (std::abs(found - 3) < 1e-3 || std::abs(gain) < 1e-3) return std::nan("");
                return (found < 3 && gain > 0 ? flow.motion : filled)(x, y).x;
            });
    }
}

} // namespace
} // namespace flowtide::flow
