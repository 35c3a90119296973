// The rate that a track's sample times stand for, on values.
#include "media/frame_rate.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace flowtide::test {
namespace {

/// Times with these intervals, each given with how often it comes, in turn until all are used up.
// NOLINTNEXTLINE(performance-unnecessary-value-param): the counts are counted down
SampleTimes spread(std::vector<std::pair<std::int64_t, int>> intervals) {
    SampleTimes times{1000};
    for (bool more = true; more;) {
        more = false;
        for (auto& [interval, count] : intervals)
            if (count-- > 0) {
                times.push_back(times.back() + interval);
                more = true;
            }
    }
    return times;
}

/// Frames of a rate with each time rounded to a tick, those at the numbers in `missing` left out.
SampleTimes rounded(double framesPerSecond, double ticksPerSecond, int count, const std::vector<int>& missing = {}) {
    SampleTimes times;
    for (int i = 0; i < count; ++i)
        if (std::find(missing.begin(), missing.end(), i) == missing.end())
            times.push_back(std::llround(i * ticksPerSecond / framesPerSecond));
    return times;
}

TEST(FrameRate, NominalRates) {
    SampleTimes bursts; // ten frames at 60 fps, then nothing for the rest of a second
    for (int second = 0; second < 20; ++second)
        for (int frame = 0; frame < 10; ++frame)
            bursts.push_back(second * 600 + frame * 10);
    const struct {
        const char* name;
        SampleTimes times;
        double ticksPerSecond;
        double rate;
        double tolerance = 1e-9;
    } cases[] = {
        {"constant", rounded(25, 12'800, 100), 12'800, 25},
        {"constant, NTSC in 600ths", rounded(30'000 / 1001.0, 600, 900), 600, 30'000 / 1001.0, 0.002},
        {"constant, 120 fps in thousandths", rounded(120, 1000, 600), 1000, 120, 0.1},
        {"fragments that start a little late", spread({{512, 296}, {601, 3}}), 15'360, 30},
        {"frames missing", rounded(30, 600, 150, {20, 50, 51, 90, 130}), 600, 30},
        {"frames missing, in thousandths", rounded(30, 1000, 150, {20, 50, 51, 90, 130}), 1000, 30, 0.02},
        {"bursts", bursts, 600, 60},
        {"jitter within a tenth", spread({{95, 30}, {100, 31}, {105, 30}}), 3000, 30},
        {"exactly half at one rate", spread({{40, 50}, {80, 30}, {120, 20}}), 1000, 25},
        {"less than half at one rate", spread({{40, 49}, {80, 31}, {120, 20}}), 1000, 1000 * 100 / 6840.0},
        {"times that occur twice", spread({{100, 50}, {0, 10}}), 6000, 60},
        {"two samples", {0, 40}, 1000, 25},
    };
    for (const auto& one : cases) {
        const auto interval = nominalSampleInterval(one.times);
        ASSERT_TRUE(interval) << one.name;
        EXPECT_NEAR(one.ticksPerSecond / *interval, one.rate, one.tolerance) << one.name;
    }
}

TEST(FrameRate, WhatTellsNoRate) {
    for (const SampleTimes& times : {SampleTimes{}, {7}, {7, 7, 7}}) {
        EXPECT_FALSE(nominalSampleInterval(times));
        EXPECT_FALSE(constantSampleInterval(times));
    }
    // Whatever a file claims, the arithmetic stays defined and the result a positive number.
    constexpr auto least = std::numeric_limits<std::int64_t>::min();
    constexpr auto most = std::numeric_limits<std::int64_t>::max();
    EXPECT_GT(nominalSampleInterval(SampleTimes{least, 0, most}).value_or(0), 0);
}

TEST(FrameRate, AnIntervalIsConstantOnlyToTheTick) {
    EXPECT_EQ(constantSampleInterval(spread({{1001, 90}})), 1001);
    EXPECT_EQ(constantSampleInterval(SampleTimes{5, 6}), 1);
    EXPECT_FALSE(constantSampleInterval(spread({{1001, 90}, {1002, 1}})));
    EXPECT_FALSE(constantSampleInterval(spread({{1000, 1}, {1001, 90}})));
}

} // namespace
} // namespace flowtide::test
