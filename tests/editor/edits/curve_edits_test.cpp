// Edits of speed and trim.
#include "tests/support/session_stage.h"

#include <algorithm>
#include <limits>

namespace flowtide::test {
namespace {

using CurveEditsTest = SessionStage;

TEST_F(CurveEditsTest, PointsAreSortedLimitedAndNeverNone) {
    open();
    const SpeedKeyframe twice = point(3, 2);
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    model->replaceKeyframes({point(12, 500), twice, point(nan, 1), point(2, nan), twice, point(-1, 0)});
    const auto& keyframes = model->curve().keyframes();
    ASSERT_EQ(keyframes.size(), 3U);
    EXPECT_EQ(keyframes[0].time, 0);
    EXPECT_EQ(keyframes[0].speed, lowestSpeed);
    EXPECT_EQ(keyframes[1], twice);
    EXPECT_EQ(keyframes[2].time, 10);
    EXPECT_EQ(keyframes[2].speed, highestSpeed);

    model->replaceKeyframes({});
    EXPECT_EQ(model->curve().keyframes().size(), 2U);
    EXPECT_TRUE(model->curve().isIdentity());

    const std::size_t steps = model->history().undoStack().size();
    SpeedKeyframes many;
    for (std::size_t i = 0; i <= mostKeyframes; ++i)
        many.push_back(point(static_cast<double>(i) / 2000, 1));
    model->replaceKeyframes(many);
    EXPECT_EQ(model->curve().keyframes().size(), 2U);
    many.pop_back();
    model->replaceKeyframes(many);
    EXPECT_EQ(model->curve().keyframes().size(), mostKeyframes);
    EXPECT_EQ(model->history().undoStack().size(), steps + 1);
    model->scrub(0.9);
    model->setTimelineZoom(4);
    model->applyTrimRange(1, 2); // there is no room for its boundaries
    EXPECT_EQ(model->curve().trimRange(), (SourceRange{0, 10}));
    EXPECT_DOUBLE_EQ(model->playheadSeconds(), 9);
    EXPECT_EQ(model->timeline().timelineZoom(), 4);
}

TEST_F(CurveEditsTest, ResetPlaysTheKeptPartAtSpeedOne) {
    open();
    model->replaceKeyframes(slowBetween(3, 5));
    model->applyTrimRange(2, 8);
    rebuilds();
    model->startPlayback(1);
    model->resetCurve();
    EXPECT_FALSE(model->transport().isPlaying());
    EXPECT_EQ(rebuilds(), 1U);
    ASSERT_EQ(model->curve().keyframes().size(), 2U);
    EXPECT_EQ(model->curve().keyframes()[0].time, 2);
    EXPECT_EQ(model->curve().keyframes()[1].time, 8);
    EXPECT_TRUE(model->curve().isIdentity());
    EXPECT_NEAR(model->curve().timeMap().outputDuration(), 6, 1e-9);
    model->undo();
    EXPECT_FALSE(model->curve().isIdentity());
}

TEST_F(CurveEditsTest, ADraggedTrimIsThatOfOneMove) {
    open();
    model->replaceKeyframes({point(0, 1), point(5, 0.25), point(10, 1)});
    model->replaceCenterKeyframes({point(0, 0), point(5, 1), point(10, 0.3)});
    const double speed = model->curve().speedAt(2);
    const double travel = model->framing().glidedCropTravel(2);
    const TrimState before = model->trimState();
    for (const double start : {1.0, 2.5, 4.0, 3.0, 2.0})
        model->dragTrim(before, start, 10);
    EXPECT_EQ(model->curve().trimRange(), (SourceRange{2, 10}));
    EXPECT_DOUBLE_EQ(model->curve().speedAt(2), speed);
    EXPECT_DOUBLE_EQ(model->framing().centerKeyframes()[0].speed, 0);
    EXPECT_EQ(model->curve().keyframes().size(), 4U);
    const auto trimPoint = [](const SpeedKeyframe& each) { return each.role == SpeedKeyframeRole::trimStart; };
    const auto& centers = model->framing().centerKeyframes();
    EXPECT_DOUBLE_EQ(std::find_if(centers.begin(), centers.end(), trimPoint)->speed, travel);
    SubjectTrackResult track; // that ends while the handle is held
    for (int frame = 120; frame <= 210; ++frame)
        track.samples.push_back({frame / 30.0, 0.2});
    model->applySubjectTrackingResult(track);
    const double tracked = model->framing().liveCropTravel(5);
    model->dragTrim(before, 3, 10);
    EXPECT_EQ(model->framing().liveCropTravel(5), tracked);
    open("other.mov");
    model->dragTrim(before, 4, 10);
    EXPECT_EQ(model->curve().trimRange(), (SourceRange{0, 10}));
}

TEST_F(CurveEditsTest, TrimKeepsSpeedAndFramingAtItsEnds) {
    open();
    model->setCurveSmoothing(0);
    model->replaceKeyframes({point(0, 1), point(10, 11)});
    model->setCenterSmoothing(0);
    model->replaceCenterKeyframes({point(0, 0), point(10, 1)});
    model->setTimelineZoom(4);
    model->setTimelineCenter(0.9);
    model->scrub(0.9);
    const std::size_t steps = model->history().undoStack().size();
    const double speedAt3 = model->curve().speedAt(3);
    rebuilds();
    model->startPlayback(-1);
    model->applyTrimRange(3, 7);
    EXPECT_FALSE(model->transport().isPlaying());
    EXPECT_EQ(rebuilds(), 1U);
    EXPECT_NEAR(player.currentTime().value, model->curve().timeMap().outputDuration(), 1e-3);
    EXPECT_EQ(model->history().undoStack().size(), steps);
    EXPECT_DOUBLE_EQ(model->curve().speedAt(3), speedAt3);
    EXPECT_DOUBLE_EQ(speedAt3, 4);
    EXPECT_DOUBLE_EQ(model->curve().speedAt(7), 8);
    EXPECT_NEAR(model->framing().liveCropTravel(3), 0.3, 0.02);
    EXPECT_NEAR(model->framing().liveCropTravel(7), 0.7, 0.02);
    EXPECT_EQ(model->timeline().timelineZoom(), 1);
    EXPECT_EQ(model->timeline().timelineCenter(), 0.5);
    EXPECT_DOUBLE_EQ(model->playheadSeconds(), 7);

    const auto keyframes = model->curve().keyframes();
    const struct {
        double start, end;
    } nothing[] = {{3, 7}, {3 + 9e-7, 7}, {5, 5.0009}, {6, 4}, {-0.002, 5}, {3, 10.002}, {std::nan(""), 5}};
    for (const auto& [start, end] : nothing) {
        model->applyTrimRange(start, end);
        EXPECT_EQ(model->curve().keyframes(), keyframes) << start << " " << end;
    }
    EXPECT_EQ(rebuilds(), 0U);
    model->applyTrimRange(3 + 2e-6, 7);
    EXPECT_EQ(model->curve().trimRange(), (SourceRange{3 + 2e-6, 7}));
    model->applyTrimRange(5, 5.0011);
    EXPECT_EQ(model->curve().trimRange(), (SourceRange{5, 5.0011}));
    model->applyTrimRange(-0.0005, 10.0005);
    EXPECT_EQ(model->curve().trimRange(), (SourceRange{0, 10}));
    model->applyTrimRange(3, 7);
    model->scrub(0);
    EXPECT_DOUBLE_EQ(model->playheadSeconds(), 3);
    model->resetTrimRange();
    EXPECT_EQ(model->curve().trimRange(), (SourceRange{0, 10}));

    // Nothing but the points at the trim is left: without the trim their speeds are those of the ends.
    model->applyTrimRange(3, 7);
    model->replaceKeyframes({});
    EXPECT_TRUE(model->curve().isIdentity());
    SpeedKeyframes ends = model->curve().keyframes();
    ASSERT_EQ(ends.size(), 2U);
    ends[0].speed = 3;
    ends[1].speed = 0.5;
    model->replaceKeyframes(ends);
    model->resetTrimRange();
    ASSERT_EQ(model->curve().keyframes().size(), 2U);
    EXPECT_EQ(model->curve().keyframes()[0].speed, 3);
    EXPECT_EQ(model->curve().keyframes()[1].speed, 0.5);
    EXPECT_EQ(model->curve().keyframes()[1].time, 10);
}

TEST_F(CurveEditsTest, JumpsGoFromPointToPointWithinTheTrim) {
    open();
    model->replaceKeyframes({point(0, 1), point(4, 2), point(6, 1), point(10, 1)});
    model->replaceCenterKeyframes({point(0, 0.5), point(5, 0.1), point(10, 0.5)});
    model->applyTrimRange(3, 8);
    model->scrub(0.7);
    const auto jumps = [&](auto jump, std::initializer_list<double> places) {
        for (const double place : places) {
            (model.get()->*jump)();
            EXPECT_DOUBLE_EQ(model->playheadSeconds(), place);
        }
    };
    jumps(&FlowtideViewModel::jumpToPreviousKeyframe, {6, 4, 3, 3});
    jumps(&FlowtideViewModel::jumpToNextKeyframe, {4, 6, 8, 8});
    model->setEditorMode(CurveEditorMode::cropCenter);
    jumps(&FlowtideViewModel::jumpToPreviousKeyframe, {5, 3});
}

} // namespace
} // namespace flowtide::test
