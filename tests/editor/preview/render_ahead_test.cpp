// When renders begin, how they end, and what comes too late.
#include "media/export/export_plan.h"
#include "tests/editor/preview/render_ahead_stage.h"

namespace flowtide::test {
namespace {

using RenderAheadTest = RenderAheadStage;

TEST_F(RenderAheadTest, ARenderHasTheFramesOfTheExport) {
    edits.replaceKeyframes({{Uuid::random(), 0, 0.9}, {Uuid::random(), 4, 0.23}, {Uuid::random(), 10, 0.7}});
    ZoomEdits(session).addZoomBlock({2, 7}); // reaches beyond the range on both sides
    TrimEdits(session).applyTrimRange(1, 9);
    session.framing.setVerticalCropEnabled(true);
    render({3.3, 5.1});
    const auto plan = [](const ExportRequest& request) { return planExport(request, [](std::string_view) {}); };
    ExportRequest request = media->rendered.at(0);
    EXPECT_EQ(request.previewResolution, PreviewResolution::quick);
    const ExportPlan part = plan(request);
    EXPECT_FALSE(part.framing.crop);
    const RenderedPreview& preview = ahead.previews().renderedPreviews().at(0);
    EXPECT_EQ(preview.timeMap.sourceRange(), (SourceRange{3.3, 5.1}));
    EXPECT_NEAR(preview.fileStart, part.timeMap.outputTime({3.3}).value, 1e-9);
    EXPECT_EQ(shown, 1);

    request.sourceRange = {1, 9};
    request.previewTimeMap.reset();
    request.previewOf.reset();
    const ExportPlan whole = plan(request);
    const auto first = static_cast<std::size_t>(whole.timeMap.outputTime({3.3}).value * 30);
    ASSERT_GT(part.framing.zooms.size(), 100U);
    for (std::size_t i = 0; i < part.framing.zooms.size(); ++i)
        ASSERT_EQ(part.framing.zooms[i], whole.framing.zooms.at(first + i));
}

TEST_F(RenderAheadTest, AnIdleRenderBeginsASecondAfterTheLastActivity) {
    session.timeline.setSmartPreviewEnabled(true);
    movePlayheadTo(5);
    ahead.scheduleSmartPreview();
    scheduler.advance(0.9);
    ahead.scheduleSmartPreview();
    scheduler.advance(0.9);
    EXPECT_FALSE(ahead.render().isRendering());
    scheduler.advance(0.1);
    EXPECT_TRUE(ahead.render().isAutomaticPreviewRender());
    EXPECT_EQ(ahead.render().renderingPreviewRange(), ahead.automaticPreviewRange());
    EXPECT_EQ(pauses, 0);
    EXPECT_EQ(ahead.playheadLabel(), "Preview rendering");
    scheduler.settle();
    EXPECT_EQ(ahead.playheadLabel(), "Preview rendered");
    expectRanges(renderedRanges(), {{3.75, 6.25}});
    movePlayheadTo(6); // re-armed by the end of the render before
    scheduler.advance(1);
    EXPECT_TRUE(ahead.render().isAutomaticPreviewRender());
    EXPECT_NEAR(ahead.render().renderingPreviewRange()->lower, 6.25, 1e-6);
    session.beginCurveEdit(); // ends it
    EXPECT_FALSE(ahead.render().isRendering());
    session.endCurveEdit();
    scheduler.settle();
    EXPECT_EQ(renderedRanges().size(), 1U);
    ahead.renderSelectedPreview(false, SourceRange{7, 8});
    session.beginCurveEdit(); // and leaves what was asked for
    EXPECT_TRUE(ahead.render().isRendering());
    session.endCurveEdit();
    scheduler.settle();
    EXPECT_EQ(renderedRanges().size(), 2U);
}

TEST_F(RenderAheadTest, AnIdleRenderHasConditions) {
    movePlayheadTo(5);
    const auto nothing = [] {};
    const auto begins = [&](const std::function<void()>& change, const std::function<void()>& undo) {
        session.timeline.setSmartPreviewEnabled(true);
        ahead.scheduleSmartPreview();
        change();
        scheduler.advance(1);
        const bool isAutomatic = ahead.render().isAutomaticPreviewRender();
        ahead.cancelPreviewRender();
        undo();
        scheduler.settle();
        return isAutomatic;
    };
    EXPECT_TRUE(begins(nothing, nothing));
    EXPECT_FALSE(begins([&] { isBusy = true; }, [&] { isBusy = false; }));
    EXPECT_FALSE(begins([&] { session.timeline.setSmartPreviewEnabled(false); }, nothing));
    EXPECT_FALSE(begins([&] { ahead.renderSelectedPreview(false, SourceRange{1, 2}); }, nothing));
    EXPECT_FALSE(begins([&] { session.flow.setFrameInterpolation(FrameInterpolation::nearest); },
                        [&] { session.flow.setFrameInterpolation(FrameInterpolation::opticalFlow); }));
    EXPECT_FALSE(begins([&] { movePlayheadTo(10); }, [&] { movePlayheadTo(5); })); // in no range
    const auto openGesture = [&] { session.history.setPendingUndoSnapshot(session.currentSnapshot()); };
    const auto closeGesture = [&] { session.history.setPendingUndoSnapshot({}); };
    EXPECT_TRUE(begins(openGesture, closeGesture)); // nothing has moved yet
    EXPECT_FALSE(begins(
        [&] {
            openGesture();
            ZoomEdits(session).addZoomBlock({1, 2});
        },
        closeGesture));
    EXPECT_FALSE(begins([&] { ahead.cancelAutomaticRender(); }, nothing));
    EXPECT_FALSE(begins([&] { session.open({}); }, [&] { openClip(); }));
    EXPECT_TRUE(renderedRanges().empty());
}

using RenderAheadSessionTest = SessionStage;

TEST_F(RenderAheadSessionTest, EveryEndOfActivityLetsAnIdleRenderBegin) {
    open();
    model->replaceKeyframes({point(0, 0.5), point(10, 0.5)});
    model->scrub(0.5);
    model->setSmartPreviewEnabled(true);
    rest();
    const auto nothing = [] {};
    const std::tuple<const char*, std::function<void()>, std::function<void()>> activities[] = {
        {"gesture", [&] { model->beginCurveEdit(); }, [&] { model->endCurveEdit(); }},
        {"zoom",
         [&] {
             model->beginCurveEdit();
             model->addZoomBlock({1, 2});
         },
         [&] { model->endCurveEdit(); }},
        {"export", [&] { model->exportClip(folder / "out.mov"); }, nothing},
        {"selection", [&] { model->beginSubjectSelection(); }, [&] { model->cancelTracking(); }},
        {"undo", [&] { model->beginCurveEdit(); }, [&] { model->undo(); }},
        {"project", [&] { model->reset(); }, [&] { open(); }},
    };
    for (const auto& [what, begin, end] : activities) {
        model->clearPreviewCache();
        begin();
        scheduler.advance(2);
        scheduler.settle();
        EXPECT_TRUE(model->renders().previews().renderedPreviews().empty()) << what;
        end();
        rest();
        EXPECT_EQ(model->renders().previews().renderedPreviews().size(), 1U) << what;
    }
}

TEST_F(RenderAheadTest, AllRangesAreRenderedInPieces) {
    TrimEdits(session).applyTrimRange(2, 8); // 12 s of output
    EXPECT_EQ(ahead.renderAllLabel(), "Render all ranges");
    EXPECT_EQ(ahead.playheadLabel(), "Preview not rendered");
    movePlayheadTo(1); // out of the trim
    EXPECT_EQ(ahead.playheadLabel(), "No rendered previews");
    pauses = 0;
    ahead.renderAllRanges();
    EXPECT_GT(pauses, 0);
    std::vector<std::string> labels;
    while (ahead.isRenderingAllRanges()) {
        labels.push_back(ahead.renderAllLabel());
        scheduler.runJob(BackgroundQueue::renders);
        scheduler.turn();
    }
    EXPECT_EQ(labels.front(), "Rendering all ranges 0%");
    EXPECT_NE(std::find(labels.begin(), labels.end(), "Rendering all ranges 41%"), labels.end()); // 5 of 12
    EXPECT_EQ(ahead.renderAllLabel(), "All ranges rendered");
    expectRanges(renderedRanges(), {{2, 4.5}, {4.5, 7}, {7, 8}});
    EXPECT_EQ(shown, 3);
    EXPECT_EQ(ahead.playheadLabel(), std::nullopt);

    ahead.clearPreviewCache();
    EXPECT_EQ(shown, 4);
    media->rendered.clear();
    media->failure = "Disk full";
    ahead.renderAllRanges();
    scheduler.settle();
    EXPECT_EQ(media->rendered.size(), 1U); // it would fail again
    EXPECT_FALSE(ahead.isRenderingAllRanges());
    EXPECT_NE(ahead.render().previewRenderError()->find("Disk full"), std::string::npos);
    media->failure.reset();
    ahead.renderAllRanges();
    EXPECT_FALSE(ahead.render().previewRenderError());
    ahead.stopRenderingAll();
    EXPECT_FALSE(ahead.render().isRendering());
    scheduler.settle();
    EXPECT_TRUE(renderedRanges().empty());
}

TEST_F(RenderAheadTest, RenderingAllGoesOnAfterAnEdit) {
    ahead.renderAllRanges();
    session.beginCurveEdit();
    for (const double speed : {0.6, 0.7, 0.8})
        playAt(speed);
    scheduler.settle();
    EXPECT_EQ(media->rendered.size(), 1U); // each of these would have been in vain
    session.endCurveEdit();
    scheduler.settle();
    EXPECT_EQ(ahead.renderAllLabel(), "All ranges rendered");
    EXPECT_EQ(renderedRanges().size(), 3U); // 12.5 s
    // Where the pieces are the same as before, too.
    TrimEdits(session).applyTrimRange(2, 4);
    ahead.clearPreviewCache();
    ahead.renderAllRanges();
    playAt(0.7);
    scheduler.settle();
    EXPECT_EQ(renderedRanges(), (SourceRanges{{2, 4}}));
}

TEST_F(RenderAheadTest, AnEditInsideDuringARenderDiscardsIt) {
    edits.replaceKeyframes({{Uuid::random(), 0, 0.5}, {Uuid::random(), 5, 0.5}, {Uuid::random(), 10, 0.5}});
    const auto moved = [&](std::size_t i) {
        SpeedKeyframes list = session.curve.keyframes();
        list[i].speed -= 0.01;
        edits.replaceKeyframes(list);
    };
    const auto isKept = [&](const std::function<void()>& edit) {
        ahead.renderSelectedPreview(false, SourceRange{1, 4});
        scheduler.runJob(BackgroundQueue::renders); // done, and not home yet
        edit();
        scheduler.settle();
        EXPECT_EQ(media->previewFiles.size(), renderedRanges().size());
        EXPECT_FALSE(ahead.render().previewRenderError());
        EXPECT_FALSE(ahead.render().isRendering());
        const bool isInstalled = !renderedRanges().empty();
        ahead.clearPreviewCache();
        ahead.playerInstalled(ahead.previews().previewCacheRevision());
        return isInstalled;
    };
    EXPECT_TRUE(isKept([&] { moved(2); }));
    EXPECT_FALSE(isKept([&] { moved(1); }));
    EXPECT_FALSE(isKept([&] { flow.setOpticalFlow(false, session.flow.opticalFlowRanges()[0].id); }));
    EXPECT_FALSE(isKept([&] { ahead.cancelPreviewRender(); })) << "switched off: it has not even begun";
    flow.setOpticalFlow(true, session.flow.opticalFlowRanges()[0].id);
    EXPECT_FALSE(isKept([&] { ahead.cancelPreviewRender(); }));
    EXPECT_FALSE(isKept([&] { TrimEdits(session).applyTrimRange(2, 10); }));
    TrimEdits(session).resetTrimRange();
    EXPECT_FALSE(isKept([&] { openClip(); }));
}

TEST_F(RenderAheadTest, OfRendersOneAtATimeAndFailuresWithTheirSentence) {
    session.timeline.setSmartPreviewEnabled(true);
    movePlayheadTo(5);
    ahead.renderSelectedPreview(); // nothing is selected
    EXPECT_FALSE(ahead.render().renderingPreviewRange());
    flow.selectRange(session.flow.opticalFlowRanges()[0].id);
    ahead.renderSelectedPreview();
    EXPECT_EQ(ahead.render().renderingPreviewRange(), (SourceRange{0, 10}));
    ahead.renderSelectedPreview(false, SourceRange{1, 2});
    scheduler.runJob(BackgroundQueue::renders);
    scheduler.turn();
    EXPECT_EQ(ahead.render().previewRenderProgress(), 0.5);
    scheduler.settle();
    EXPECT_EQ(renderedRanges(), (SourceRanges{{0, 10}}));

    media->failure = "Disk full";
    render({1, 2});
    EXPECT_NE(ahead.render().previewRenderError()->find("Disk full"), std::string::npos);
    EXPECT_EQ(renderedRanges(), (SourceRanges{{0, 10}}));
    ahead.clearPreviewCache();
    scheduler.advance(1);
    scheduler.settle();
    media->rendered.clear();
    scheduler.advance(30); // by itself it does not try again
    EXPECT_FALSE(ahead.render().isRendering());
    ahead.scheduleSmartPreview();
    scheduler.advance(1);
    EXPECT_TRUE(ahead.render().isRendering());
    ahead.cancelPreviewRender(); // a cancelled one says nothing
    scheduler.settle();
    EXPECT_FALSE(ahead.render().previewRenderError());
}

} // namespace
} // namespace flowtide::test
