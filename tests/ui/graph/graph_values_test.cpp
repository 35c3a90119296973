#include "ui/graph/coverage_bar.h"
#include "ui/graph/curve_drag.h"
#include "ui/graph/curve_drag_scale.h"
#include "ui/graph/curve_graph_painter.h"
#include "ui/graph/curve_point_edits.h"
#include "ui/graph/film_strip.h"
#include "ui/graph/point_labels.h"
#include "ui/graph/sound_envelope.h"
#include "ui/graph/time_axis.h"
#include "ui/graph/zoom_lane_geometry.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace flowtide {
namespace {

using testing::ElementsAre;

SpeedKeyframe point(double time, double speed, SpeedKeyframeRole role = SpeedKeyframeRole::curve) {
    return {Uuid::random(), time, speed, role};
}

CurveDragScale usualScale(double height = 200) {
    return CurveDragScale::of(CurveEditorAxis::speed(), {0.1, 4}, height);
}

TEST(CurveEditorAxis, LabelsItsValues) {
    const auto speed = CurveEditorAxis::speed();
    EXPECT_EQ(speed.format(0.3333), "0.33x");
    EXPECT_EQ(speed.format(3.0), "3x");
    EXPECT_EQ(speed.format(0.999), "1x");
    EXPECT_EQ(speed.format(12.3), "12x");
    const auto center = CurveEditorAxis::cropCenter();
    EXPECT_EQ(center.format(0.497), "Center");
    EXPECT_EQ(center.format(0.25), "25%");
    EXPECT_EQ(center.presets.size(), center.gridValues.size());
}

TEST(CurveDragScale, SnapsWithinTheBandOnly) {
    const CurveDragScale scale = usualScale();
    const double two = scale.normalized(2);
    EXPECT_EQ(snappedSpeed(two + 0.019, scale, false).value, 2);
    EXPECT_NE(snappedSpeed(two + 0.021, scale, false).value, 2);
    const SnappedValue bypassed = snappedSpeed(two + 0.01, scale, true);
    EXPECT_FALSE(bypassed.isSnapped);
    EXPECT_GT(bypassed.value, 2);
    // Grid lines that are not in view do not attract.
    const double ten = scale.normalized(10);
    EXPECT_FALSE(snappedSpeed(ten, scale, false).isSnapped);
    // The topmost does, in a window that has moved there.
    for (const double top : {4.0, 50.0}) {
        const auto moved =
            CurveDragScale::of(CurveEditorAxis::speed(), windowBetween({0.1, 7}, {0.1, top}, 1, true), 200);
        EXPECT_EQ(snappedSpeed(0.99, moved, false).value, top);
    }
}

TEST(CurveDragScale, GoesOnBeyondTheEdgesAtAConstantRate) {
    const CurveDragScale scale = usualScale();
    const auto above = [&](double pixels) { return std::log10(scale.value(1 + pixels / scale.height)); };
    EXPECT_NEAR(above(0), std::log10(4), 1e-9);
    EXPECT_NEAR(above(40) - above(20), above(20) - above(0), 1e-9);
    EXPECT_EQ(scale.value(50), 100);
    EXPECT_EQ(scale.value(-50), 0.01);
    EXPECT_NEAR(scale.value(-CurveDragScale::farthestPixels / scale.height), 0.01, 1e-9);
    EXPECT_NEAR(scale.value(scale.normalized(0.37)), 0.37, 1e-9);
}

TEST(CurveDragScale, NudgesByPartsOfAGridStep) {
    const auto axis = CurveEditorAxis::speed();
    EXPECT_NEAR(nudgedValue(1, 1, axis), 2, 1e-9);
    EXPECT_NEAR(nudgedValue(1, -1, axis), 0.5, 1e-9);
    EXPECT_EQ(nudgedValue(100, 1, axis), 100);
    EXPECT_NEAR(nudgedValue(0.5, 0.05, CurveEditorAxis::cropCenter()), 0.5125, 1e-9);
}

TEST(TimeAxis, ShowsNothingBeyondTheClip) {
    const TimeAxis axis = TimeAxis::of(10, 44, 800, 4, 0);
    EXPECT_EQ(axis.start, 0);
    EXPECT_EQ(axis.span, 2.5);
    EXPECT_NEAR(axis.timeAt(axis.xOf(1.7)), 1.7, 1e-12);
    const TimeAxis nearer = axis.zoomedAround(axis.xOf(1), 2, 20);
    EXPECT_NEAR(nearer.xOf(1), axis.xOf(1), 1e-9);
    EXPECT_EQ(axis.zoomedAround(400, 1e-3, 20).span, 10);
    EXPECT_NEAR(axis.zoomedAround(400, 1e3, 20).span, 0.5, 1e-12);
    EXPECT_NEAR(axis.panned(100).end(), 10, 1e-12);
}

TEST(TimeAxis, ChoosesStepsWithRoomForTheirLabels) {
    EXPECT_EQ(rulerSteps(210).major, 0.5);
    EXPECT_EQ(rulerSteps(64).major, 1);
    EXPECT_EQ(rulerSteps(63).major, 2);
    EXPECT_GE(rulerSteps(1e-5).major * 1e-5, 64);
    EXPECT_EQ(rulerLabel(2.5, 0.5), "2.5 s");
    EXPECT_EQ(rulerLabel(90, 30), "1:30");
    EXPECT_EQ(rulerLabel(3720, 60), "1:02:00");
    EXPECT_EQ(outputTickStep(60), 0.1);
    EXPECT_EQ(outputTickStep(59), 0.25);
    const TimeAxis axis = TimeAxis::of(10, 44, 800, 2, 0.5);
    EXPECT_EQ(edgePanSpeed(400, axis), 0);
    EXPECT_LT(edgePanSpeed(50, axis), 0);
    EXPECT_DOUBLE_EQ(edgePanSpeed(2000, axis), 1.5);
}

class Points : public testing::Test {
protected:
    CurveDrag drag(const PointSelection::Ids& ids, std::size_t grabbed, SourceRange kept = {0, 10}) const {
        return {points, ids, points[grabbed].id, kept, 10, CurveEditorAxis::speed()};
    }
    CurveGraphGeometry geometry{TimeAxis::of(10, 44, 1000, 1, 0.5), {0.1, 4}, true, 16, 200};
    SpeedKeyframes points{point(0, 1), point(2, 0.5), point(3, 2), point(6, 1), point(10, 1)};
};

TEST_F(Points, StayApartAndInOrderWhileTheyAreDragged) {
    const CurveDrag single = drag({points[1].id}, 1);
    const auto right = single.moved(5, 0.5);
    EXPECT_NEAR(right.points[1].time, 3 - graphSettings::minKeyframeSpacing, 1e-9);
    EXPECT_EQ(right.blockedAt, 3);
    EXPECT_FALSE(single.moved(0.5, 0.7).blockedAt);
    EXPECT_EQ(single.moved(0.5, 0.7).points[1].speed, 0.7);

    const CurveDrag group = drag({points[1].id, points[2].id}, 2);
    const auto moved = group.moved(100, 8);
    EXPECT_NEAR(moved.shift, 3 - graphSettings::minKeyframeSpacing, 1e-9);
    EXPECT_NEAR(moved.points[1].speed, 2, 1e-9); // by the same factor
    EXPECT_NEAR(group.moved(0, 0.001).points[1].speed, 0.01, 1e-9);
    EXPECT_NEAR(group.moved(0, 0.001).points[2].speed, 0.04, 1e-9); // the group stops where one of it does
    EXPECT_EQ(drag({points[0].id}, 0).moved(-1, 1).points[0].time, 0);
}

TEST_F(Points, AtTheTrimMoveUpAndDownOnly) {
    points = {point(0, 1), point(1, 1, SpeedKeyframeRole::trimStart), point(4, 1),
              point(8, 1, SpeedKeyframeRole::trimEnd)};
    const SourceRange kept{1, 8};
    const auto edge = drag({points[1].id}, 1, kept).moved(2, 3);
    EXPECT_EQ(edge.points[1].time, 1);
    EXPECT_EQ(edge.points[1].speed, 3);
    EXPECT_FALSE(edge.blockedAt);
    const auto all = drag({points[0].id, points[1].id, points[2].id}, 2, kept).moved(-9, 2);
    EXPECT_EQ(all.points[0], points[0]); // not played
    EXPECT_NEAR(all.points[2].time, 1.01, 1e-9);
    const SpeedKeyframes left =
        curvePointEdits::withoutPoints(edge.points, {points[1].id, points[2].id}, CurveEditorAxis::speed());
    ASSERT_EQ(left.size(), 3);
    EXPECT_EQ(left[1].speed, 1);
}

TEST_F(Points, AreFoundBeforeTheCurveNearestFirst) {
    const QPointF place = geometry.placeOf(points[1]);
    EXPECT_EQ(pointUnder(place + QPointF(0, 17), points, geometry, {}), points[1].id);
    EXPECT_FALSE(pointUnder(place + QPointF(0, 19), points, geometry, {}));
    points.push_back(point(2.03, 0.5));
    EXPECT_EQ(pointUnder(place, points, geometry, {}), points[1].id);
    EXPECT_EQ(pointUnder(place, points, geometry, {points.back().id}), points.back().id);
    const std::vector<QPointF> line{{100, 100}, {110, 100}};
    EXPECT_TRUE(isOnCurve({105, 118}, line));
    EXPECT_FALSE(isOnCurve({105, 119}, line));
    EXPECT_EQ(
        pointsWithin(QRectF(geometry.placeOf(points[2]) + QPointF(5, -5), place - QPointF(5, -5)), points, geometry),
        (PointSelection::Ids{points[1].id, points[2].id, points.back().id}));
}

TEST_F(Points, AreAddedRemovedAndPasted) {
    const curvePointEdits::Span span{{0, 10}, 10};
    EXPECT_FALSE(curvePointEdits::withPoint(points, 2.005, 1, span));
    EXPECT_EQ(curvePointEdits::withPoint(points, 2.5, 1, span)->points[2].speed, 1);
    PointSelection::Ids all;
    for (const SpeedKeyframe& each : points)
        all.insert(each.id);
    EXPECT_EQ(curvePointEdits::withoutPoints(points, all, CurveEditorAxis::speed()).size(), 1);
    const SpeedKeyframes copies = curvePointEdits::copied(points, {points[1].id, points[2].id});
    const auto pasted = curvePointEdits::pasted(points, copies, 9.5, span);
    EXPECT_EQ(pasted.ids.size(), 1); // the other one lies beyond the end
    EXPECT_EQ(curvePointEdits::pasted(points, copies, 2, span).points.size(), points.size());
    EXPECT_EQ(curvePointEdits::steppedSelection(points, {points[1].id}, 0, 1, span), points[2].id);
    EXPECT_EQ(curvePointEdits::steppedSelection(points, {}, 4, -1, span), points[2].id);
}

TEST_F(Points, AskForAWindowWithGridLinesAtItsEdges) {
    const auto axis = CurveEditorAxis::speed();
    const auto window = [&](std::vector<double> values) { return windowShowing(values, axis); };
    EXPECT_EQ(window({1, 3}), (ValueRange{0.1, 4}));
    EXPECT_EQ(window({0.07, 4.5}), (ValueRange{0.05, 10}));
    EXPECT_EQ(window({0.01, 100}), axis.limits);
    geometry.window = axis.limits;
    geometry.height = 120;
    const std::vector<double> labelled = labelledGridValues(axis, geometry);
    EXPECT_THAT(labelled, testing::IsSupersetOf({1.0, 0.01, 100.0}));
    for (const double a : labelled)
        for (const double b : labelled)
            EXPECT_TRUE(a == b || std::abs(geometry.yOf(a) - geometry.yOf(b)) >= 12);
}

TEST(PointLabels, KeepOffTheCurveAndEachOther) {
    // A valley, a rise, a peak: below, to the left, above.
    const auto labels =
        placedLabels({{{0, 50}, 20}, {{100, 90}, 20}, {{200, 60}, 20}, {{300, 20}, 20}, {{400, 80}, 20}}, -100, 200);
    ASSERT_EQ(labels.size(), 5);
    EXPECT_GT(labels[1].baseline.y(), 90);
    EXPECT_LT(labels[2].box.right(), 200);
    EXPECT_LT(labels[3].baseline.y(), 20);
    EXPECT_LT(placedLabels({{{0, 50}, 20}, {{100, 190}, 20}, {{200, 60}, 20}}, -100, 200)[1].baseline.y(), 190);
    EXPECT_EQ(placedLabels({{{44, 50}, 20}, {{100, 90}, 20}}, 44, 200)[0].baseline.x(), 44) << "the axis is there";
    const auto crowded = placedLabels({{{100, 50}, 30}, {{105, 50}, 30, true}, {{110, 50}, 30}}, -100, 200);
    EXPECT_THAT(crowded, ElementsAre(testing::Field(&PointLabel::point, 1)));
    EXPECT_TRUE(isCrowded(91, 100, 109));
    EXPECT_FALSE(isCrowded(90, 100, 109));
    EXPECT_FALSE(isCrowded(91, 100, 110));
}

TEST(CurveLine, ShowsOfManyPointsInAPixelTheExtremes) {
    SpeedKeyframes points;
    for (int i = 0; i <= 10'000; ++i)
        points.push_back(point(i * 1e-3, i == 5'003 ? 4 : i == 5'007 ? 0.1 : i % 2 + 1));
    const CurveGraphGeometry geometry{TimeAxis::of(10, 0, 100, 1, 0.5), {0.1, 4}, false, 0, 100};
    std::size_t evaluated = 0;
    const auto line = curveLine(
        [&](double seconds) {
            ++evaluated;
            return points[static_cast<std::size_t>(std::lround(seconds * 1e3))].speed;
        },
        points, geometry, {0, 10});
    EXPECT_GT(evaluated, points.size() / 2);
    EXPECT_LE(line.size(), 404);
    const auto [highest, lowest] =
        std::minmax_element(line.begin(), line.end(), [](QPointF a, QPointF b) { return a.y() < b.y(); });
    EXPECT_EQ(highest->y(), geometry.yOf(4));
    EXPECT_EQ(lowest->y(), geometry.yOf(0.1));
    EXPECT_LT(highest->x(), lowest->x());
    EXPECT_TRUE(std::is_sorted(line.begin(), line.end(), [](QPointF a, QPointF b) { return a.x() < b.x(); }));
}

TEST(ZoomLane, TellsEdgesFromBodies) {
    const TimeAxis axis = TimeAxis::of(10, 44, 1000, 1, 0.5);
    ZoomBlock block;
    block.startTime = 1;
    block.endTime = 2;
    const auto part = [&](double x) { return zoomHit(x, {block}, axis); };
    EXPECT_FALSE(part(axis.xOf(1) - 1));
    EXPECT_EQ(part(axis.xOf(1) + 7)->part, ZoomPart::startEdge);
    EXPECT_EQ(part(axis.xOf(1.5))->part, ZoomPart::body);
    EXPECT_EQ(part(axis.xOf(2) - 7)->part, ZoomPart::endEdge);
    block.endTime = 1.09;
    EXPECT_EQ(part(axis.xOf(1.045))->part, ZoomPart::body);
}

TEST(CoverageBar, FlagsEveryLoss) {
    const auto flags = coverageFlags({{Uuid::random(), 1, 2, true, true, 1.9},
                                      {Uuid::random(), 3, 4, false, false, 4},
                                      {Uuid::random(), 5, 6, true, false, 5.9}});
    EXPECT_THAT(flags, ElementsAre(CoverageFlag{1, 1, false}, CoverageFlag{2, 1.9, true}, CoverageFlag{5, 5, false}));
}

TEST(FilmStrip, HalvesItsPartsAsItIsMagnified) {
    const FilmSlots whole = FilmSlots::of(TimeAxis::of(10, 0, 800, 1, 0.5), 57);
    EXPECT_EQ(whole.count, 14);
    EXPECT_EQ(whole.last, 13);
    const FilmSlots near = FilmSlots::of(TimeAxis::of(10, 0, 800, 4, 0.5), 57);
    EXPECT_EQ(near.count, 56);
    EXPECT_EQ(near.first, 21);
    EXPECT_EQ(near.last, 34);
}

TEST(SoundEnvelope, HoldsTheLoudestSampleOfAnyChannel) {
    AudioData sound{std::vector<float>(2 * 48'000, 0.0F), 48'000, 2, 24'000, 0};
    sound.samples[2 * 12'000 + 1] = -0.5F; // 0.75 s into the clip
    const SoundEnvelope envelope = soundEnvelope(sound, 2);
    EXPECT_EQ(envelope.peak(0.74, 0.76), 0.5F);
    EXPECT_EQ(envelope.peak(0, 0.7), 0);
    EXPECT_EQ(envelope.peak(0.8, 5), 0);
    EXPECT_EQ(envelope.loudest, 0.5F);
}

} // namespace
} // namespace flowtide
