// Which frames are found, and which ones stay.
#include "media/player/frame_cache.h"
#include "tests/support/clip_maker.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace flowtide::test {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

/// Frame i of ten a second, shown from i / 10 s on.
SpannedFrame tenth(int i) {
    return {numberedFrame({}, 32, 32, i), i / 10.0, i / 10.0, (i + 1) / 10.0};
}

const std::size_t frameBytes = byteCount(tenth(0).frame);

/// The numbers of the cached frames among the first `count`.
std::vector<int> kept(const FrameCache& cache, MediumId medium, int count) {
    std::vector<int> numbers;
    for (int i = 0; i < count; ++i)
        if (cache.find(medium, i / 10.0 + 0.05)) numbers.push_back(i);
    return numbers;
}

TEST(FrameCache, FindsTheFrameShownAtATime) {
    FrameCache cache(1'000'000);
    SpannedFrame first = tenth(0);
    first.from = -infinity;
    SpannedFrame last = tenth(4);
    last.end = infinity;
    for (const SpannedFrame& frame : {last, first, tenth(2), tenth(1)}) // 3 is missing
        cache.insert(7, frame, {7, 0, 1});
    struct Case {
        double time;
        int number; ///< -1: nothing
    };
    for (const Case& c : {Case{-5, 0}, Case{0, 0}, Case{0.0999, 0}, Case{0.1 - 1e-9, 1}, Case{0.1, 1}, Case{0.25, 2},
                          Case{0.3, -1}, Case{0.39, -1}, Case{0.4 - 1e-9, 4}, Case{1e9, 4}}) {
        const auto found = cache.find(7, c.time);
        EXPECT_EQ(found ? *numberOf(found->frame) : -1, c.number) << c.time;
        EXPECT_FALSE(cache.find(6, c.time));
        EXPECT_FALSE(cache.find(8, c.time));
    }
}

TEST(FrameCache, TellsHowFarItReaches) {
    FrameCache cache(1'000'000);
    for (const int i : {1, 2, 3, 5, 6})
        cache.insert(1, tenth(i), {1, 0, 1});
    cache.insert(0, tenth(0), {1, 0, 1}); // other media reach nowhere
    cache.insert(2, tenth(7), {1, 0, 1});
    struct Case {
        double time;
        int direction;
        double limit, reached;
    };
    for (const Case& c :
         {Case{0.15, 1, 9, 0.4}, Case{0.15, 1, 0.35, 0.35}, Case{0.4, 1, 9, 0.4}, Case{0.65, 1, 9, 0.7},
          Case{0.35, -1, 0, 0.1}, Case{0.35, -1, 0.25, 0.25}, Case{0.65, -1, 0, 0.5}, Case{0.05, -1, 0, 0.05}})
        EXPECT_NEAR(cache.coveredUntil(1, c.time, c.direction, c.limit), c.reached, 1e-9)
            << c.time << " " << c.direction;
}

TEST(FrameCache, KeepsWhatPlaybackNeedsNext) {
    struct Case {
        Playhead playhead;
        std::vector<int> kept;
    };
    // Room for four of ten. One that ended 0.05 s ago counts as 0.2 s ahead: nearer than the third one ahead.
    for (const Case& c : {Case{{1, 0.35, 1}, {2, 3, 4, 5}}, Case{{1, 0.35, -1}, {1, 2, 3, 4}},
                          Case{{1, 0.95, 1}, {6, 7, 8, 9}}, Case{{1, 0.05, -1}, {0, 1, 2, 3}}}) {
        FrameCache cache(4 * frameBytes);
        for (int i = 0; i < 10; ++i)
            cache.insert(1, tenth(i), c.playhead);
        EXPECT_EQ(kept(cache, 1, 10), c.kept) << c.playhead.time << " " << c.playhead.direction;
        EXPECT_EQ(cache.bytes(), 4 * frameBytes);
    }
}

TEST(FrameCache, SaysWhenItIsFull) {
    FrameCache cache(3 * frameBytes);
    const Playhead playhead{1, 0.55, 1};
    EXPECT_TRUE(cache.insert(2, tenth(0), playhead));
    for (const int i : {5, 6, 7})
        EXPECT_TRUE(cache.insert(1, tenth(i), playhead)) << i;
    EXPECT_FALSE(cache.find(2, 0.05)) << "other media go first";
    EXPECT_FALSE(cache.insert(1, tenth(8), playhead));
    EXPECT_FALSE(cache.insert(1, tenth(0), playhead)) << "far behind";
    EXPECT_TRUE(cache.insert(1, tenth(6), playhead)) << "the same again takes no more room";
    EXPECT_EQ(kept(cache, 1, 10), (std::vector<int>{5, 6, 7}));

    FrameCache tiny(1);
    EXPECT_TRUE(tiny.insert(1, tenth(5), playhead)) << "what is shown now is kept whatever it takes";
    EXPECT_FALSE(tiny.insert(1, tenth(6), playhead));
    EXPECT_TRUE(tiny.find(1, 0.55));
}

TEST(FrameCache, NeverExceedsItsBudget) {
    std::mt19937 random(7);
    FrameCache cache(9 * frameBytes + 5);
    std::size_t most = 0;
    for (int i = 0; i < 3000; ++i) {
        const int number = static_cast<int>(random() % 60);
        const MediumId medium = 1 + random() % 3;
        const Playhead playhead{1 + random() % 3, static_cast<double>(random() % 60) / 10, random() % 2 ? 1 : -1};
        const bool taken = cache.insert(medium, tenth(number), playhead);
        most = std::max(most, cache.bytes());
        EXPECT_EQ(taken, cache.find(medium, number / 10.0 + 0.05).has_value());
    }
    EXPECT_EQ(most, 9 * frameBytes);
    cache.clear();
    EXPECT_EQ(cache.bytes(), 0U);
    EXPECT_TRUE(kept(cache, 2, 60).empty());
}

} // namespace
} // namespace flowtide::test
