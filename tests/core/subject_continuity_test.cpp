// Which steps of a tracked box are taken for the subject's.
#include "core/subject_continuity.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <tuple>

namespace flowtide {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

SubjectBox centered(double midX, double midY, double width, double height) {
    return {midX - width / 2, midY - height / 2, width, height};
}

TEST(SubjectContinuityTest, ABoxAloneIsJudgedByItsSizePlaceAndConfidence) {
    struct Case {
        SubjectBox box;
        float confidence;
        bool accepted;
    };
    for (const auto& [box, confidence, accepted] : {Case{{0.4, 0.4, 0.2, 0.2}, 0.35F, true},
                                                    {{0.4, 0.4, 0.2, 0.2}, 0.3499F, false},
                                                    {{0.4, 0.4, 0.2, 0.2}, std::nanf(""), false},
                                                    {{0.4, 0.4, 0.004, 0.2}, 1, false},
                                                    {{0.4, 0.4, 0.2, 0.005}, 1, false},
                                                    {{0.4, 0.4, 0.0051, 0.0051}, 1, true},
                                                    {{-0.0199, -0.0199, 0.1, 0.1}, 1, true},
                                                    {{-0.0201, 0.4, 0.1, 0.1}, 1, false},
                                                    {{0.4, -0.0201, 0.1, 0.1}, 1, false},
                                                    {{0.9, 0.9, 0.1199, 0.1199}, 1, true},
                                                    {{0.9, 0.4, 0.13, 0.1}, 1, false},
                                                    {{0.4, 0.9, 0.1, 0.1201}, 1, false},
                                                    {{nan, 0.4, 0.1, 0.1}, 1, false},
                                                    {{0.4, 0.4, 0.1, nan}, 1, false}}) {
        SubjectTrackingContinuity continuity;
        EXPECT_EQ(continuity.accept(box, confidence, 1), accepted)
            << box.x << " " << box.y << " " << box.width << " " << box.height << " " << confidence;
        EXPECT_EQ(continuity.box().has_value(), accepted);
    }
    EXPECT_FALSE(SubjectTrackingContinuity().accept(std::nullopt, 1, 0));
}

TEST(SubjectContinuityTest, AStepIsBoundedByTimeAndTheBoxBefore) {
    // The first box: 0.1 × 0.1 at the middle, at 5 s. Reach within 0.05 s: min(0.04, 0.12) + 0.07 across,
    // min(0.075, 0.2) + 0.055 along; far later 0.19 and 0.255. For a tiny box the floors of 0.025 and 0.035 count.
    struct Case {
        double time;
        SubjectBox box;
        bool accepted;
    };
    const double root2 = std::sqrt(2.0);
    for (const auto& [time, box, accepted] : {Case{5.05, centered(0.5, 0.5, 0.1 * root2, 0.1 * root2), true},
                                              {5.05, centered(0.5, 0.5, 0.1, 0.2199), true},
                                              {5.05, centered(0.5, 0.5, 0.1, 0.2201), false},
                                              {5.05, centered(0.5, 0.5, 0.1, 0.0451), true},
                                              {5.05, centered(0.5, 0.5, 0.1, 0.0449), false},
                                              {5.05, centered(0.6099, 0.5, 0.1, 0.1), true},
                                              {5.05, centered(0.6101, 0.5, 0.1, 0.1), false},
                                              {4.95, centered(0.3901, 0.5, 0.1, 0.1), true},
                                              {4.95, centered(0.3899, 0.5, 0.1, 0.1), false},
                                              {5.05, centered(0.5, 0.6299, 0.1, 0.1), true},
                                              {5.05, centered(0.5, 0.6301, 0.1, 0.1), false},
                                              {9, centered(0.6899, 0.5, 0.1, 0.1), true},
                                              {9, centered(0.6901, 0.5, 0.1, 0.1), false},
                                              {9, centered(0.5, 0.7549, 0.1, 0.1), true},
                                              {9, centered(0.5, 0.7551, 0.1, 0.1), false},
                                              {5, centered(0.5707, 0.5, 0.1, 0.1), true},
                                              {5, centered(0.5709, 0.5, 0.1, 0.1), false}}) {
        SubjectTrackingContinuity continuity;
        ASSERT_TRUE(continuity.accept(centered(0.5, 0.5, 0.1, 0.1), 1, 5));
        EXPECT_EQ(continuity.accept(box, 1, time), accepted)
            << time << ": " << box.midX() << " " << box.midY() << " " << box.height;
        EXPECT_EQ(*continuity.box() == box, accepted);
    }
    for (const auto& [dx, dy, accepted] :
         {std::tuple{0.0649, 0.0, true}, {0.0651, 0.0, false}, {0.0, 0.1099, true}, {0.0, 0.1101, false}}) {
        SubjectTrackingContinuity continuity;
        ASSERT_TRUE(continuity.accept(centered(0.5, 0.5, 0.01, 0.01), 1, 0));
        EXPECT_EQ(continuity.accept(centered(0.5 + dx, 0.5 + dy, 0.01, 0.01), 1, 0.05), accepted) << dx << " " << dy;
    }
}

TEST(SubjectContinuityTest, TheNextStepIsExpectedAlongTheSmoothedVelocity) {
    SubjectTrackingContinuity continuity;
    ASSERT_TRUE(continuity.accept(centered(0.3, 0.5, 0.1, 0.1), 1, 0));
    EXPECT_EQ(continuity.velocityX(), 0);
    ASSERT_TRUE(continuity.accept(centered(0.4, 0.45, 0.1, 0.1), 1, 0.1));
    EXPECT_NEAR(continuity.velocityX(), 0.35 * 1, 1e-12);
    EXPECT_NEAR(continuity.velocityY(), 0.35 * -0.5, 1e-12);
    ASSERT_TRUE(continuity.accept(centered(0.45, 0.45, 0.1, 0.1), 1, 0.2));
    const double velocity = 0.65 * 0.35 * 1 + 0.35 * 0.5;
    EXPECT_NEAR(continuity.velocityX(), velocity, 1e-12);
    EXPECT_NEAR(continuity.velocityY(), 0.65 * 0.35 * -0.5, 1e-12);
    // 0.1 s on: expected at 0.45 + 0.1 × velocity, within 0.08 + 0.07.
    const double reached = 0.45 + 0.1 * velocity + 0.15;
    EXPECT_FALSE(continuity.accept(centered(reached + 1e-6, 0.45, 0.1, 0.1), 1, 0.3));
    EXPECT_TRUE(continuity.accept(centered(reached - 1e-6, 0.45, 0.1, 0.1), 1, 0.3));
}

TEST(SubjectContinuityTest, LostFromTheFirstRejectionUntilTheNextAcceptance) {
    const SubjectBox box = centered(0.5, 0.5, 0.1, 0.1);
    SubjectTrackingContinuity continuity;
    EXPECT_FALSE(continuity.accept(box, 0, 1));
    EXPECT_EQ(continuity.lostTime(), 0) << "nothing was followed yet";
    EXPECT_TRUE(continuity.accept(box, 1, 2));
    EXPECT_FALSE(continuity.accept(std::nullopt, 1, 3));
    EXPECT_FALSE(continuity.accept(box, 0, 4));
    EXPECT_EQ(continuity.lostTime(), 3);
    EXPECT_EQ(continuity.time(), 2);
    EXPECT_FALSE(continuity.accept(centered(0.8, 0.5, 0.1, 0.1), 1, 5)) << "the box before still bounds the step";
    EXPECT_TRUE(continuity.accept(box, 1, 6));
    EXPECT_EQ(continuity.lostTime(), 0);
    EXPECT_FALSE(continuity.accept(box, 0, 7));
    EXPECT_EQ(continuity.lostTime(), 7);
}

} // namespace
} // namespace flowtide
