// Patch matching, against the same search and alignment in plain arithmetic.
#include "tests/media/flow/kernels/kernel_test.h"

#include <array>

namespace flowtide::flow {
namespace {

class FlowPatchKernels : public KernelTest {};
INSTANTIATE_TEST_SUITE_P(Sets, FlowPatchKernels, testing::ValuesIn(instructionSets()), instructionSetName);

struct Displacement {
    double x;
    double y;
};

/// A level's planes, by name and place.
struct Patches {
    enum Plane { x, y, luma, gradientX, gradientY, gradientAtX, gradientAtY, xx, xy, yy, nextX, nextY, count };
    int columns;
    int rows;
    int stride;
    std::array<std::vector<float>, count> planes;

    explicit Patches(Size image)
        : columns((image.width - 1) / 4 + 2)
        , rows((image.height - 1) / 4 + 2)
        , stride(columns + 18) {
        for (auto& plane : planes)
            plane.assign(static_cast<std::size_t>(stride * (rows + 3)), 0.0F);
        std::fill(planes[luma].begin(), planes[luma].end(), 1e9F);
    }
    float& at(Plane plane, int i, int j) { return planes[plane][static_cast<std::size_t>((j + 1) * stride + i + 1)]; }
    Displacement displacement(int i, int j) { return {at(x, i, j), at(y, i, j)}; }
    PatchPlanes view() {
        const auto of = [&](Plane plane) { return planes[plane].data(); };
        return {columns,         rows,   stride, of(x), of(y), of(luma), of(gradientX), of(gradientY), of(gradientAtX),
                of(gradientAtY), of(xx), of(xy), of(yy)};
    }
};

/// One patch of 8 × 8 pixels and what is known of its match, by the formulas.
class Patch {
public:
    Patch(const GrayImage& from, const GrayImage& to, int i, int j)
        : to_(to)
        , left_(4 * i - 4)
        , top_(4 * j - 4) {
        double meanX = 0;
        double meanY = 0;
        for (int n = 0; n < 64; ++n) {
            const int px = left_ + n % 8;
            const int py = top_ + n / 8;
            value_[n] = pixel(from, px, py);
            slopeX_[n] = (pixel(from, px + 1, py) - pixel(from, px - 1, py)) / 2.0;
            slopeY_[n] = (pixel(from, px, py + 1) - pixel(from, px, py - 1)) / 2.0;
            meanX += slopeX_[n] / 64;
            meanY += slopeY_[n] / 64;
        }
        for (int n = 0; n < 64; ++n) {
            slopeX_[n] -= meanX;
            slopeY_[n] -= meanY;
            xx += slopeX_[n] * slopeX_[n];
            xy += slopeX_[n] * slopeY_[n];
            yy += slopeY_[n] * slopeY_[n];
        }
        xx += damping;
        yy += damping;
    }

    double absoluteDifference(Displacement at) const {
        double sum = 0;
        for (int n = 0; n < 64; ++n)
            sum += std::abs(pixel(to_, left_ + n % 8 + static_cast<int>(std::lround(at.x)),
                                  top_ + n / 8 + static_cast<int>(std::lround(at.y))) -
                            value_[n]);
        return sum;
    }

    struct Match {
        double squared;
        double gradientX;
        double gradientY;
    };
    /// The zero-mean squared difference at a displacement in 64ths of a pixel, sampled in whole numbers: sixteenths of
    /// a code across, quarters down.
    Match match(Displacement at) const {
        const int dx = static_cast<int>(std::lround(at.x * 64));
        const int dy = static_cast<int>(std::lround(at.y * 64));
        double errors[64];
        double mean = 0;
        for (int n = 0; n < 64; ++n) {
            const auto across = [&](int line) {
                const int row = top_ + n / 8 + (dy >> 6) + line;
                const int column = left_ + n % 8 + (dx >> 6);
                return (pixel(to_, column, row) * (64 - (dx & 63)) + pixel(to_, column + 1, row) * (dx & 63) + 8) / 16;
            };
            const int quarters = (across(0) * (64 - (dy & 63)) + across(1) * (dy & 63) + 32) / 64;
            errors[n] = quarters / 4.0 - value_[n];
            mean += errors[n] / 64;
        }
        Match match{};
        for (int n = 0; n < 64; ++n) {
            match.squared += (errors[n] - mean) * (errors[n] - mean);
            match.gradientX += errors[n] * slopeX_[n];
            match.gradientY += errors[n] * slopeY_[n];
        }
        return match;
    }

