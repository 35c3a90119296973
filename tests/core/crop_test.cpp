// The glide's solver, the crop's geometry and its offsets.
#include "core/crop_glide.h"
#include "core/crop_plan.h"
#include "core/curve_engine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>

namespace flowtide {
namespace {

SpeedKeyframes points(std::initializer_list<std::pair<double, double>> list) {
    SpeedKeyframes keyframes;
    for (const auto& [time, value] : list)
        keyframes.push_back({Uuid::random(), time, value, SpeedKeyframeRole::curve});
    return keyframes;
}

/// The same least-squares problem by Gaussian elimination on the full matrix.
std::vector<double> denseSmooth(const std::vector<double>& raw, double step,
                                const std::vector<CropGlide::Anchor>& anchors, double glide) {
    const std::size_t n = raw.size();
    const double lambda = std::pow(1.5 * std::min(glide, 1.0) / (2 * std::numbers::pi * step), 6);
    std::vector<std::vector<double>> a(n, std::vector<double>(n + 1));
    for (std::size_t i = 0; i < n; ++i) {
        a[i][i] = 1;
        a[i][n] = raw[i];
    }
    for (const auto& anchor : anchors)
        if (anchor.index < n) {
            a[anchor.index][anchor.index] += 200;
            a[anchor.index][n] += 200 * anchor.value;
        }
    const double difference[] = {1, -3, 3, -1};
    for (std::size_t r = 0; r + 3 < n; ++r)
        for (std::size_t i = 0; i < 4; ++i)
            for (std::size_t j = 0; j < 4; ++j)
                a[r + i][r + j] += lambda * difference[i] * difference[j];
    for (std::size_t i = 0; i < n; ++i)
        for (std::size_t row = i + 1; row < n; ++row)
            for (std::size_t column = n + 1; column-- > i;)
                a[row][column] -= a[i][column] * a[row][i] / a[i][i];
    std::vector<double> x(n);
    for (std::size_t i = n; i-- > 0;) {
        x[i] = a[i][n];
        for (std::size_t j = i + 1; j < n; ++j)
            x[i] -= a[i][j] * x[j];
        x[i] /= a[i][i];
    }
    for (double& value : x)
        value = std::clamp(value, 0.0, 1.0);
    return x;
}

TEST(CropGlide, SolvesTheLeastSquaresProblem) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> centre(0, 1);
    for (const double glide : {0.05, 0.5, 1.0, 2.0}) {
        std::vector<double> raw(60);
        for (double& value : raw)
            value = centre(random);
        const std::vector<CropGlide::Anchor> anchors{{0, 0.2}, {30, 0.9}, {59, 0.1}, {500, 0.5}};
        const auto got = CropGlide::smoothTrajectory(raw, 1.0 / 30, anchors, glide);
        const auto wanted = denseSmooth(raw, 1.0 / 30, anchors, glide);
        for (std::size_t i = 0; i < raw.size(); ++i)
            EXPECT_NEAR(got[i], wanted[i], 1e-6) << glide << " " << i;
    }
}

TEST(CropGlide, LeavesAloneWhatCannotBeSmoothed) {
    const std::vector<double> raw{0, 1, 0, 1, 0, 1, 0, 1, 3};
    EXPECT_EQ(CropGlide::smoothTrajectory(raw, 0.04, {}, 0), raw);
    EXPECT_EQ(CropGlide::smoothTrajectory(raw, 0.04, {{3, 0.5}}, 0.0006), raw); // under a millisecond
    EXPECT_EQ(CropGlide::smoothTrajectory(raw, 0.04, {}, -1), raw);
    EXPECT_EQ(CropGlide::smoothTrajectory(raw, 0, {}, 1), raw);
    const std::vector<double> few(raw.begin(), raw.begin() + 7);
    EXPECT_EQ(CropGlide::smoothTrajectory(few, 0.04, {}, 1), few);
    EXPECT_TRUE(CropGlide::smoothTrajectory({}, 0.04, {}, 1).empty());
    const std::vector<double> enough{0, 1, 0, 1, 0, 1, 0, 1}; // eight
    EXPECT_NE(CropGlide::smoothTrajectory(enough, 0.04, {}, 1), enough);
    EXPECT_EQ(CropGlide::smoothTrajectory(raw, 0.04, {}, 1), CropGlide::smoothTrajectory(raw, 0.04, {}, 2));
}

TEST(CropGlide, StaysFiniteOverLongAndFinePaths) {
    std::vector<double> raw(200'000);
    for (std::size_t i = 0; i < raw.size(); ++i)
        raw[i] = i < raw.size() / 2 ? 0.1 : 0.9;
    for (const double value : CropGlide::smoothTrajectory(raw, 0.001, {{0, 0.1}}, 1)) {
        ASSERT_GE(value, 0);
        ASSERT_LE(value, 1);
    }
}

TEST(CropPlan, Sizes) {
    const struct {
        OutputSize source;
        double ratio;
        std::optional<OutputSize> crop;
        double pixelAspectRatio = 1;
    } cases[] = {
        {{1920, 1080}, 0.5625, OutputSize{606, 1080}},
        {{1920, 1080}, 0.8, OutputSize{864, 1080}},
        {{1080, 1920}, 0.5625, std::nullopt}, // exactly as wide
        {{1088, 1920}, 0.5625, OutputSize{1080, 1920}},
        {{853, 481}, 0.5625, OutputSize{270, 480}},
        {{1080, 1080}, 1, std::nullopt},
        {{607, 1080}, 0.5625, OutputSize{606, 1080}}, // as wide as the frame before that is made even
        {{606, 1080}, 0.5625, std::nullopt},
        {{608, 1081}, 0.5625, std::nullopt},
        {{720, 576}, 0.5625, OutputSize{226, 576}, 64.0 / 45}, // 321 × 576 as displayed
        {{720, 480}, 0.8, OutputSize{432, 480}, 8.0 / 9},
        {{1440, 1080}, 1, OutputSize{810, 1080}, 4.0 / 3},
        {{540, 1080}, 0.5625, OutputSize{302, 1080}, 2},
        {{1920, 1080}, 1e300, std::nullopt},
        {{3, 2}, 0.1, OutputSize{2, 2}},
        {{2, 2}, 0.1, std::nullopt},
        {{1920, 1080}, 1e300, std::nullopt},
    };
    for (const auto& [source, ratio, crop, pixelAspectRatio] : cases) {
        const auto plan = CropPlan::forSource(source, {ratio, {}, 0.5}, pixelAspectRatio);
        ASSERT_EQ(plan.has_value(), crop.has_value()) << source.width;
        if (plan) {
            EXPECT_EQ((OutputSize{plan->width, plan->height}), *crop);
        }
    }
    EXPECT_EQ(CropPlan::forSource({1920, 1080}, {})->maxOffsetX, 1314);
}

TEST(CropPlan, OffsetsAreEvenAndInsideTheTravel) {
    const TimeMap map = CurveEngine::buildTimeMap({}, 2, std::nullopt, 100, 1);
    const auto plan = CropPlan::forSource({1920, 1080}, {});
    const auto centered = plan->cropXBySourceFrame(map, 1.0 / 30);
    EXPECT_EQ(centered.firstFrameNumber, 0);
    EXPECT_EQ(centered.cropX, std::vector<std::int64_t>(61, 658)); // 2 × round(328.5)
    // An odd travel: the right edge is one pixel out of reach.
    auto odd = CropPlan::forSource({853, 480}, {0.5625, points({{0, 1}}), 0.0});
    for (const auto x : odd->cropXBySourceFrame(map, 1.0 / 30).cropX)
        EXPECT_EQ(x, 582);
    const CropPlan::SourceFrameCrops crops{10, {0, 10, 20}};
    EXPECT_EQ(crops.offsetAt({1.05}, 0.1), 6); // halves away from zero: 5 → 6
    EXPECT_EQ(crops.offsetAt({0}, 0.1), 0);
    EXPECT_EQ(crops.offsetAt({9}, 0.1), 20);
}

TEST(CropPlan, TheGlideLetsGoBetweenDrawnPointsButNotAtThem) {
    const TimeMap map = CurveEngine::buildTimeMap({}, 4, std::nullopt, 1000, 1);
    const SpeedKeyframes framing = points({{0, 0.1}, {0.2, 0.9}, {2, 0.2}, {4, 0.2}});
    const double frame = 1.0 / 25;
    const auto table = glideTable(framing, 1, map, frame);
    ASSERT_EQ(table.size(), 100U);
    double furthest = 0;
    for (std::size_t k = 0; k < table.size(); ++k)
        furthest = std::max(furthest, std::abs(table[k] - cropCenter(framing, {static_cast<double>(k) * frame})));
    EXPECT_GT(furthest, 0.05);
    for (const auto& [index, drawn] : {std::pair{0, 0.1}, {5, 0.9}, {50, 0.2}})
        EXPECT_NEAR(table[static_cast<std::size_t>(index)], drawn, 0.04) << index;
    // Unanchored, a wave of the full glide's period keeps half of its height.
    std::vector<double> wave;
    for (int k = 0; k < 600; ++k)
        wave.push_back(0.5 + 0.4 * std::cos(2 * std::numbers::pi * k * frame / CropGlide::fullGlideSeconds));
    const auto smooth = CropGlide::smoothTrajectory(wave, frame, {}, 1);
    const auto [low, high] = std::minmax_element(smooth.begin() + 150, smooth.begin() + 450);
    EXPECT_NEAR(*high - *low, 0.4, 0.01);
}

TEST(CropPlan, FollowsTheFramingCurveThroughTrimAndRetiming) {
    const SourceRange trim{0.55, 1.62};
    SpeedKeyframes curve = points({{0.55, 0.5}, {1.62, 2}});
    const TimeMap map = CurveEngine::buildTimeMap(curve, 2, trim, 1000, 1);
    const SpeedKeyframes framing = points({{0.55, 0.1}, {1.0, 0.7}, {1.62, 0.3}});
    auto plan = CropPlan::forSource({640, 360}, {0.5625, framing, 0.0});
    const double frame = 1.0 / 25;
    const auto crops = plan->cropXBySourceFrame(map, frame);
    EXPECT_EQ(crops.firstFrameNumber, 13);
    EXPECT_EQ(crops.cropX.size(), 41U - 13 + 1);
    for (std::size_t j = 1; j + 2 < crops.cropX.size(); ++j) {
        const double time = static_cast<double>(13 + j) * frame;
        const double drawn = CurveEngine::value(time, framing, 1, {0, 1}) * static_cast<double>(plan->maxOffsetX);
        EXPECT_NEAR(static_cast<double>(crops.cropX[j]), drawn, 5) << j; // samples of the table lie between frames
    }
    EXPECT_EQ(glideTable({}, 1, TimeMap({{0, 0}, {1e-6, 1e-6}}, {0, 1e-6}, 1e-6), frame).size(), 1U);
}

TEST(OutputSize, PrefersRoundNumbersAndIsEven) {
    EXPECT_EQ(OutputSize::capped(1, 1079.7), 1080);
    EXPECT_EQ(OutputSize::capped(1, 1075.3), 1076);
    EXPECT_EQ(OutputSize::capped(0.5, 1), 2);
}

} // namespace
} // namespace flowtide
