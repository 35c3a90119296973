// The life of Optical Flow ranges under edits.
#include "tests/support/session_stage.h"

namespace flowtide::test {
namespace {

using FlowEditsTest = SessionStage;

/// Ranges for a table: ids by number.
std::vector<OpticalFlowRange> ranges(std::initializer_list<std::array<double, 3>> list) {
    std::vector<OpticalFlowRange> result;
    for (const auto& [id, start, end] : list) {
        Uuid uuid;
        uuid.bytes[0] = static_cast<std::uint8_t>(id);
        result.push_back({uuid, start, end});
    }
    return result;
}

TEST_F(FlowEditsTest, FreshRangesKeepTheIdTheyOverlapMost) {
    const struct {
        const char* what;
        std::vector<OpticalFlowRange> before;
        SourceRanges spans;
        SourceRanges fresh;
        std::vector<OpticalFlowRange> after; ///< id 0: a new one
        SourceRanges spansAfter;
    } cases[] = {
        {"moved", ranges({{1, 2, 4}}), {}, {{3, 6}}, ranges({{1, 3, 6}}), {}},
        {"apart", ranges({{1, 2, 4}}), {{2, 4}}, {{5, 6}}, ranges({{0, 5, 6}}), {{2, 4}}},
        {"touching", ranges({{1, 2, 4}}), {{4, 5}}, {{0, 2}, {4, 6}}, ranges({{0, 0, 2}, {0, 4, 6}}), {{4, 5}}},
        {"touched by a span", ranges({{1, 2, 4}}), {{4, 5}}, {{2, 5}}, ranges({{1, 2, 5}}), {{2, 5}}},
        {"touched before", ranges({{1, 2, 4}}), {{1, 2}}, {{2, 5}}, ranges({{1, 2, 5}}), {{2, 5}}},
        {"gone", ranges({{1, 2, 4}}), {{2, 4}}, {}, {}, {{2, 4}}},
        {"split", ranges({{1, 0, 10}}), {}, {{0, 3}, {4, 10}}, ranges({{0, 0, 3}, {1, 4, 10}}), {}},
        {"joined", ranges({{1, 0, 2}, {2, 3, 9}}), {}, {{0, 9}}, ranges({{2, 0, 9}}), {}},
        {"off and moved",
         ranges({{1, 2, 4}, {2, 6, 7}}),
         {{2, 4}},
         {{3, 5}, {6, 7}},
         ranges({{1, 3, 5}, {2, 6, 7}}),
         {{3, 5}}},
        {"off as it was", ranges({{1, 2, 4}}), {{1, 9}}, {{2, 4}}, ranges({{1, 2, 4}}), {{1, 9}}},
        {"one span over two",
         ranges({{1, 2, 4}, {2, 6, 7}}),
         {{3, 6.5}},
         {{1, 3}, {6, 8}},
         ranges({{1, 1, 3}, {2, 6, 8}}),
         {{1, 3}, {6, 8}}},
        {"one span, one of two gone",
         ranges({{1, 2, 4}, {2, 6, 7}}),
         {{3, 6.5}},
         {{1, 3}},
         ranges({{1, 1, 3}}),
         {{1, 3}, {6, 7}}},
        {"chain", ranges({{1, 0, 4}, {2, 5, 9}}), {}, {{3, 8}, {8.5, 9.5}}, ranges({{2, 3, 8}, {0, 8.5, 9.5}}), {}},
    };
    for (const auto& each : cases) {
        FlowMarks marks = carriedOver({each.before, each.spans}, each.fresh);
        ASSERT_EQ(marks.ranges.size(), each.after.size()) << each.what;
        for (std::size_t i = 0; i < each.after.size(); ++i) {
            if (each.after[i].id == Uuid{}) {
                EXPECT_NE(marks.ranges[i].id, Uuid{}) << each.what;
                for (const auto& old : each.before)
                    EXPECT_NE(marks.ranges[i].id, old.id) << each.what;
                marks.ranges[i].id = {};
            }
            EXPECT_EQ(marks.ranges[i], each.after[i]) << each.what << " " << i;
        }
        EXPECT_EQ(marks.originalFrameSpans, each.spansAfter) << each.what;
    }
}

TEST_F(FlowEditsTest, ARangeThatIsOffStaysOffWhileTheCurveMovesUnderIt) {
    open();
    model->replaceKeyframes(slowBetween(2, 3));
    ASSERT_EQ(model->flow().opticalFlowRanges().size(), 1U);
    const Uuid id = model->flow().opticalFlowRanges()[0].id;
    EXPECT_EQ(model->effectiveOpticalFlowRanges().size(), 1U);
    const std::size_t steps = model->history().undoStack().size();
    rebuilds();
    model->setOpticalFlow(false, id);
    EXPECT_EQ(rebuilds(), 1U);
    EXPECT_EQ(model->history().undoStack().size(), steps + 1);
    EXPECT_TRUE(model->effectiveOpticalFlowRanges().empty());
    model->setOpticalFlow(false, id); // as it is
    model->setOpticalFlow(true, Uuid::random());
    EXPECT_EQ(model->history().undoStack().size(), steps + 1);

    model->beginCurveEdit();
    for (double start = 2; start < 7; start += 0.5)
        model->replaceKeyframes(slowBetween(start, start + 1));
    model->endCurveEdit();
    ASSERT_EQ(model->flow().opticalFlowRanges().size(), 1U);
    EXPECT_NEAR(model->flow().opticalFlowRanges()[0].start, 6.5, 0.2);
    // From the marks at the gesture's start it has moved too far to be the same range.
    EXPECT_NE(model->flow().opticalFlowRanges()[0].id, id);
    model->undo();
    for (double start = 2; start < 7; start += 0.5)
        model->replaceKeyframes(slowBetween(start, start + 1));
    EXPECT_EQ(model->flow().opticalFlowRanges()[0].id, id);
    EXPECT_TRUE(model->effectiveOpticalFlowRanges().empty());
    model->setOpticalFlow(true, id);
    EXPECT_EQ(model->effectiveOpticalFlowRanges().size(), 1U);
    EXPECT_TRUE(model->flow().originalFrameSpans().empty());
    rebuilds();
    for (const std::size_t count : {1U, 0U}) { // not when it is as it was
        model->setFrameInterpolation(FrameInterpolation::nearest);
        EXPECT_EQ(rebuilds(), count);
    }
}

TEST_F(FlowEditsTest, RangesThatMeetDuringADragComeApartAgain) {
    open();
    SpeedKeyframes two = slowBetween(2, 3);
    two.pop_back();
    for (const SpeedKeyframe& keyframe : slowBetween(6, 7))
        if (keyframe.time > 1) two.push_back(keyframe);
    model->replaceKeyframes(two);
    const auto before = model->flow().opticalFlowRanges();
    ASSERT_EQ(before.size(), 2U);
    model->selectOpticalFlowRange(before[1].id);
    model->setLoopPreview(true);
    model->setOpticalFlow(false, before[0].id);
    model->beginCurveEdit();
    model->replaceKeyframes(slowBetween(2, 7));
    EXPECT_EQ(model->flow().opticalFlowRanges().size(), 1U);
    model->replaceKeyframes(two);
    model->endCurveEdit();
    EXPECT_EQ(model->flow().opticalFlowRanges(), before);
    ASSERT_EQ(model->flow().originalFrameSpans().size(), 1U);
    EXPECT_EQ(model->flow().originalFrameSpans()[0].lower, before[0].start);
}

TEST_F(FlowEditsTest, ALostSelectionEndsTheLoop) {
    open();
    model->setLoopPreview(true);
    EXPECT_FALSE(model->timeline().loopPreview()); // over what?
    model->replaceKeyframes(slowBetween(2, 3));
    const Uuid id = model->flow().opticalFlowRanges()[0].id;
    model->selectOpticalFlowRange(id);
    model->setLoopPreview(true);
    EXPECT_TRUE(model->timeline().loopPreview());
    EXPECT_EQ(model->projectSnapshot().edits.previewStart, model->flow().opticalFlowRanges()[0].start);
    model->applyTrimRange(5, 9);
    EXPECT_FALSE(model->flow().selectedOpticalFlowRangeID());
    EXPECT_FALSE(model->timeline().loopPreview());
    model->resetTrimRange();
    model->selectOpticalFlowRange(model->flow().opticalFlowRanges()[0].id);
    model->setLoopPreview(true);
    model->selectOpticalFlowRange(Uuid::random());
    EXPECT_FALSE(model->timeline().loopPreview());

    // What a drag has lost on the way comes back with the range, and with Esc.
    const Uuid another = model->flow().opticalFlowRanges()[0].id;
    const SpeedKeyframes slow = model->curve().keyframes();
    const SpeedKeyframes even{point(0, 1), point(10, 1)};
    const auto isLooping = [&] {
        return model->flow().selectedOpticalFlowRangeID() == another && model->timeline().loopPreview();
    };
    model->selectOpticalFlowRange(another);
    model->setLoopPreview(true);
    const std::size_t steps = model->history().undoStack().size();
    for (const bool isCancelled : {false, true}) {
        model->beginCurveEdit();
        model->replaceKeyframes(even);
        EXPECT_FALSE(model->flow().selectedOpticalFlowRangeID());
        if (isCancelled) {
            model->cancelCurveEdit();
        } else {
            model->replaceKeyframes(slow);
            model->endCurveEdit();
        }
        EXPECT_TRUE(isLooping()) << isCancelled;
        EXPECT_EQ(model->history().undoStack().size(), steps);
    }
    const TrimState untrimmed = model->trimState();
    model->applyTrimRange(5, 10);
    model->applyTrimRange(0, 10);
    model->restoreTrim(untrimmed);
    EXPECT_TRUE(isLooping());
    model->beginCurveEdit();
    model->replaceKeyframes(even);
    model->endCurveEdit();
    EXPECT_FALSE(model->timeline().loopPreview());
    model->undo();

    smoothMotion = 24; // a tenth is slow for that too
    model->smoothMotionFrameRateChanged();
    EXPECT_EQ(model->flow().opticalFlowRanges().size(), 1U);
    model->replaceKeyframes({point(0, 0.9), point(10, 0.9)}); // 27 frames a second
    EXPECT_TRUE(model->flow().opticalFlowRanges().empty());
    smoothMotion = 30;
    model->smoothMotionFrameRateChanged();
    EXPECT_EQ(model->flow().opticalFlowRanges().size(), 1U);
}

} // namespace
} // namespace flowtide::test