    static constexpr double damping = 0.2 * 64;
    double xx = 0;
    double xy = 0;
    double yy = 0;

private:
    const GrayImage& to_;
    int left_;
    int top_;
    double value_[64];
    double slopeX_[64];
    double slopeY_[64];
};

/// Gauss–Newton steps from a whole-pixel start.
struct Aligned {
    Displacement end;
    Displacement measuredAt;
    Patch::Match match;
};
Aligned aligned(const Patch& patch, Displacement start) {
    Aligned now{start, start, patch.match(start)};
    const double determinant = patch.xx * patch.yy - patch.xy * patch.xy;
    for (int step = 0; step < 3; ++step) {
        const double downX = (patch.yy * now.match.gradientX - patch.xy * now.match.gradientY) / determinant;
        const double downY = (patch.xx * now.match.gradientY - patch.xy * now.match.gradientX) / determinant;
        const Displacement next{now.measuredAt.x - downX, now.measuredAt.y - downY};
        if (std::hypot(next.x - start.x, next.y - start.y) > 2) break;
        now.end = next;
        if (std::hypot(downX, downY) < 0.15) break;
        const Patch::Match there = patch.match(next);
        if (there.squared >= now.match.squared) {
            now.end = now.measuredAt;
            break;
        }
        now.measuredAt = next;
        now.match = there;
    }
    return now;
}

/// The best of all whole-pixel displacements up to 6 pixels each way, short ones preferred.
Displacement exhaustive(const Patch& patch) {
    Displacement best{};
    double least = 1e9;
    for (int dy = -6; dy <= 6; ++dy)
        for (int dx = -6; dx <= 6; ++dx) {
            const Displacement at{static_cast<double>(dx), static_cast<double>(dy)};
            const double cost = patch.absoluteDifference(at) + 4 * (std::abs(dx) + std::abs(dy));
            if (cost < least) {
                least = cost;
                best = at;
            }
        }
    return best;
}

/// The best of the coarser level's prediction and of candidates from around, which cost more the more they deviate.
Displacement predicted(const Patch& patch, Patches& parents, Patches& found, int i, int j) {
    const auto parent = [&](int dx, int dy) {
        const Displacement of = parents.displacement(i / 2 + dx, j / 2 + dy);
        return Displacement{2 * of.x, 2 * of.y};
    };
    Displacement prediction{};
    const double fx = i % 2 * 0.5; // an odd patch lies midway between two parents
    const double fy = j % 2 * 0.5;
    for (const int dy : {0, 1})
        for (const int dx : {0, 1}) {
            const double weight = (dx == 0 ? 1 - fx : fx) * (dy == 0 ? 1 - fy : fy);
            prediction.x += weight * parent(dx, dy).x;
            prediction.y += weight * parent(dx, dy).y;
        }
    std::vector<Displacement> candidates{parent(0, 0),  parent(1, 0), parent(0, 1),  parent(1, 1),
                                         parent(-1, 0), parent(2, 1), parent(1, -1), parent(0, 2)};
    if (i > 0) candidates.push_back(found.displacement(i - 1, j));
    if (j % 8 > 0) candidates.push_back(found.displacement(i, j - 1));
    if (j % 8 > 0 && i + 1 < found.columns) candidates.push_back(found.displacement(i + 1, j - 1));
    Displacement best = prediction;
    double least = patch.absoluteDifference(prediction);
    for (const Displacement candidate : candidates) {
        const double deviation = std::abs(candidate.x - prediction.x) + std::abs(candidate.y - prediction.y);
        const double cost = patch.absoluteDifference(candidate) + 16 + 16 * std::min(deviation, 8.0);
        if (cost < least) {
            least = cost;
            best = candidate;
        }
    }
    return best;
}

TEST_P(FlowPatchKernels, SearchAndAlignmentFollowTheirFormulas) {
    for (const Size size : kernelSizes)
        for (const bool isCoarsest : {true, false}) {
            const GrayImage from = waveImage(size, 0, 0);
            const GrayImage to = grayImage(size, [&](int x, int y) {
                // Moved differently in two halves, brighter, noisy.
                const bool isLeft = x < size.width / 2;
                return std::clamp(pixel(from, x - (isLeft ? 3 : -1), y + (isLeft ? 2 : 4)) + 6 + random.whole(-2, 2), 0,
                                  255);
            });
            Patches parents({(size.width + 1) / 2, (size.height + 1) / 2});
            for (auto plane : {Patches::x, Patches::y})
                for (float& value : parents.planes[plane])
                    value = static_cast<float>(random.real(-3, 3));
            Patches patches(size);
            const PatchSearch search{from.view(), to.view(), patches.view(), parents.view(), isCoarsest};
            // From the kernel's own neighbours, so that one difference doesn't spread.
            inTwoBands(patches.rows, searchBand,
                       [&](int begin, int end) { kernels.searchPatches(search, begin, end); });
            Field<Aligned> exact(patches.columns, patches.rows);
            for (int j = 0; j < patches.rows; ++j)
                for (int i = 0; i < patches.columns; ++i) {
                    const Patch patch(from, to, i, j);
                    exact(i, j) =
                        aligned(patch, isCoarsest ? exhaustive(patch) : predicted(patch, parents, patches, i, j));
                }
            const auto check = [&](const char* what, Patches::Plane plane, double tolerance, const auto& wanted) {
                compare(
                    what, {patches.columns, patches.rows}, tolerance,
                    [&](int i, int j) { return patches.at(plane, i, j); }, wanted);
            };
            check("x", Patches::x, 0.002, [&](int i, int j) { return exact(i, j).end.x; });
            check("y", Patches::y, 0.002, [&](int i, int j) { return exact(i, j).end.y; });
            check("at x", Patches::gradientAtX, 0.002, [&](int i, int j) { return exact(i, j).measuredAt.x; });
            check("at y", Patches::gradientAtY, 0.002, [&](int i, int j) { return exact(i, j).measuredAt.y; });
            check("gradient x", Patches::gradientX, 0.5, [&](int i, int j) { return exact(i, j).match.gradientX; });
            check("gradient y", Patches::gradientY, 0.5, [&](int i, int j) { return exact(i, j).match.gradientY; });
            check("xx", Patches::xx, 0.1, [&](int i, int j) { return Patch(from, to, i, j).xx; });
            check("xy", Patches::xy, 0.1, [&](int i, int j) { return Patch(from, to, i, j).xy; });
            check("yy", Patches::yy, 0.1, [&](int i, int j) { return Patch(from, to, i, j).yy; });
            check("luma", Patches::luma, 0, [&](int i, int j) { return pixel(from, 4 * i, 4 * j); });
        }
}

TEST_P(FlowPatchKernels, GradientsAreMeasuredAnewWherePatchesHaveMoved) {
    for (const Size size : kernelSizes) {
        const GrayImage from = noiseImage(size, random);
        const GrayImage to = noiseImage(size, random);
        Patches patches(size);
        for (auto plane : {Patches::gradientAtX, Patches::gradientAtY, Patches::gradientX, Patches::gradientY})
            for (float& value : patches.planes[plane])
                value = static_cast<float>(random.real(-5, 5));
        for (int j = 0; j < patches.rows; ++j)
            for (int i = 0; i < patches.columns; ++i) {
                const double angle = random.real(0, 6.28);
                const double reach = i % 3 == 0 ? 20 : i % 3 == 1 ? 0.149 : 0.151;
                patches.at(Patches::x, i, j) =
                    patches.at(Patches::gradientAtX, i, j) + static_cast<float>(reach * std::cos(angle));
                patches.at(Patches::y, i, j) =
                    patches.at(Patches::gradientAtY, i, j) + static_cast<float>(reach * std::sin(angle));
            }
        Patches before = patches;
        const PatchSearch search{from.view(), to.view(), patches.view(), {}, false};
        inTwoBands(patches.rows, 1, [&](int begin, int end) { kernels.refreshGradients(search, begin, end); });
        const auto check = [&](Patches::Plane plane, const auto& anew) {
            compare(
                "refreshed", {patches.columns, patches.rows}, 0.5,
                [&](int i, int j) { return patches.at(plane, i, j); },
                [&](int i, int j) -> double {
                    if (i % 3 == 1) return before.at(plane, i, j);
                    return anew(i, j, Patch(from, to, i, j).match(before.displacement(i, j)));
                });
        };
        check(Patches::gradientX, [](int, int, const Patch::Match& match) { return match.gradientX; });
        check(Patches::gradientY, [](int, int, const Patch::Match& match) { return match.gradientY; });
        const auto checkPlace = [&](Patches::Plane at, Patches::Plane of) {
            compare(
                "measured at", {patches.columns, patches.rows}, 0, [&](int i, int j) { return patches.at(at, i, j); },
                [&](int i, int j) { return before.at(i % 3 == 1 ? at : of, i, j); });
        };
        checkPlace(Patches::gradientAtX, Patches::x);
        checkPlace(Patches::gradientAtY, Patches::y);
    }
}

TEST_P(FlowPatchKernels, SweepsBalanceTheMatchAndTheNeighbours) {
    for (const Size size : kernelSizes) {
        Patches patches(size);
        for (int j = 0; j < patches.rows; ++j)
            for (int i = 0; i < patches.columns; ++i)
                for (const auto& [plane, low, high] : {std::tuple{Patches::x, -4.0, 4.0},
                                                       {Patches::y, -4.0, 4.0},
                                                       {Patches::luma, 0.0, 255.0},
                                                       {Patches::gradientX, -6000.0, 6000.0},
                                                       {Patches::gradientY, -6000.0, 6000.0},
                                                       {Patches::gradientAtX, -4.0, 4.0},
                                                       {Patches::gradientAtY, -4.0, 4.0},
                                                       {Patches::xx, 500.0, 4000.0},
                                                       {Patches::xy, -400.0, 400.0},
                                                       {Patches::yy, 500.0, 4000.0}})
                    patches.at(plane, i, j) = static_cast<float>(random.real(low, high));
        inTwoBands(patches.rows, 1, [&](int begin, int end) {
            kernels.sweepPatches(patches.view(), patches.planes[Patches::nextX].data(),
                                 patches.planes[Patches::nextY].data(), begin, end);
        });
        int kept = 0;
        const auto balanced = [&](int i, int j) {
            const Displacement own = patches.displacement(i, j);
            const auto value = [&](Patches::Plane plane) -> double { return patches.at(plane, i, j); };
            double sumX = 0;
            double sumY = 0;
            double weights = 0;
            for (int dj = -1; dj <= 1; ++dj)
                for (int di = -1; di <= 1; ++di) {
                    if (di == 0 && dj == 0) continue;
                    const Displacement other = patches.displacement(i + di, j + dj);
                    const double squared = std::pow(other.x - own.x, 2) + std::pow(other.y - own.y, 2);
                    const double lumaDifference =
                        std::abs(double{patches.at(Patches::luma, i + di, j + dj)} - value(Patches::luma));
                    const double weight = 1 / ((1 + squared / 4) * (1 + 0.03 * lumaDifference));
                    sumX += weight * other.x;
                    sumY += weight * other.y;
                    weights += weight;
                }
            // The balance of H (d - at) + gradient = 0 and 2000 (d - mean) = 0, as a damped step from where it is.
            const double fromX = own.x - value(Patches::gradientAtX);
            const double fromY = own.y - value(Patches::gradientAtY);
            const double pullX = 2000 * (sumX / weights - own.x) - value(Patches::gradientX) -
                                 (value(Patches::xx) - Patch::damping) * fromX - value(Patches::xy) * fromY;
            const double pullY = 2000 * (sumY / weights - own.y) - value(Patches::gradientY) -
                                 (value(Patches::yy) - Patch::damping) * fromY - value(Patches::xy) * fromX;
            const double xx = value(Patches::xx) + 2000;
            const double yy = value(Patches::yy) + 2000;
            const double xy = value(Patches::xy);
            const double determinant = xx * yy - xy * xy;
            const Displacement change{(yy * pullX - xy * pullY) / determinant, (xx * pullY - xy * pullX) / determinant};
            const double length = std::hypot(change.x, change.y);
            if (std::abs(length - 2) < 1e-3) return Displacement{std::nan(""), std::nan("")};
            if (length > 2) ++kept;
            return length > 2 ? own : Displacement{own.x + change.x, own.y + change.y};
        };
        compare(
            "next x", {patches.columns, patches.rows}, 1e-4,
            [&](int i, int j) { return patches.at(Patches::nextX, i, j); },
            [&](int i, int j) { return balanced(i, j).x; });
        compare(
            "next y", {patches.columns, patches.rows}, 1e-4,
            [&](int i, int j) { return patches.at(Patches::nextY, i, j); },
            [&](int i, int j) { return balanced(i, j).y; });
        if (patches.rows > 8) {
            EXPECT_GT(kept, 5);
        }
    }
}

} // namespace
} // namespace flowtide::flow
