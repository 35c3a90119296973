// What a composition shows at each time, both ways through it, and where rendered previews cover it.
#include "media/preview/retimed_composition.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace flowtide {
namespace {

CompositionTime ticks(std::int64_t count) {
    return {count};
}

/// Four seconds of output: 1 s at speed 1, then 1 s of source over 3 s; a preview over 2 to 3 s and one from 3.5 s on.
RetimedComposition sample() {
    RetimedComposition composition;
    composition.media = {{"clip.mov", 0, nullptr}, {"first.mov", 0.5, nullptr}, {"second.mov", 0, nullptr}};
    composition.video = {{0, ticks(0), ticks(60'000), ticks(0), ticks(60'000)},
                         {0, ticks(60'000), ticks(120'000), ticks(60'000), ticks(240'000)}};
    composition.cachedPreviews = {{1, ticks(0), ticks(60'000), ticks(120'000), ticks(180'000)},
                                  {2, ticks(0), ticks(30'000), ticks(210'000), ticks(240'000)}};
    return composition;
}

TEST(RetimedComposition, ShowsThePreviewWhereThereIsOneAndTheClipElsewhere) {
    const RetimedComposition composition = sample();
    struct Case {
        double time;
        std::size_t medium;
        double fileSeconds;
    };
    for (const Case& each : std::vector<Case>{
             {-1, 0, 0},
             {std::nan(""), 0, 0},
             {0.25, 0, 0.25},
             {1, 0, 1},
             {1.5, 0, 1 + 0.5 / 3},
             {2, 1, 0.5}, // the file's own start is half a second in
             {2.75, 1, 1.25},
             {3, 0, 1 + 2.0 / 3},
             {3.5, 2, 0},
             {4, 2, 0.5},
             {std::numeric_limits<double>::infinity(), 2, 0.5},
         }) {
        const auto place = composition.videoAt({each.time});
        ASSERT_TRUE(place) << each.time;
        EXPECT_EQ(place->medium, each.medium) << each.time;
        EXPECT_NEAR(place->fileSeconds, each.fileSeconds, 1e-12) << each.time;
    }
    EXPECT_EQ(composition.duration(), OutputSeconds{4});
    EXPECT_FALSE(composition.audioAt({1}));
    EXPECT_FALSE(RetimedComposition().videoAt({0}));
    EXPECT_EQ(RetimedComposition().duration(), OutputSeconds{0});
}

TEST(RetimedComposition, SoundNeverComesFromAPreview) {
    RetimedComposition composition = sample();
    composition.audio = composition.video;
    EXPECT_EQ(composition.audioAt({2.5}), (MediumPlace{0, 1.5}));
    EXPECT_EQ(composition.audioAt({9}), (MediumPlace{0, 2}));
}

TEST(RetimedComposition, StretchesMeetWithoutGapsBothWays) {
    const RetimedComposition composition = sample();
    std::vector<std::pair<std::size_t, double>> forward; // medium, start
    for (double at = 0; at < 4;) {
        const auto stretch = composition.videoStretchAt({at});
        ASSERT_TRUE(stretch);
        ASSERT_EQ(stretch->outputStart.value, at);
        ASSERT_GT(stretch->outputEnd.value, at);
        forward.emplace_back(stretch->medium, at);
        at = stretch->outputEnd.value;
    }
    EXPECT_THAT(forward, testing::ElementsAre(std::pair(0, 0.0), std::pair(0, 1.0), std::pair(1, 2.0),
                                              std::pair(0, 3.0), std::pair(2, 3.5)));
    std::vector<std::pair<std::size_t, double>> backward;
    for (double at = 4; at > 0;) {
        const auto stretch = composition.videoStretchAt({at}, PlayDirection::backward);
        ASSERT_TRUE(stretch);
        ASSERT_EQ(stretch->outputEnd.value, at);
        ASSERT_LT(stretch->outputStart.value, at);
        at = stretch->outputStart.value;
        backward.emplace_back(stretch->medium, at);
    }
    std::reverse(backward.begin(), backward.end());
    EXPECT_EQ(backward, forward);
}

TEST(RetimedComposition, AStretchHasItsOwnPartOfTheFile) {
    const RetimedComposition composition = sample();
    const auto between = composition.videoStretchAt({3.25});
    ASSERT_TRUE(between);
    EXPECT_NEAR(between->fileStart, 1 + 2.0 / 3, 1e-12);
    EXPECT_NEAR(between->fileEnd, 1 + 2.5 / 3, 1e-12);
    EXPECT_NEAR(between->speed(), 1.0 / 3, 1e-12);
    const auto preview = composition.videoStretchAt({2.5});
    ASSERT_TRUE(preview);
    EXPECT_EQ(preview->fileStart, 0.5);
    EXPECT_EQ(preview->speed(), 1);
}

TEST(RetimedComposition, AtItsEndsThereIsOneSideToLookAt) {
    RetimedComposition composition = sample();
    composition.cachedPreviews.insert(composition.cachedPreviews.begin(),
                                      {1, ticks(0), ticks(100), ticks(0), ticks(100)});
    for (const PlayDirection direction : {PlayDirection::forward, PlayDirection::backward})
        for (const double time : {0.0, 4.0}) {
            const auto stretch = composition.videoStretchAt({time}, direction);
            ASSERT_TRUE(stretch);
            EXPECT_GT(stretch->outputEnd.value, stretch->outputStart.value);
            EXPECT_EQ(stretch->medium, time == 0 ? 1U : 2U);
        }
}

TEST(CompositionTime, RoundsToTheNearestTickAndRefusesWhatHasNone) {
    for (const auto& [seconds, expected] : std::vector<std::pair<double, std::int64_t>>{
             {1, 60'000}, {1.0 / 24, 2500}, {1001.0 / 30'000, 2002}, {8.4e-6, 1}, {8.3e-6, 0}})
        EXPECT_EQ(CompositionTime::nearest(seconds), CompositionTime{expected}) << seconds;
    for (const double none : {std::nan(""), std::numeric_limits<double>::infinity(), -1e300, 1e15})
        EXPECT_FALSE(CompositionTime::nearest(none)) << none;
}

} // namespace
} // namespace flowtide
