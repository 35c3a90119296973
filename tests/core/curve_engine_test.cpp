// The curve and the building of its map, against the plain computation, formulas and hostile numbers.
#include "core/curve_engine.h"
#include "core/curve_evaluator.h"
#include "tests/core/naive_time_map.h"
#include "tests/core/random_curve.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace flowtide {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

SpeedKeyframe point(double time, double speed) {
    return {.id = {}, .time = time, .speed = speed};
}

TEST(CurveEngineTest, TangentsTurnAtExtremaAndAreBoundedAtTheEnds) {
    const SpeedKeyframes peak{point(0, 1), point(1, 3), point(2, 2), point(4, 8)};
    EXPECT_EQ(CurveEngine::pointSlope(1, peak), 0);
    EXPECT_EQ(CurveEngine::pointSlope(2, peak), 0);
    EXPECT_EQ(CurveEngine::pointSlope(0, peak), 0) << "the second secant falls";

    const SpeedKeyframes rising{point(0, 1), point(1, 2), point(3, 10)};
    EXPECT_DOUBLE_EQ(CurveEngine::pointSlope(1, rising), 3 / (1 / 1.0 + 2 / 4.0));
    EXPECT_DOUBLE_EQ(CurveEngine::pointSlope(0, rising), 1);
    EXPECT_DOUBLE_EQ(CurveEngine::pointSlope(2, rising), 3) << "no more than three times its neighbour's secant";

    EXPECT_EQ(CurveEngine::pointSlope(0, {}), 0);
    EXPECT_EQ(CurveEngine::pointSlope(0, rising), CurveEngine::endpointSlope(0, rising));
    EXPECT_EQ(CurveEngine::pointSlope(0, SpeedKeyframes{point(0, 5)}), 0);
}

TEST(CurveEngineTest, ValueOutsideAndWithoutKeyframes) {
    const CurveEngine::Limits limits{0.01, 100};
    EXPECT_EQ(CurveEngine::value(3, {}, 1, limits), 1);
    EXPECT_EQ(CurveEngine::value(3, {}, 1, {2, 4}), 2);
    EXPECT_EQ(CurveEngine::value(3, {}, 1, {2, 0.5}), 2) << "the lower bound is applied last";
    EXPECT_EQ(CurveEngine::value(3, {point(1, 500)}, 1, limits), 100);
    const SpeedKeyframes two{point(1, 2), point(2, 0.001)};
    EXPECT_EQ(CurveEngine::value(-5, two, 1, limits), 2);
    EXPECT_EQ(CurveEngine::value(9, two, 1, limits), 0.01);
}

TEST(CurveEngineTest, EvaluatorEqualsThePlainScanInAnyOrderOfTimes) {
    RandomCurves random(1);
    for (int round = 0; round < 400; ++round) {
        const SpeedKeyframes keyframes = random.curve(random.count(0, 30), 10);
        const double smoothing = random.between(-0.5, 1.5);
        CurveEvaluator evaluator(keyframes, smoothing, CurveEngine::speedLimits);
        double t = -2;
        for (int i = 0; i < 200; ++i) {
            t += random.between(0, 0.2);
            if (random.count(0, 19) == 0) t = random.between(-2, 12);
            if (!keyframes.empty() && random.count(0, 5) == 0) {
                t = keyframes[static_cast<std::size_t>(random.count(0, static_cast<int>(keyframes.size()) - 1))].time;
            }
            const double expected = naive::value(t, keyframes, smoothing, lowestSpeed, highestSpeed);
            ASSERT_EQ(evaluator(t), expected) << "round " << round << " t " << t;
            ASSERT_EQ(CurveEngine::value(t, keyframes, smoothing, CurveEngine::speedLimits), expected);
        }
    }
}

TEST(CurveEngineTest, EvenlySpacedCurvesNeverOvershootTheirKeyframes) {
    RandomCurves random(2);
    for (int round = 0; round < 300; ++round) {
        SpeedKeyframes keyframes;
        for (int i = 0; i < 12; ++i)
            keyframes.push_back(point(i, std::exp2(random.between(-6, 6))));
        CurveEvaluator speed(keyframes, random.between(0, 1), CurveEngine::speedLimits);
        for (std::size_t i = 1; i < keyframes.size(); ++i) {
            const auto [low, high] = std::minmax(keyframes[i - 1].speed, keyframes[i].speed);
            for (int k = 1; k <= 16; ++k) {
                const double v = speed(keyframes[i - 1].time + k / 16.0);
                ASSERT_GE(v, low * (1 - 1e-12));
                ASSERT_LE(v, high * (1 + 1e-12));
            }
        }
    }
}

TEST(BuildTimeMapTest, EqualsThePlainAlgorithmToTheLastBit) {
    RandomCurves random(3);
    for (int round = 0; round < 250; ++round) {
        const double duration = random.count(0, 9) == 0 ? random.between(0, 1e-5) : random.between(0, 4);
        const SpeedKeyframes keyframes = random.curve(random.count(0, 25), duration);
        const SourceRange trim = random.count(0, 2) == 0
                                     ? SourceRange{0, duration}
                                     : SourceRange{random.between(-1, duration + 1), random.between(-1, duration + 1)};
        const int steps = random.count(1, 900);
        const double smoothing = random.between(-0.3, 1.3);
        const TimeMap expected = naive::buildTimeMap(keyframes, duration, trim, steps, smoothing);
        ASSERT_EQ(CurveEngine::buildTimeMap(keyframes, duration, trim, steps, smoothing), expected)
            << "round " << round;
    }
}

