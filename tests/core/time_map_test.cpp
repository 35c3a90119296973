// Lookups, cursor and slices of a map, on a table small enough to reckon by hand and on random ones.
#include "core/curve_engine.h"
#include "core/time_map.h"
#include "tests/core/random_curve.h"

#include <gtest/gtest.h>

#include <limits>

namespace flowtide {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

/// Half speed for a second, a standstill of no output (as far as a table can hold one), double speed for two seconds.
TimeMap sample() {
    return TimeMap({{1, 0}, {2, 2}, {3, 2}, {5, 3}}, {1, 5}, 3);
}

TEST(TimeMapTest, LookupsInterpolateAndClamp) {
    const TimeMap map = sample();
    struct Case {
        double source;
        double output;
    };
    for (const auto& [source, output] :
         {Case{0, 0}, {1, 0}, {1.5, 1}, {2, 2}, {2.5, 2}, {3, 2}, {4, 2.5}, {5, 3}, {9, 3}, {nan, 0}}) {
        EXPECT_EQ(map.outputTime({source}).value, output) << source;
    }
    for (const auto& [source, output] : {Case{1, -4}, {1, 0}, {1.5, 1}, {3, 2}, {4, 2.5}, {5, 3}, {5, 8}, {1, nan}}) {
        std::size_t cursor = 0;
        EXPECT_EQ(map.sourceTime({output}).value, source) << output;
        EXPECT_EQ(map.sourceTime({output}, cursor).value, source) << output;
    }
    EXPECT_EQ(map.interpolatedSource(1, {2}).value, 2) << "a stretch without output stays at its start";
    EXPECT_EQ(map.interpolatedSource(3, {3}).value, 5);
}

TEST(TimeMapTest, TheCursorFollowsInBothDirections) {
    const TimeMap map = sample();
    std::size_t cursor = 99;
    EXPECT_EQ(map.sourceTime({1}, cursor).value, 1.5);
    EXPECT_EQ(cursor, 0u);
    map.sourceTime({2}, cursor);
    EXPECT_EQ(cursor, 2u);
    map.sourceTime({3}, cursor);
    EXPECT_EQ(cursor, 2u) << "the last entry begins no stretch";
    map.sourceTime({1.9}, cursor);
    EXPECT_EQ(cursor, 0u);
}

TEST(TimeMapTest, MapsOfNoneOneAndTwoEntries) {
    std::size_t cursor = 7;
    const TimeMap none;
    EXPECT_EQ(none.outputTime({3}).value, 0);
    EXPECT_EQ(none.sourceTime({3}).value, 0);
    EXPECT_EQ(none.sourceTime({3}, cursor).value, 0);
    EXPECT_EQ(none.sliced({1, 2}), TimeMap());

    const TimeMap one({{4, 0}}, {4, 4}, 0);
    EXPECT_EQ(one.outputTime({9}).value, 0);
    EXPECT_EQ(one.sourceTime({9}).value, 4);
    EXPECT_EQ(one.sourceTime({9}, cursor).value, 4);

    const TimeMap two({{4, 0}, {6, 1}}, {4, 6}, 1);
    EXPECT_EQ(two.outputTime({5}).value, 0.5);
    EXPECT_EQ(two.sourceTime({0.5}).value, 5);
}

TEST(TimeMapTest, SlicesKeepTheEntriesBetween) {
    const TimeMap map = sample();
    EXPECT_EQ(map.sliced({1.5, 4}), TimeMap({{1.5, 0}, {2, 1}, {3, 1}, {4, 1.5}}, {1.5, 4}, 1.5));
    EXPECT_EQ(map.sliced({2, 3}), TimeMap({{2, 0}, {3, 0}}, {2, 3}, 0)) << "entries at the ends are not repeated";
    EXPECT_EQ(map.sliced({-1, 99}), map);
    EXPECT_EQ(map.sliced({4, 2}).sourceRange(), (SourceRange{4, 4}));
    EXPECT_EQ(map.sliced({4, 2}).outputDuration(), 0);
}

TEST(TimeMapTest, RandomMapsAreMonotoneAndInvertible) {
    RandomCurves random(4);
    for (int round = 0; round < 150; ++round) {
        const double duration = random.between(0.1, 20);
        const double start = random.between(0, duration * 0.9);
        const TimeMap map = CurveEngine::buildTimeMap(random.curve(random.count(0, 20), duration), duration,
                                                      SourceRange{start, random.between(start, duration)},
                                                      random.count(1, 500), random.between(0, 1));
        const auto& entries = map.entries();
        for (std::size_t i = 1; i < entries.size(); ++i) {
            ASSERT_LT(entries[i - 1].source, entries[i].source);
            ASSERT_LT(entries[i - 1].output, entries[i].output);
        }
        const auto [lower, upper] = map.sourceRange();
        const SourceRange part{random.between(lower, upper), random.between(lower, upper)};
        const TimeMap slice = map.sliced(part);
        const double sliceStart = map.outputTime({slice.sourceRange().lower}).value;
        std::size_t cursor = 0;
        for (int i = 0; i <= 100; ++i) {
            const OutputSeconds output{map.outputDuration() * i / 100};
            const SourceSeconds source = map.sourceTime(output);
            ASSERT_EQ(map.sourceTime(output, cursor), source);
            // Output spans up to a hundred times the clip, so that is how far a source rounding can carry.
            ASSERT_NEAR(map.outputTime(source).value, output.value, 1e-10);
            const SourceSeconds there{lower + (upper - lower) * i / 100};
            ASSERT_NEAR(map.sourceTime(map.outputTime(there)).value, there.value, 1e-10);
            if (there >= SourceSeconds{slice.sourceRange().lower} &&
                there <= SourceSeconds{slice.sourceRange().upper}) {
                ASSERT_NEAR(slice.outputTime(there).value, map.outputTime(there).value - sliceStart, 1e-9);
            }
        }
    }
}

} // namespace
} // namespace flowtide
