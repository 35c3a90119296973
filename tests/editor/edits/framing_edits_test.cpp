// Edits of framing and zoom.
#include "tests/support/session_stage.h"

namespace flowtide::test {
namespace {

using FramingEditsTest = SessionStage;

TEST_F(FramingEditsTest, ACropDragKeysThePlayhead) {
    open();
    model->beginCropDrag();
    model->updateCropDrag(0.9);
    EXPECT_EQ(model->history().undoStack().size(), 0U); // locked
    EXPECT_EQ(model->framing().liveCropTravel(0), 0.5);
    model->setLockCropCenter(false);
    model->scrub(0.4);
    model->beginCropDrag();
    EXPECT_TRUE(model->framing().isCropDragActive());
    model->updateCropDrag(0.7);
    model->updateCropDrag(1.9);
    model->endCropDrag();
    EXPECT_EQ(model->history().undoStack().size(), 1U);
    ASSERT_EQ(model->framing().centerKeyframes().size(), 3U);
    EXPECT_EQ(model->framing().centerKeyframes()[1].time, 4);
    EXPECT_EQ(model->framing().centerKeyframes()[1].speed, 1);
    for (const auto& [time, count] : {std::pair{4.009, 3U}, {4.02, 4U}, {0.01, 4U}}) {
        model->scrub(time / 10);
        model->beginCropDrag();
        model->updateCropDrag(0.25);
        model->endCropDrag();
        EXPECT_EQ(model->framing().centerKeyframes().size(), count) << time;
    }
    EXPECT_EQ(model->framing().centerKeyframes()[0].time, 0);
    EXPECT_EQ(model->framing().centerKeyframes()[0].speed, 0.25);
    model->resetCenterCurve();
    EXPECT_EQ(model->framing().centerKeyframes().size(), 2U);
    EXPECT_EQ(model->framing().liveCropTravel(4), 0.5);

    // A trim that begins at a point puts its own above it.
    model->replaceCenterKeyframes({point(0, 0), point(4, 0.4), point(10, 1)});
    model->applyTrimRange(4, 9);
    model->scrub(0.4);
    model->beginCropDrag();
    model->updateCropDrag(0.8);
    model->endCropDrag();
    EXPECT_EQ(model->framing().liveCropTravel(4), 0.8);
}

TEST_F(FramingEditsTest, TheGlideIsTheExportsOwn) {
    open();
    model->replaceKeyframes({point(0, 0.5), point(10, 2)});
    model->replaceCenterKeyframes({point(0, 0), point(4, 1), point(6, 0.2), point(10, 0.9)});
    for (const double glide : {0.0, 0.6}) {
        model->setCenterSmoothing(glide);
        const auto table = glideTable(model->framing().centerKeyframes(), glide, model->curve().timeMap(), 1.0 / 30);
        for (std::size_t frame = 0; frame < table.size(); frame += 17) {
            const SourceSeconds time =
                model->curve().timeMap().sourceTime(OutputSeconds{static_cast<double>(frame) / 30});
            EXPECT_NEAR(model->framing().glidedCropTravel(time.value), table[frame], 1e-6) << frame;
        }
    }
    EXPECT_NE(model->framing().glidedCropTravel(4), model->framing().liveCropTravel(4));
}

TEST_F(FramingEditsTest, WhatLiesOutsideTheTrimDoesNotDrawTheGlide) {
    open();
    model->replaceCenterKeyframes({point(0, 0.5), point(1, 0.1), point(6, 0.9), point(10, 0.2)});
    model->setVerticalCropEnabled(true);
    model->applyTrimRange(5, 9);
    EXPECT_NEAR(model->framing().glidedCropTravel(5), model->framing().liveCropTravel(5), 0.03);
    const auto exported = model->framing().exportSettings();
    for (const SpeedKeyframe& each : exported->centerKeyframes)
        EXPECT_TRUE(5 <= each.time && each.time <= 9) << each.time;
}

TEST_F(FramingEditsTest, TheOutermostPointsGoOnToTheClipsEnds) {
    open();
    model->replaceKeyframes({point(0, 0.25), point(10, 0.25)}); // each frame plays four times
    model->replaceCenterKeyframes({point(1 / 30.0, 0.2), point(5, 0.4), point(10 - 1 / 30.0, 1)});
    model->setVerticalCropEnabled(true);
    for (const auto& [time, value] : {std::pair{0.0, 0.2}, {10.0, 1.0}}) {
        EXPECT_NEAR(model->framing().liveCropTravel(time), value, 1e-9);
        EXPECT_NEAR(model->framing().glidedCropTravel(time), value, 0.01);
    }
    const auto exported = model->framing().exportSettings();
    EXPECT_EQ(exported->centerKeyframes, model->framing().centerKeyframes());
    model->replaceCenterKeyframes({point(5, 0.4)}); // a single one holds throughout
    EXPECT_EQ(model->framing().liveCropTravel(10), 0.4);
}

TEST_F(FramingEditsTest, ATrackReplacesTheFramingOfItsSpan) {
    open();
    model->replaceCenterKeyframes({point(0, 0.1), point(3.998, 0.9), point(3.9995, 0.9), point(5, 0.9),
                                   point(7 + 1 / 30.0 + 0.0005, 0.3), point(7 + 1 / 30.0 + 0.002, 0.3),
                                   point(10, 0.3)});
    SubjectTrackResult result;
    for (int frame = 120; frame <= 210; ++frame) // 4 s to 7 s, from left to right
        result.samples.push_back({frame / 30.0, 0.2 + 0.6 * (frame - 120) / 90});
    const SpeedKeyframes tracked = result.keyframes(606.0 / 1920); // an even number of pixels, as exported
    ASSERT_GE(tracked.size(), 2U);
    model->applySubjectTrackingResult(result);
    EXPECT_EQ(rebuilds(), 0U); // rendered previews stay
    EXPECT_EQ(model->history().undoStack().size(), 2U);
    ASSERT_EQ(model->framing().centerKeyframes().size(), 4 + tracked.size());
    EXPECT_EQ(model->framing().centerKeyframes()[2].time, tracked[0].time);
    EXPECT_EQ(model->framing().centerKeyframes()[2].speed, tracked[0].speed);
    ASSERT_EQ(model->trackedRanges().size(), 1U);
    EXPECT_DOUBLE_EQ(model->trackedRanges()[0].start, 4);

    for (auto& sample : result.samples)
        sample.time += 2; // overlaps
    model->applySubjectTrackingResult(result);
    ASSERT_EQ(model->trackedRanges().size(), 1U);
    EXPECT_DOUBLE_EQ(model->trackedRanges()[0].end, 9 + 1.0 / 30); // the last frame included
    model->undo();
    model->undo();
    EXPECT_TRUE(model->trackedRanges().empty());
    EXPECT_EQ(model->framing().centerKeyframes().size(), 7U);
    model->applySubjectTrackingResult({});
    EXPECT_EQ(model->history().redoStack().size(), 2U);

    SpeedKeyframes many;
    for (std::size_t i = 0; i < mostKeyframes; ++i)
        many.push_back(point(static_cast<double>(i) * 1e-4, 0.5));
    model->replaceCenterKeyframes(many);
    model->applySubjectTrackingResult(result);
    EXPECT_EQ(model->framing().centerKeyframes().size(), mostKeyframes);
    EXPECT_TRUE(model->trackedRanges().empty()); // nothing is tracked where no point has room
}

TEST_F(FramingEditsTest, ZoomBlocks) {
    open();
    model->addZoomBlock({0, 0.2});
    EXPECT_TRUE(model->zoom().zoomBlocks().empty());
    EXPECT_EQ(model->history().undoStack().size(), 0U);
    model->addZoomBlock({0, 0.25});
    ASSERT_EQ(model->zoom().zoomBlocks().size(), 1U);
    const ZoomBlock first = model->zoom().zoomBlocks()[0];
    EXPECT_EQ(first.amount, 1.2);
    EXPECT_EQ(first.rampDuration, 0.6);
    EXPECT_EQ(model->zoom().selectedZoomBlockID(), first.id);
    model->addZoomBlock({0.1, 3});
    ASSERT_EQ(model->zoom().zoomBlocks().size(), 2U);
    const Uuid second = model->zoom().zoomBlocks()[1].id;
    EXPECT_EQ(model->zoom().zoomBlocks()[1].startTime, 0.25);

    model->scrub(0.02);
    EXPECT_TRUE(model->canAddOrSelectZoomBlock());
    model->addOrSelectZoomBlock();
    EXPECT_EQ(model->zoom().selectedZoomBlockID(), first.id);
    model->scrub(0.98);
    model->addOrSelectZoomBlock();
    EXPECT_EQ(model->zoom().zoomBlocks().size(), 2U); // 0.2 s are too few
    EXPECT_FALSE(model->canAddOrSelectZoomBlock());
    EXPECT_EQ(model->history().undoStack().size(), 2U);

    model->moveZoomBlock(second, 5);
    model->moveZoomBlock(second, 5); // as it is
    EXPECT_EQ(model->zoom().block(second)->startTime, 5);
    EXPECT_DOUBLE_EQ(model->zoom().block(second)->endTime, 7.75);
    EXPECT_EQ(model->history().undoStack().size(), 3U);
    ZoomBlock changed = *model->zoom().block(second);
    ZoomBlock wanted = changed;
    changed.amount = 9;
    changed.rampDuration = -1;
    changed.focalX = -1;
    changed.focalY = 2;
    changed.focalKeyframes = {{2, 0.1, 1.1}, {0.5, -1, 0.2}};
    wanted.amount = highestZoomAmount;
    wanted.rampDuration = 0;
    wanted.focalX = 0;
    wanted.focalY = 1;
    wanted.focalKeyframes = {{0.5, 0, 0.2}, {1, 0.1, 1}};
    model->updateZoomBlock(changed);
    EXPECT_EQ(*model->zoom().block(second), wanted);
    changed.startTime = std::nan("");
    model->updateZoomBlock(changed);
    model->moveZoomBlock(second, std::nan(""));
    model->addZoomBlock({std::nan(""), 9});
    EXPECT_EQ(*model->zoom().block(second), wanted);
    changed = wanted;
    changed.amount = 0.1;
    changed.rampDuration = 4;
    changed.focalKeyframes.clear();
    model->updateZoomBlock(changed);
    EXPECT_EQ(model->zoom().block(second)->amount, lowestZoomAmount);
    EXPECT_EQ(model->zoom().block(second)->rampDuration, longestZoomRamp);

    model->updateZoomFocal(second, 0.3, 1.4, false);
    EXPECT_EQ(model->zoom().block(second)->focalX, 0.3);
    EXPECT_EQ(model->zoom().block(second)->focalY, 1);
    for (const double progress : {0.5, 0.52, 0.56}) {
        model->scrub((5 + 2.75 * progress) / 10);
        model->updateZoomFocal(second, progress, 0.1, true);
    }
    const auto& focal = model->zoom().block(second)->focalKeyframes;
    ASSERT_EQ(focal.size(), 2U);
    EXPECT_NEAR(focal[0].progress, 0.5, 1e-9);
    EXPECT_EQ(focal[0].x, 0.52);
    model->removeFocalKeyframes(second);
    EXPECT_TRUE(model->zoom().block(second)->focalKeyframes.empty());

    model->selectZoomBlock(second);
    model->removeZoomBlock(second);
    model->removeZoomBlock(second);
    EXPECT_FALSE(model->zoom().selectedZoomBlockID());
    EXPECT_EQ(model->history().undoStack().size(), 11U);
    model->exportClip(folder / "out.mov");
    scheduler.settle();
    ASSERT_TRUE(media->exported && media->exported->zoom);
    EXPECT_EQ(media->exported->zoom->blocks, model->zoom().zoomBlocks());
}

} // namespace
} // namespace flowtide::test
