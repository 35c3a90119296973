// How unusual a fall is.
#include "media/tracking/usual_level.h"

#include <gtest/gtest.h>

#include <cmath>

namespace flowtide::tracking {
namespace {

TEST(UsualLevelTest, AFallCountsInDeviations) {
    UsualLevel level;
    EXPECT_EQ(level.fallTo(1), 0) << "nothing is known";
    level.add(0.4);
    EXPECT_NEAR(level.fallTo(0.4), 0, 1e-12);
    EXPECT_NEAR(level.fallTo(0.28), 1, 1e-9) << "at first 0.3 of the mean";
    level.add(0.48);
    const double mean = 0.4 + 0.05 * 0.08;
    const double deviation = 0.12 + 0.05 * (1.25 * 0.08 - 0.12);
    EXPECT_NEAR(level.fallTo(0.3), (mean - 0.3) / deviation, 1e-9);
    EXPECT_NEAR(level.fallTo(0.5), (mean - 0.5) / deviation, 1e-9) << "a rise is a negative fall";
}

TEST(UsualLevelTest, WhatVariesMayFallFarther) {
    UsualLevel steady;
    UsualLevel varying;
    for (int i = 0; i < 200; ++i) {
        steady.add(0.4);
        varying.add(i % 2 == 0 ? 0.3 : 0.5);
    }
    EXPECT_NEAR(steady.fallTo(0.2), 0.5 / 0.1, 0.1) << "never less than a tenth of the mean";
    EXPECT_NEAR(varying.fallTo(0.2), 0.2 / 0.125, 0.1);
}

} // namespace
} // namespace flowtide::tracking
