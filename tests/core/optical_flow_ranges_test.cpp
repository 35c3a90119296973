// Where in-between frames are called for, and the arithmetic of range lists.
#include "core/optical_flow_ranges.h"

#include <gtest/gtest.h>

#include <limits>

namespace flowtide {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

SpeedKeyframe point(double time, double speed) {
    return {.id = {}, .time = time, .speed = speed};
}

SpeedKeyframes constant(double speed) {
    return {point(0, speed), point(10, speed)};
}

/// Normal speed with vertical drops to half speed over the given stretches of a 10 s clip.
SpeedKeyframes withDips(const SourceRanges& dips) {
    SpeedKeyframes keyframes{point(0, 1)};
    for (const auto& [lower, upper] : dips) {
        keyframes.insert(keyframes.end(), {point(lower, 1), point(lower, 0.5), point(upper, 0.5), point(upper, 1)});
    }
    keyframes.push_back(point(10, 1));
    return keyframes;
}

SourceRanges rangesOf(const SpeedKeyframes& keyframes, SourceRange trim = {0, 10}, double rate = 30,
                      double smooth = 30) {
    return AutomaticOpticalFlow::ranges(keyframes, 0, 10, trim, rate, smooth);
}

TEST(AutomaticOpticalFlowTest, ConstantSpeedsAgainstTheThreshold) {
    struct Case {
        double speed;
        double rate;
        double smooth;
        bool slow;
    };
    for (const auto& [speed, rate, smooth, slow] : {Case{1, 30, 30, false},
                                                    {0.9991, 30, 30, false},
                                                    {0.999, 30, 30, false},
                                                    {0.9989, 30, 30, true},
                                                    {0.5, 30, 30, true},
                                                    {0.5, 60, 30, false},
                                                    {0.499, 60, 30, true},
                                                    {1, 24, 60, false},
                                                    {0.99, 24, 60, true},
                                                    {0.5, 30, 0, false},
                                                    {0.5, 30, nan, false},
                                                    {0.5, 30, infinity, true}}) {
        const SourceRanges expected = slow ? SourceRanges{{0, 10}} : SourceRanges{};
        const SourceRanges found = rangesOf(constant(speed), {0, 10}, rate, smooth);
        EXPECT_EQ(found, expected) << speed << " at " << rate << " against " << smooth;
    }
}

TEST(AutomaticOpticalFlowTest, NothingForInputsWithoutSense) {
    const SpeedKeyframes slow = constant(0.5);
    for (const double rate : {0.0, -30.0, nan, infinity})
        EXPECT_TRUE(rangesOf(slow, {0, 10}, rate).empty()) << rate;
    for (const SourceRange trim : {SourceRange{4, 4}, {6, 2}, {nan, 5}, {2, nan}, {11, 12}})
        EXPECT_TRUE(rangesOf(slow, trim).empty());
    for (const double duration : {0.0, -1.0, nan}) {
        EXPECT_TRUE(AutomaticOpticalFlow::ranges(slow, 0, duration, {0, 10}, 30, 30).empty()) << duration;
    }
    for (const double rate : {5e-324, 1e-300, 1e300, 1e308})
        rangesOf(slow, {0, 10}, rate);
}

TEST(AutomaticOpticalFlowTest, RangesArePaddedByAFrameAndCutAtTheTrim) {
    const double frame = 1.0 / 30;
    const SourceRanges found = rangesOf(withDips({{2, 4}}));
    ASSERT_EQ(found.size(), 1u);
    EXPECT_NEAR(found[0].lower, 2 - frame, frame / 2);
    EXPECT_NEAR(found[0].upper, 4 + frame, frame / 2);
    // The trim's new end point is at normal speed, so the dip becomes a ramp that stays slow up to the trim's end.
    const SourceRanges cut = rangesOf(withDips({{2, 4}}), {1, 3.5});
    ASSERT_EQ(cut.size(), 1u);
    EXPECT_NEAR(cut[0].lower, 2 - frame, frame / 2);
    EXPECT_EQ(cut[0].upper, 3.5);
    EXPECT_EQ(rangesOf(constant(0.5), {-3, 30}), (SourceRanges{{0, 10}})) << "never outside the clip";
}

TEST(AutomaticOpticalFlowTest, GapsCountInOutputTime) {
    EXPECT_EQ(rangesOf(withDips({{2, 3}, {3.3, 4}})).size(), 1u);
    EXPECT_EQ(rangesOf(withDips({{2, 3}, {3.6, 4}})).size(), 2u);
    // A gap of 0.6 source seconds that is played twice as fast lasts 0.3 s.
    EXPECT_EQ(rangesOf({point(2, 0.5), point(3, 0.5), point(3, 2), point(3.6, 2), point(3.6, 0.5)}).size(), 1u);
    // Each gap is judged by itself: many short ones join into one range.
    EXPECT_EQ(rangesOf(withDips({{1, 2}, {2.4, 3}, {3.4, 4}, {4.4, 5}, {7, 8}})).size(), 2u);
}

TEST(AutomaticOpticalFlowTest, BlipsShorterThanTwoFramesAreDropped) {
    EXPECT_TRUE(rangesOf(withDips({{5, 5 + 1.5 / 30}})).empty());
    EXPECT_EQ(rangesOf(withDips({{5, 5 + 3.0 / 30}})).size(), 1u);
}

TEST(OpticalFlowScopeTest, Normalizing) {
    struct Case {
        SourceRanges ranges;
        SourceRanges expected;
    };
    for (const auto& [ranges, expected] : {Case{{{5, 7}, {1, 3}, {2.5, 4}}, {{1, 4}, {5, 6}}},
                                           {{{1, 2}, {2, 3}}, {{1, 3}}},
                                           {{{1, 5}, {2, 3}}, {{1, 5}}},
                                           {{{-3, 0}, {6, 9}, {4, 4}, {5, 2}}, {}},
                                           {{{nan, 3}, {2, nan}, {nan, nan}, {1, 2}}, {{1, 2}}},
                                           {{{-infinity, infinity}}, {{0, 6}}}}) {
        EXPECT_EQ(OpticalFlowScope::normalized(ranges, {0, 6}), expected);
    }
    EXPECT_TRUE(OpticalFlowScope::normalized({{1, 3}}, {5, 2}).empty());
}

TEST(OpticalFlowScopeTest, ARangesEndIsOutsideIt) {
    const SourceRanges ranges{{1, 2}, {4, 6}};
    for (const double inside : {1.0, 1.5, 4.0, 5.999})
        EXPECT_TRUE(OpticalFlowScope::contains(ranges, {inside})) << inside;
    for (const double outside : {0.0, 2.0, 3.0, 6.0, 7.0, nan})
        EXPECT_FALSE(OpticalFlowScope::contains(ranges, {outside})) << outside;
    EXPECT_FALSE(OpticalFlowScope::contains({}, {1}));
}

} // namespace
} // namespace flowtide
