// Tracked stretches: cut from samples, and joined.
#include "core/subject_track.h"

#include <gtest/gtest.h>

namespace flowtide {
namespace {

using Ranges = std::vector<SubjectTrackingRange>;

SubjectTrackingRange range(double start, double end, bool lostBefore = false, bool lostAfter = false,
                           double lastFrameTime = 0) {
    return {{}, start, end, lostBefore, lostAfter, lastFrameTime};
}

SubjectTrackResult tracked(const std::vector<double>& times) {
    SubjectTrackResult result;
    for (const double time : times)
        result.samples.push_back({time, 0.5});
    return result;
}

Ranges withoutIds(Ranges ranges) {
    for (SubjectTrackingRange& each : ranges)
        each.id = {};
    return ranges;
}

TEST(SubjectTrackTest, AGapOfMoreThanOneAndAHalfFramesEndsARange) {
    SubjectTrackResult result = tracked({1, 1.1, 1.25, 1.4, 1.551, 1.65, 3});
    result.lostFrames = {2, 2.1};
    result.lostBeforeSeed = true;
    const Ranges wanted{range(1, 1.5, true, false, 1.4), range(1.551, 1.75, false, true, 1.65),
                        range(3, 3.1, true, false, 3)};
    const Ranges found = withoutIds(result.trackedRanges(0.1, {0, 10}));
    ASSERT_EQ(found.size(), wanted.size());
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        EXPECT_DOUBLE_EQ(found[i].end, wanted[i].end);
        EXPECT_EQ(found[i].start, wanted[i].start);
        EXPECT_EQ(found[i].lastFrameTime, wanted[i].lastFrameTime);
        EXPECT_EQ(found[i].lostBefore, wanted[i].lostBefore) << i;
        EXPECT_EQ(found[i].lostAfter, wanted[i].lostAfter) << i;
    }
    EXPECT_NE(result.trackedRanges(0.1, {0, 10})[0].id, result.trackedRanges(0.1, {0, 10})[1].id);
}

TEST(SubjectTrackTest, RangesStayInsideWhatIsAskedForAndOnlyTheTracksEndsAreLost) {
    SubjectTrackResult result = tracked({1, 1.1, 1.2, 1.3});
    result.lostBeforeSeed = result.lostAfterSeed = true;
    EXPECT_EQ(withoutIds(result.trackedRanges(0.1, {1, 1.3})), (Ranges{range(1, 1.3, true, true, 1.3)}));
    EXPECT_EQ(withoutIds(result.trackedRanges(0.1, {1.05, 1.25})), (Ranges{range(1.1, 1.25, false, false, 1.2)}));
    EXPECT_TRUE(result.trackedRanges(0.1, {2, 3}).empty());
    EXPECT_EQ(withoutIds(tracked({1, 1.1, 1.3}).trackedRanges(0.1, {1.1, 1.3})).size(), 1U) << "nothing of the last";
    EXPECT_TRUE(SubjectTrackResult{}.trackedRanges(0.1, {0, 10}).empty());
}

TEST(SubjectTrackTest, RangesThatTouchWithinAMicrosecondAreOne) {
    struct Case {
        const char* what;
        Ranges ranges;
        Ranges wanted;
    };
    for (const auto& [what, ranges, wanted] :
         {Case{"apart", {range(3, 4), range(1, 2)}, {range(1, 2), range(3, 4)}},
          {"touching",
           {range(1, 2, true, true, 1.9), range(2 + 0.9e-6, 3, true, false, 2.9)},
           {range(1, 3, true, false, 2.9)}},
          {"just apart", {range(1, 2), range(2 + 1.1e-6, 3)}, {range(1, 2), range(2 + 1.1e-6, 3)}},
          {"one start, lost before in one", {range(1, 2, true), range(1 + 5e-7, 3)}, {range(1, 3)}},
          {"one start, lost before in both", {range(1, 2, true), range(1, 3, true)}, {range(1, 3, true)}},
          {"another start tells nothing", {range(1, 2, true), range(1.1, 3)}, {range(1, 3, true)}},
          {"one end, lost after in one",
           {range(1, 3, false, true, 2.8), range(2, 3 + 5e-7, false, false, 2.9)},
           {range(1, 3, false, false, 2.9)}},
          {"one end, lost after in both",
           {range(1, 3, false, true, 2.9), range(2, 3, false, true, 2.8)},
           {range(1, 3, false, true, 2.9)}},
          {"inside", {range(1, 5, false, true, 4.9), range(2, 3, true, false, 2.9)}, {range(1, 5, false, true, 4.9)}},
          {"a chain", {range(2, 3), range(1, 2), range(3, 4, false, true, 3.9)}, {range(1, 4, false, true, 3.9)}}})
        EXPECT_EQ(SubjectTrackingRange::merged(ranges), wanted) << what;
}

} // namespace
} // namespace flowtide
