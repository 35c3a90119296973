// The playhead as a function of the clock.
#include "media/player/playback_timeline.h"

#include <gtest/gtest.h>

#include <limits>

namespace flowtide {
namespace {

TEST(PlaybackTimeline, RatesAreAnchoredWhereTheyChange) {
    PlaybackTimeline timeline(100);
    timeline.moveTo({10}, 1000);
    timeline.setRate(2, 1001); // stood still for a second
    EXPECT_DOUBLE_EQ(timeline.position(1003).value, 14);
    EXPECT_DOUBLE_EQ(timeline.position(999).value, 10) << "a clock that reads too early";
    timeline.setRate(-0.5, 1003);
    EXPECT_DOUBLE_EQ(timeline.position(1007).value, 12);
    timeline.moveTo({50}, 1007);
    EXPECT_DOUBLE_EQ(timeline.position(1009).value, 49) << "a jump keeps the rate";
    timeline.setRate(0, 1009);
    EXPECT_DOUBLE_EQ(timeline.position(1e6).value, 49);
}

TEST(PlaybackTimeline, EndsAtBothLimits) {
    struct Case {
        double start, rate, clock, position;
        bool ended;
    };
    for (const Case& c : {Case{8, 1, 1.9, 9.9, false}, Case{8, 1, 2, 10, true}, Case{8, 1, 50, 10, true},
                          Case{2, -1, 1.9, 0.1, false}, Case{2, -1, 2, 0, true}, Case{0, 1, 0, 0, false},
                          Case{10, -1, 0, 10, false}, Case{10, 0, 5, 10, false}, Case{0, 0, 5, 0, false}}) {
        PlaybackTimeline timeline(10);
        timeline.moveTo({c.start}, 0);
        timeline.setRate(c.rate, 0);
        EXPECT_NEAR(timeline.position(c.clock).value, c.position, 1e-12) << c.start << " at " << c.rate;
        EXPECT_EQ(timeline.ended(c.clock), c.ended) << c.start << " at " << c.rate << " after " << c.clock;
    }
}

TEST(PlaybackTimeline, TakesOnlyWhatCanBePlayed) {
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double infinity = std::numeric_limits<double>::infinity();
    for (const auto& [wanted, got] : {std::pair{9.0, 8.0}, {-9.0, -8.0}, {infinity, 8.0}, {0.25, 0.25}, {nan, 0.0}})
        EXPECT_EQ(playableRate(wanted), got);
    PlaybackTimeline timeline(10);
    for (const auto& [wanted, got] : {std::pair{-1.0, 0.0}, {11.0, 10.0}, {infinity, 10.0}, {nan, 0.0}}) {
        timeline.moveTo({wanted}, 5);
        EXPECT_EQ(timeline.position(5).value, got);
    }
    EXPECT_EQ(PlaybackTimeline(-3).position(7).value, 0);
}

} // namespace
} // namespace flowtide