TEST(BuildTimeMapTest, LinearRampAgreesWithItsIntegral) {
    const SpeedKeyframes ramp{point(0, 1), point(10, 2)};
    for (const double smoothing : {0.0, 0.4, 1.0}) {
        const TimeMap map = CurveEngine::buildTimeMap(ramp, 10, {}, CurveEngine::exportTimeMapSteps, smoothing);
        for (double s = 0; s <= 10; s += 0.0371) {
            EXPECT_NEAR(map.outputTime({s}).value, 10 * std::log(1 + s / 10), 1e-8);
        }
        EXPECT_NEAR(map.outputDuration(), 10 * std::log(2), 1e-9);
    }
}

TEST(BuildTimeMapTest, ConstantSpeedsScaleTimeAndExtremeOnesStayFinite) {
    struct Case {
        double speed;
        double duration;
    };
    for (const auto& [speed, duration] :
         {Case{1, 10}, {0.25, 40}, {4, 2.5}, {0, 1000}, {-3, 1000}, {1e9, 0.1}, {nan, 1000}}) {
        const TimeMap map = CurveEngine::buildTimeMap({point(0, speed), point(10, speed)}, 10, {}, 1000, 1);
        EXPECT_NEAR(map.outputDuration(), duration, duration * 1e-10) << speed;
        EXPECT_NEAR(map.outputTime({2.5}).value, duration / 4, duration * 1e-10) << speed;
    }
}

TEST(BuildTimeMapTest, CountOfEntries) {
    const auto entries = [](const SpeedKeyframes& keyframes, double duration, int steps) {
        return CurveEngine::buildTimeMap(keyframes, duration, {}, steps, 1).entries().size();
    };
    EXPECT_EQ(entries({}, 8, 1), 5u) << "four samples between the two ends";
    EXPECT_EQ(entries({point(2, 1)}, 8, 1), 17u) << "four between the two closest keyframes";
    EXPECT_EQ(entries({point(2, 1), point(2, 3)}, 8, 1), 17u) << "equal times are no gap";
    EXPECT_EQ(entries({point(2, 1), point(2.0001, 3)}, 8, 1), 16001u) << "never finer than half a millisecond";
    EXPECT_EQ(entries({point(2, 1)}, 8, 500), 501u);
    EXPECT_EQ(entries({}, 8, 1 << 30), 400001u);
    EXPECT_EQ(entries({point(2, 1), point(2.0001, 3)}, 1e15, 1), 400001u);
    EXPECT_EQ(entries({}, 8, 0), 5u);
    EXPECT_EQ(entries({}, 0, std::numeric_limits<int>::min()), 2u) << "at least one interval";
}

TEST(BuildTimeMapTest, RangesThatWouldCollapseAreWidened) {
    struct Case {
        SourceRange requested;
        SourceRange expected;
    };
    for (const auto& [requested, expected] : {Case{{5, 5}, {5, 5 + 1e-6}},
                                              {{7, 3}, {7, 7 + 1e-6}},
                                              {{10, 10}, {10 - 1e-6, 10}},
                                              {{20, 30}, {10 - 1e-6, 10}},
                                              {{-4, -2}, {0, 1e-6}},
                                              {{nan, nan}, {0, 1e-6}}}) {
        const TimeMap map = CurveEngine::buildTimeMap({point(0, 2)}, 10, requested, 100, 1);
        EXPECT_EQ(map.sourceRange(), expected);
        EXPECT_EQ(map.entries().front(), (TimeMap::Entry{expected.lower, 0}));
        EXPECT_NEAR(map.entries().back().source, expected.upper, 1e-14);
        EXPECT_GT(map.outputDuration(), 0);
    }
    for (const double duration : {0.0, -1.0, nan, infinity, -infinity}) {
        EXPECT_EQ(CurveEngine::buildTimeMap({point(0, 2)}, duration, {}, 100, 1).sourceRange(), (SourceRange{0, 0}));
    }
}

TEST(BuildTimeMapTest, SurvivesEveryKindOfNumber) {
    const double numbers[] = {nan, infinity, -infinity, 0.0, -0.0, 1.0, -1.0, 1e308, -1e308, 5e-324, 1e18};
    for (const double a : numbers) {
        for (const double b : numbers) {
            for (const double c : numbers) {
                const SpeedKeyframes keyframes{point(b, c), point(a, b), point(0.5, a), point(0.5, c), point(c, a)};
                const TimeMap map = CurveEngine::buildTimeMap(keyframes, a, SourceRange{b, c}, 8, c);
                EXPECT_TRUE(std::isfinite(map.sourceRange().lower) && std::isfinite(map.sourceRange().upper));
                std::size_t cursor = 1000000;
                static_cast<void>(map.sourceTime({b}, cursor));
                static_cast<void>(map.sourceTime({c}));
                static_cast<void>(map.sliced({a, b}).outputTime({c}));
                static_cast<void>(CurveEngine::value(a, keyframes, b, {c, a}));
            }
        }
    }
}

} // namespace
} // namespace flowtide
