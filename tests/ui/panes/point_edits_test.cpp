#include "ui/panes/point_edits.h"

#include <gtest/gtest.h>

namespace flowtide {
namespace {

SpeedKeyframe point(double time, SpeedKeyframeRole role = SpeedKeyframeRole::curve) {
    return {Uuid::random(), time, 2, role};
}

TEST(PointEditsTest, CountTheUsersPointsInsideTheTrim) {
    const SpeedKeyframes points{point(0), point(1, SpeedKeyframeRole::trimStart), point(2), point(3), point(9)};
    EXPECT_EQ(pointEdits::placeOf(points, points[3].id, {1, 5}, 10).number, 2);
    EXPECT_EQ(pointEdits::placeOf(points, points[3].id, {1, 5}, 10).count, 2);
    EXPECT_EQ(pointEdits::placeOf(points, points[4].id, {1, 5}, 10).number, 0);
}

TEST(PointEditsTest, KeepPointsInTheClipAndApart) {
    using pointEdits::TimeRefusal;
    const SpeedKeyframes points{point(0), point(2), point(3)};
    const auto refusal = [&](double time) { return pointEdits::refusalOfTime(points, points[1].id, time, 10); };
    EXPECT_EQ(refusal(2.004), TimeRefusal::none);
    EXPECT_EQ(refusal(2.995), TimeRefusal::nearAnother);
    EXPECT_EQ(refusal(10.5), TimeRefusal::outsideClip);
}

} // namespace
} // namespace flowtide
