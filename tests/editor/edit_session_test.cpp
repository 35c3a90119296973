// Gestures and history.
#include "tests/support/session_stage.h"

namespace flowtide::test {
namespace {

using EditSessionTest = SessionStage;

TEST_F(EditSessionTest, AGestureIsOneStepAndNoneWhenNothingChanged) {
    open();
    const CurveSnapshot first = model->currentSnapshot();
    model->startPlayback(1);
    model->beginCurveEdit();
    EXPECT_FALSE(model->transport().isPlaying());
    for (double speed = 2; speed < 3; speed += 0.1) {
        model->replaceKeyframes({point(0, 1), point(5, speed), point(10, 1)});
        model->beginCurveEdit(); // joins
    }
    EXPECT_EQ(model->history().undoStack().size(), 0U);
    EXPECT_EQ(rebuilds(), 1U);
    model->endCurveEdit();
    EXPECT_EQ(rebuilds(), 1U);
    ASSERT_EQ(model->history().undoStack().size(), 1U);
    EXPECT_EQ(model->history().undoStack()[0], first);

    const CurveSnapshot second = model->currentSnapshot();
    model->beginCurveEdit();
    model->replaceKeyframes({point(0, 1), point(5, 9), point(10, 1)});
    model->replaceKeyframes(second.speed);
    model->endCurveEdit();
    EXPECT_EQ(model->history().undoStack().size(), 1U);
    rebuilds();
    model->endCurveEdit(); // none is open
    EXPECT_EQ(rebuilds(), 0U);

    rest();
    model->startPlayback(1);
    model->undo();
    EXPECT_FALSE(model->transport().isPlaying());
    EXPECT_EQ(rebuilds(), 1U);
    EXPECT_EQ(model->currentSnapshot(), first);
    EXPECT_EQ(model->history().redoStack().size(), 1U);
    scheduler.settle();
    EXPECT_EQ(storedProject().edits.keyframes, first.speed);
    model->redo();
    EXPECT_EQ(model->currentSnapshot(), second);
    model->undo();
    model->setCurveSmoothing(1); // a new edit
    EXPECT_TRUE(model->history().redoStack().empty());
    model->redo();
    EXPECT_EQ(model->curve().smoothing(), 1);
}

TEST_F(EditSessionTest, ACancelledGestureNeverWas) {
    open();
    model->replaceKeyframes(slowBetween(2, 3));
    model->selectOpticalFlowRange(model->flow().opticalFlowRanges().front().id);
    model->undo();
    model->redo();
    model->addZoomBlock({1, 2});
    model->undo();
    const CurveSnapshot before = model->currentSnapshot();
    const auto steps = [&] {
        return std::pair(model->history().undoStack().size(), model->history().redoStack().size());
    };
    const auto stepsBefore = steps();
    model->cancelCurveEdit(); // none is open
    model->beginCurveEdit();
    model->replaceKeyframes({point(0, 1), point(10, 2)});
    model->addZoomBlock({4, 5});
    model->undo();
    model->redo();
    EXPECT_EQ(steps(), stepsBefore);
    model->cancelCurveEdit();
    model->endCurveEdit();
    EXPECT_EQ(model->currentSnapshot(), before);
    model->setLockCropCenter(false);
    model->beginCropDrag();
    model->updateCropDrag(0.9);
    model->cancelCropDrag();
    EXPECT_FALSE(model->framing().isCropDragActive());
    EXPECT_EQ(model->currentSnapshot(), before);
    EXPECT_EQ(steps(), stepsBefore);
    rest();
    EXPECT_EQ(storedProject().edits.keyframes, before.speed);

    model->setTimelineZoom(3);
    model->scrub(0.45);
    const TrimState untrimmed = model->trimState();
    model->applyTrimRange(2.5, 4);
    model->applyTrimRange(5, 6); // beyond the slow part and its range
    model->restoreTrim(untrimmed);
    EXPECT_EQ(model->currentSnapshot(), before);
    EXPECT_EQ(model->curve().trimRange().lower, 0);
    EXPECT_EQ(model->timeline().timelineZoom(), 3);
    EXPECT_NEAR(model->playheadSeconds(), 4.5, 1e-9);
    open("other.mov");
    model->applyTrimRange(1, 2);
    model->restoreTrim(untrimmed);
    EXPECT_EQ(model->curve().trimRange().lower, 1);
}

TEST_F(EditSessionTest, FramingAndZoomLeavePreviewsValid) {
    open();
    model->beginCurveEdit();
    model->addZoomBlock({1, 2});
    model->replaceCenterKeyframes({point(0, 0.2), point(10, 0.9)});
    model->endCurveEdit();
    EXPECT_EQ(rebuilds(), 0U);
    EXPECT_EQ(model->history().undoStack().size(), 1U);
}

TEST_F(EditSessionTest, ADocumentsZoomBlocksComeInOrder) {
    open();
    ProjectEdits edits = model->projectSnapshot().edits;
    for (const double start : {5.0, 1.0, 3.0}) {
        ZoomBlock& block = edits.zoomBlocks.emplace_back();
        block.id = Uuid::random();
        block.startTime = start;
        block.endTime = start + 1;
        block.focalKeyframes = {{.progress = 0.9}, {.progress = 0.1}};
    }
    edits.keyframes = {point(10, 2), point(0, 1)};
    model->applyProjectEdits(edits);
    EXPECT_EQ(model->curve().keyframes()[0].time, 0);
    const auto& blocks = model->zoom().zoomBlocks();
    ASSERT_EQ(blocks.size(), 3);
    for (std::size_t i = 0; i < blocks.size(); ++i)
        EXPECT_EQ(blocks[i].startTime, 1 + 2 * static_cast<double>(i));
    EXPECT_EQ(blocks[0].focalKeyframes[0].progress, 0.1);
}

TEST_F(EditSessionTest, HistoryKeepsTwoHundredEditsAndAllThatIsUndone) {
    open();
    std::vector<CurveSnapshot> states;
    for (int i = 0; i < 250; ++i) {
        states.push_back(model->currentSnapshot());
        model->setCurveSmoothing(i / 250.0 + 0.001);
    }
    const CurveSnapshot last = model->currentSnapshot();
    ASSERT_EQ(model->history().undoStack().size(), 200U);
    EXPECT_EQ(model->history().undoStack()[0], states[50]);
    for (int i = 0; i < 300; ++i)
        model->undo();
    EXPECT_EQ(model->currentSnapshot(), states[50]);
    EXPECT_EQ(model->history().redoStack().size(), 200U);
    for (int i = 0; i < 300; ++i)
        model->redo();
    EXPECT_EQ(model->currentSnapshot(), last);
}

TEST_F(EditSessionTest, AnotherClipBeginsAnew) {
    const auto edits = [&] {
        ProjectEdits all = model->projectSnapshot().edits;
        for (SpeedKeyframes* points : {&all.keyframes, &all.centerKeyframes})
            for (SpeedKeyframe& each : *points)
                each.id = {};
        return all;
    };
    ProjectEdits unopened = edits();
    open("one.mov");
    const ProjectEdits fresh = edits();
    unopened.keyframes = fresh.keyframes;
    unopened.centerKeyframes = fresh.centerKeyframes;
    unopened.trimEnd = fresh.trimEnd;
    EXPECT_TRUE(unopened == fresh) << "but for what has a duration";
    EXPECT_EQ(fresh.timelineZoom, 1);
    EXPECT_TRUE(fresh.lockCropCenter);
    EXPECT_EQ(fresh.timelineCenter, 0.5);
    model->replaceKeyframes(slowBetween(2, 5));
    model->setCurveSmoothing(0.1);
    model->applyTrimRange(1, 9);
    model->selectOpticalFlowRange(model->flow().opticalFlowRanges()[0].id);
    model->setOpticalFlow(false, model->flow().opticalFlowRanges()[0].id);
    model->setLoopPreview(true);
    model->setFrameInterpolation(FrameInterpolation::nearest);
    model->setVerticalCropEnabled(true);
    model->setCropAspectRatio(CropAspectRatio::fourByFive);
    model->setLockCropCenter(false);
    model->setCenterSmoothing(0.2);
    model->addZoomBlock({1, 2});
    model->setTimelineZoom(100);
    EXPECT_EQ(model->timeline().timelineZoom(), largestTimelineZoom);
    model->setTimelineCenter(2);
    EXPECT_EQ(model->timeline().timelineCenter(), 1);
    model->setInspection(21, {-1, 2});
    EXPECT_EQ(model->timeline().inspectionScale(), 20);
    EXPECT_EQ(model->timeline().inspectionCenter(), (PicturePoint{0, 1}));
    model->setPreviewResolution(PreviewResolution::full);
    model->setSmartPreviewEnabled(true);
    model->setEditorMode(CurveEditorMode::cropCenter);
    model->scrub(0.7);
    model->beginCropDrag();
    EXPECT_EQ(model->currentSnapshot().originalFrames.size(), 1U);
    const ProjectEdits edited = edits();
    open("two.mov");
    EXPECT_TRUE(edits() == fresh);
    EXPECT_TRUE(model->history().undoStack().empty());
    EXPECT_FALSE(model->history().pendingUndoSnapshot() || model->framing().isCropDragActive() ||
                 model->zoom().selectedZoomBlockID());
    EXPECT_EQ(model->timeline().editorMode(), CurveEditorMode::speed);
    EXPECT_EQ(model->timeline().inspectionScale(), 1);
    EXPECT_EQ(model->timeline().inspectionCenter(), PicturePoint{});
    model->startPlayback(1);
    open("one.mov"); // was stored as it was left
    EXPECT_FALSE(model->transport().isPlaying());
    EXPECT_TRUE(edits() == edited);
}

TEST_F(EditSessionTest, EveryEditIsStored) {
    open();
    model->replaceKeyframes(slowBetween(2, 5));
    model->addZoomBlock({1, 2});
    model->setLockCropCenter(false);
    const Uuid range = model->flow().opticalFlowRanges()[0].id;
    const Uuid block = model->zoom().zoomBlocks()[0].id;
    SubjectTrackResult track;
    track.samples = {{2, 0.5}, {2 + 1 / 30.0, 0.5}};
    const std::pair<const char*, std::function<void()>> edits[] = {
        {"curve", [&] { model->replaceKeyframes(slowBetween(2, 4)); }},
        {"smoothing", [&] { model->setCurveSmoothing(0.2); }},
        {"reset", [&] { model->resetCurve(); }},
        {"undo", [&] { model->undo(); }},
        {"redo", [&] { model->redo(); }},
        {"undo", [&] { model->undo(); }},
        {"trim", [&] { model->applyTrimRange(1, 9); }},
        {"framing",
         [&] {
             model->replaceCenterKeyframes({point(1, 0.2), point(9, 0.7)});
         }},
        {"framing reset", [&] { model->resetCenterCurve(); }},
        {"glide", [&] { model->setCenterSmoothing(0.2); }},
        {"crop", [&] { model->setVerticalCropEnabled(true); }},
        {"aspect", [&] { model->setCropAspectRatio(CropAspectRatio::fourByFive); }},
        {"lock", [&] { model->setLockCropCenter(true); }},
        {"track", [&] { model->applySubjectTrackingResult(track); }},
        {"zoom", [&] { model->moveZoomBlock(block, 6); }},
        {"off", [&] { model->setOpticalFlow(false, range); }},
        {"selection", [&] { model->selectOpticalFlowRange(range); }},
        {"loop", [&] { model->setLoopPreview(true); }},
        {"frames", [&] { model->setFrameInterpolation(FrameInterpolation::nearest); }},
        {"resolution", [&] { model->setPreviewResolution(PreviewResolution::full); }},
        {"idle", [&] { model->setSmartPreviewEnabled(true); }},
        {"zoomed", [&] { model->setTimelineZoom(2); }},
        {"panned", [&] { model->setTimelineCenter(0.2); }},
        {"playhead", [&] { model->scrub(0.4); }},
        {"step", [&] { model->nudgePlayhead(1); }},
        {"smooth motion",
         [&] {
             smoothMotion = 60;
             model->smoothMotionFrameRateChanged();
         }},
        {"document", [&] { model->applyProjectEdits(model->projectSnapshot().edits); }},
    };
    for (const auto& [what, edit] : edits) {
        rest();
        ASSERT_EQ(model->binding().projectSaveMessage(), "Saved");
        edit();
        EXPECT_EQ(model->binding().projectSaveMessage(), "Saving…") << what;
    }
    rest();
    model->setTimelineZoom(2); // as it is
    model->scrub(model->timeline().scrubPosition());
    EXPECT_EQ(model->binding().projectSaveMessage(), "Saved");
}

TEST_F(EditSessionTest, AnUndoneStateFitsTheTrimOfToday) {
    open();
    model->replaceKeyframes({point(0, 1), point(4, 2), point(10, 1)});
    model->setCurveSmoothing(0);
    model->addZoomBlock({1, 2});
    const Uuid block = *model->zoom().selectedZoomBlockID();
    model->applyTrimRange(2, 6);
    model->undo(); // the block
    EXPECT_FALSE(model->zoom().selectedZoomBlockID());
    EXPECT_FALSE(model->zoom().block(block));
    EXPECT_EQ(model->curve().trimRange(), (SourceRange{2, 6}));
    const auto& keyframes = model->curve().keyframes();
    ASSERT_EQ(keyframes.size(), 5U);
    EXPECT_EQ(keyframes[1].role, SpeedKeyframeRole::trimStart);
    EXPECT_NEAR(keyframes[1].speed, 1.5, 1e-12); // of the line from 1 to 2
    EXPECT_EQ(keyframes[3].role, SpeedKeyframeRole::trimEnd);
    EXPECT_NEAR(keyframes[3].speed, 2 - 2.0 / 6, 1e-12);
}

TEST_F(EditSessionTest, ViewsHearOnceATurnAndOnlyOfRealChanges) {
    open();
    std::vector<PropertySet> heard;
    auto subscription = model->subscribe(properties({Property::curveSmoothing, Property::zoomBlocks}),
                                         [&](const PropertySet& changed) { heard.push_back(changed); });
    model->setCurveSmoothing(0.5); // as it is
    model->setVerticalCropEnabled(true);
    scheduler.turn();
    EXPECT_TRUE(heard.empty());
    model->setCurveSmoothing(0.6);
    model->setCurveSmoothing(0.7);
    model->addZoomBlock({1, 2});
    EXPECT_TRUE(heard.empty());
    scheduler.turn();
    ASSERT_EQ(heard.size(), 1U);
    EXPECT_EQ(heard[0], properties({Property::curveSmoothing, Property::zoomBlocks}));
    subscription = {};
    model->setCurveSmoothing(0.8);
    scheduler.turn();
    EXPECT_EQ(heard.size(), 1U);

    // A handler may end its own subscription and take another.
    subscription = model->subscribe(properties({Property::curveSmoothing}), [&](const PropertySet&) {
        subscription = model->subscribe(properties({Property::curveSmoothing}),
                                        [&](const PropertySet& changed) { heard.push_back(changed); });
    });
    model->setCurveSmoothing(0.1);
    scheduler.turn();
    model->setCurveSmoothing(0.2);
    scheduler.turn();
    EXPECT_EQ(heard.size(), 2U);
}

TEST_F(EditSessionTest, WithoutAClipNothingHappens) {
    const CurveSnapshot nothing = model->currentSnapshot();
    model->beginCurveEdit();
    EXPECT_FALSE(model->history().pendingUndoSnapshot());
    model->replaceKeyframes({point(1, 2)});
    model->resetCurve();
    model->setCurveSmoothing(0.9);
    model->applyTrimRange(1, 2);
    model->replaceCenterKeyframes({point(1, 0.2)});
    model->resetCenterCurve();
    model->beginCropDrag();
    model->updateCropDrag(0.4);
    model->endCropDrag();
    model->addZoomBlock({1, 2});
    model->addOrSelectZoomBlock();
    model->setFrameInterpolation(FrameInterpolation::nearest);
    model->scrub(0.5);
    model->startTracking({0, 0, 1, 1});
    model->exportClip(folder / "out.mov");
    model->makeProxy();
    model->setComparisonEnabled(true);
    model->endCurveEdit();
    model->undo();
    model->redo();
    model->saveProjectNow();
    rest();
    EXPECT_EQ(model->currentSnapshot(), nothing);
    EXPECT_EQ(model->flow().frameInterpolation(), FrameInterpolation::opticalFlow);
    EXPECT_FALSE(model->exporting().isExporting() || model->tracking().isTracking() ||
                 model->proxies().isGeneratingProxy() || model->comparison().comparisonEnabled());
    EXPECT_FALSE(std::filesystem::exists(folder / "state"));
}

} // namespace
} // namespace flowtide::test
