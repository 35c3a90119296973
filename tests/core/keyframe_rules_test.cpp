// Which keyframes a trim keeps and makes, case by case; and the settings that count as a threshold.
#include "core/keyframe_rules.h"
#include "core/slow_motion_guide.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace flowtide {
namespace {

using enum SpeedKeyframeRole;
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

SpeedKeyframe point(double time, double speed, SpeedKeyframeRole role = curve) {
    return {.id = Uuid::random(), .time = time, .speed = speed, .role = role};
}

/// What the rules decide about a point, its identity aside.
struct Shape {
    double time;
    double speed;
    SpeedKeyframeRole role;
    friend bool operator==(const Shape&, const Shape&) = default;
    friend void PrintTo(const Shape& s, std::ostream* out) {
        *out << s.time << ":" << s.speed << ":" << rawValue(s.role);
    }
};

std::vector<Shape> shapes(const SpeedKeyframes& keyframes) {
    std::vector<Shape> result;
    for (const SpeedKeyframe& k : keyframes)
        result.push_back({k.time, k.speed, k.role});
    return result;
}

TEST(KeyframeRulesTest, CurveForSourceRange) {
    struct Case {
        const char* name;
        SpeedKeyframes keyframes;
        double duration;
        SourceRange range;
        std::vector<Shape> expected;
    };
    const Case cases[] = {
        {"no keyframes", {}, 10, {0, 10}, {{0, 1.5, curve}, {10, 1.5, curve}}},
        {"no keyframes, trimmed", {}, 10, {2, 8}, {{2, 1.5, trimStart}, {8, 1.5, trimEnd}}},
        {"a microsecond has one boundary", {}, 10, {0, 1e-6}, {{0, 1.5, curve}}},
        {"a little more has two", {}, 10, {0, 1.1e-6}, {{0, 1.5, curve}, {1.1e-6, 1.5, trimEnd}}},
        {"a near point becomes the boundary", {point(4.9995, 3)}, 10, {5, 10}, {{5, 3, curve}, {10, 1.5, curve}}},
        {"a farther one is dropped", {point(4.998, 3)}, 10, {5, 10}, {{5, 1.5, trimStart}, {10, 1.5, curve}}},
        {"a trim point wins over a user's point",
         {point(4.9995, 3), point(5.0005, 4, trimStart)},
         10,
         {5, 10},
         {{5, 4, trimStart}, {10, 1.5, curve}}},
        {"a trim point of the other end does not",
         {point(5, 4, trimEnd)},
         10,
         {5, 10},
         {{5, 1.5, trimStart}, {10, 1.5, curve}}},
        {"trim points inside are dropped, users' stay",
         {point(3, 2, trimStart), point(4, 3), point(6, 4, trimEnd)},
         10,
         {0, 10},
         {{0, 1.5, curve}, {4, 3, curve}, {10, 1.5, curve}}},
        {"the margin is strict", {point(0.001, 7)}, 10, {0, 10}, {{0, 7, curve}, {10, 1.5, curve}}},
        {"sorted, equal times in input order",
         {point(6, 9), point(3, 2), point(3, 4)},
         10,
         {0, 10},
         {{0, 1.5, curve}, {3, 2, curve}, {3, 4, curve}, {6, 9, curve}, {10, 1.5, curve}}},
        {"an empty range is one point", {point(5, 3)}, 10, {5, 5}, {{5, 3, curve}}},
        {"an inverted range is empty at its start", {}, 10, {6, 2}, {{6, 1.5, trimStart}}},
        {"the range is clipped to the clip", {}, 10, {-5, 50}, {{0, 1.5, curve}, {10, 1.5, curve}}},
        {"a trim within the tolerance is none", {}, 10, {0.0005, 9.9995}, {{0.0005, 1.5, curve}, {9.9995, 1.5, curve}}},
        {"no clip", {point(0, 2)}, 0, {0, 0}, {{0, 2, curve}}},
        {"negative clip", {}, -3, {0, 1}, {{0, 1.5, curve}}},
        {"NaN everywhere", {point(nan, 2), point(1, 3)}, nan, {nan, nan}, {{0, 1.5, curve}}},
        {"NaN and infinite times are dropped",
         {point(nan, 2), point(infinity, 2), point(3, 4), point(nan, 2), point(-infinity, 2), point(2, 5)},
         10,
         {0, infinity},
         {{0, 1.5, curve}, {2, 5, curve}, {3, 4, curve}, {10, 1.5, curve}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(shapes(KeyframeRules::curveForSourceRange(c.keyframes, c.duration, c.range, 1.5)), c.expected);
    }
}

TEST(KeyframeRulesTest, ApplyingTrimBoundaries) {
    struct Case {
        const char* name;
        SpeedKeyframes keyframes;
        SourceRange range;
        std::optional<KeyframeRules::BoundaryValues> values;
        std::vector<Shape> expected;
    };
    const Case cases[] = {
        {"untrimmed: trim points go, users' points stay unsorted",
         {point(8, 2), point(1, 3, trimStart), point(4, 5), point(9, 3, trimEnd)},
         {0, 10},
         {},
         {{8, 2, curve}, {4, 5, curve}}},
        {"new points at the trim", {point(5, 2)}, {2, 8}, {}, {{5, 2, curve}, {2, 1.5, trimStart}, {8, 1.5, trimEnd}}},
        {"with their own speeds", {}, {2, 8}, {{3, 4}}, {{2, 3, trimStart}, {8, 4, trimEnd}}},
        {"existing trim points keep their speed",
         {point(2.0005, 6, trimStart), point(7.9995, 7, trimEnd)},
         {2, 8},
         {{3, 4}},
         {{2, 6, trimStart}, {8, 7, trimEnd}}},
        {"a user's point is never taken", {point(2, 6)}, {2, 10}, {}, {{2, 6, curve}, {2, 1.5, trimStart}}},
        {"trims within the tolerance are none", {}, {0.001, 9.9995}, {}, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(shapes(KeyframeRules::applyingTrimBoundaries(c.keyframes, 10, c.range, 1.5, c.values)), c.expected);
    }
}

TEST(KeyframeRulesTest, BoundariesKeepTheIdentityOfWhatTheyCameFrom) {
    const SpeedKeyframe user = point(4.9995, 3);
    const SpeedKeyframe trim = point(8.0005, 2, trimEnd);
    const auto fitted = KeyframeRules::curveForSourceRange({user, trim}, 10, {5, 8}, 1);
    EXPECT_EQ(fitted.front().id, user.id);
    EXPECT_EQ(fitted.back().id, trim.id);
    const auto fresh = KeyframeRules::curveForSourceRange({}, 10, {5, 8}, 1);
    EXPECT_NE(fresh.front().id, fresh.back().id);
    EXPECT_EQ(KeyframeRules::applyingTrimBoundaries({trim}, 10, {0, 8}, 1, {}).front().id, trim.id);
}

TEST(SlowMotionGuideTest, OnlyTheKnownRatesCount) {
    for (const double rate : {24.0, 25.0, 30.0, 50.0, 60.0})
        EXPECT_EQ(SlowMotionGuide::motionFrameRateFloor(rate), rate);
    for (const double rate : {0.0, 48.0, 23.976, -24.0, 1e300, nan, infinity}) {
        EXPECT_EQ(SlowMotionGuide::motionFrameRateFloor(rate), 30.0);
    }
}

} // namespace
} // namespace flowtide
