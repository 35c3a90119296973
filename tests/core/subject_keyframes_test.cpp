// The framing curve made of a track: calm, of few points, the subject in the crop.
#include "core/crop_plan.h"
#include "core/subject_keyframes.h"
#include "core/subject_track.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>

namespace flowtide {
namespace {

using namespace SubjectKeyframes;
using testing::DoubleNear;
using testing::ElementsAre;
using testing::Pointwise;

constexpr double frameRate = 30;
constexpr double vertical = 0.5625 * 9 / 16; ///< of the frame's width

SubjectTrackResult tracked(double seconds, const std::function<double(double)>& center) {
    SubjectTrackResult result;
    for (int i = 0; i < seconds * frameRate; ++i)
        result.samples.push_back({i / frameRate, center(i / frameRate)});
    return result;
}

/// Where the subject is in the crop, from its centre, as a share of its width.
double offCenter(const SpeedKeyframes& keyframes, const SubjectTrackResult::Sample& sample, double crop) {
    const double middle = crop / 2 + (1 - crop) * cropCenter(keyframes, SourceSeconds{sample.time});
    return (sample.centerX - middle) / crop;
}

TEST(SubjectKeyframesTest, WindowsHoldBothEdges) {
    const std::vector<double> times{0, 1, 1.5, 2, 4};
    EXPECT_THAT(windows(times, 1), ElementsAre(Window{0, 1}, Window{0, 3}, Window{1, 3}, Window{1, 3}, Window{4, 4}));
    EXPECT_THAT(windows(times, 0), ElementsAre(Window{0, 0}, Window{1, 1}, Window{2, 2}, Window{3, 3}, Window{4, 4}));
    EXPECT_TRUE(windows({}, 1).empty());
}

TEST(SubjectKeyframesTest, TheTautStringBendsOnlyAroundGates) {
    struct Case {
        const char* what;
        std::vector<Gate> gates;
        std::vector<double> wanted;
    };
    for (const auto& [what, gates, wanted] :
         {Case{"free", {{0, -1, 2}, {1, 0, 3}, {2, -2, 1}}, {0.5, 0.5, 0.5}},
          {"one gate", {{3, 1, 2}}, {1.5}},
          {"upwards, from edge to edge", {{0, -1, 0}, {1, -9, 9}, {2, -9, 9}, {3, 6, 9}}, {0, 2, 4, 6}},
          {"downwards, at uneven times", {{0, 5, 9}, {1, -9, 9}, {5, -2, 0}}, {5, 4, 0}},
          {"over a gate", {{0, -1, 0}, {1, 3, 9}, {2, -9, 9}, {3, -1, 1}}, {0, 3, 2, 1}},
          {"under a gate", {{0, 0, 1}, {1, -9, -3}, {2, -9, 9}, {3, -1, 1}}, {0, -3, -2, -1}},
          {"round both sides", {{0, 0, 0}, {1, 2, 9}, {2, -9, -2}, {3, 0, 0}}, {0, 2, -2, 0}},
          {"pinned", {{0, 1, 1}, {1, 4, 4}, {2, 2, 2}}, {1, 4, 2}}})
        EXPECT_THAT(tautString(gates), Pointwise(DoubleNear(1e-12), wanted)) << what;
}

TEST(SubjectKeyframesTest, FewPointsKeepTheSubjectWithinTheTolerance) {
    struct Case {
        const char* what;
        std::function<double(double)> center;
        std::size_t most; ///< points in 20 s
    };
    const auto jitter = [](double t) { return 0.02 * std::sin(37 * t) + 0.01 * std::sin(91 * t); };
    for (const auto& [what, center, most] :
         {Case{"still", [](double) { return 0.4; }, 2},
          {"trembling", [&](double t) { return 0.4 + jitter(t); }, 2},
          {"crossing", [](double t) { return 0.16 + 0.03 * t; }, 2},
          {"trembling across", [&](double t) { return 0.2 + 0.03 * t + jitter(t); }, 3},
          {"to and fro", [](double t) { return 0.5 + 0.3 * std::sin(t); }, 12},
          {"out of the crop's travel", [](double t) { return 0.5 + 0.5 * std::sin(0.5 * t); }, 8}}) {
        const SubjectTrackResult result = tracked(20, center);
        const SpeedKeyframes keyframes = result.keyframes(vertical);
        EXPECT_GE(keyframes.size(), 2u) << what;
        EXPECT_LE(keyframes.size(), most) << what;
        EXPECT_EQ(keyframes.front().time, result.samples.front().time) << what;
        EXPECT_EQ(keyframes.back().time, result.samples.back().time) << what;
        for (const auto& sample : result.samples) {
            const double nearest = std::clamp(sample.centerX, vertical / 2, 1 - vertical / 2);
            EXPECT_LE(std::abs(offCenter(keyframes, {sample.time, nearest}, vertical)),
                      SubjectTrackResult::calmTolerance + 1e-6)
                << what << " at " << sample.time;
            EXPECT_LE(std::abs(offCenter(keyframes, sample, vertical)),
                      std::max(SubjectTrackResult::calmTolerance, std::abs(sample.centerX - nearest) / vertical) + 1e-6)
                << what << " at " << sample.time;
        }
    }
}

TEST(SubjectKeyframesTest, TheToleranceAndTheRadiusSayHowCalmTheCurveIs) {
    const SubjectTrackResult result = tracked(20, [](double t) { return 0.5 + 0.1 * std::sin(3 * t); });
    EXPECT_EQ(result.keyframes(vertical, 0.45).size(), 2u) << "0.1 of the frame is 0.32 of the crop";
    EXPECT_GE(result.keyframes(vertical, 0.05, 0.05).size(), 19u) << "one at least for each turn";
    // The subject jumps too far for one place to suit both sides; within the radius the crop stays between them.
    const SubjectTrackResult jump = tracked(4, [](double t) { return t < 2 ? 0.3 : 0.7; });
    const SpeedKeyframes keyframes = jump.keyframes(vertical, 0.2, 0.5);
    EXPECT_NEAR(cropCenter(keyframes, {2}), 0.5, 0.03);
    EXPECT_LT(std::abs(offCenter(keyframes, {1.3, 0.3}, vertical)), 0.2 + 1e-6);
}

TEST(SubjectKeyframesTest, WithoutTravelOrSamplesThereIsNothingToFrame) {
    EXPECT_TRUE(SubjectTrackResult{}.keyframes(vertical).empty());
    const SubjectTrackResult result = tracked(2, [](double t) { return t / 2; });
    for (const double crop : {1.0, 1.5}) {
        const SpeedKeyframes keyframes = result.keyframes(crop);
        ASSERT_EQ(keyframes.size(), 1u);
        EXPECT_EQ(keyframes[0].speed, 0.5);
    }
    EXPECT_EQ(tracked(0.01, [](double) { return 0.5; }).keyframes(vertical).size(), 1u);
}

} // namespace
} // namespace flowtide
