// When renders begin, how they end, and what comes too late.
#include "media/export/export_plan.h"
#include "tests/editor/preview/render_ahead_stage.h"

#include <functional>

namespace flowtide::test {
namespace {

using RenderAheadTest = RenderAheadStage;

TEST_F(RenderAheadTest, ARenderHasTheFramesOfTheExport) {
    model->replaceKeyframes({point(0, 0.9), point(4, 0.23), point(10, 0.7)});
    model->addZoomBlock({2, 7}); // reaches beyond the range on both sides
    model->applyTrimRange(1, 9);
    model->setVerticalCropEnabled(true);
    render({3.3, 5.1});
    const auto plan = [](const ExportRequest& request) { return planExport(request, [](std::string_view) {}); };
    ExportRequest request = media->rendered.at(0);
    EXPECT_EQ(request.previewResolution, PreviewResolution::quick);
    const ExportPlan part = plan(request);
    EXPECT_FALSE(part.framing.crop);
    const RenderedPreview& preview = ahead().previews().renderedPreviews().at(0);
    EXPECT_EQ(preview.timeMap.sourceRange(), (SourceRange{3.3, 5.1}));
    EXPECT_NEAR(preview.fileStart, part.timeMap.outputTime({3.3}).value, 1e-9);

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
    model->setSmartPreviewEnabled(true);
    scheduler.advance(0.9);
    model->scrub(0.5);
    scheduler.advance(0.9);
    EXPECT_FALSE(isRendering());
    scheduler.advance(0.2);
    EXPECT_TRUE(ahead().render().isAutomaticPreviewRender());
    EXPECT_EQ(ahead().playheadLabel(), "Preview rendering");
    scheduler.settle();
    EXPECT_EQ(ahead().playheadLabel(), "Preview rendered");
    expectRanges(rendered(), {{3.75, 6.25}});
    model->scrub(0.6);
    rest();
    expectRanges(rendered(), {{3.75, 6.25}, {6.25, 7.25}});
    model->scrub(0.9);
    scheduler.advance(1.1);
    EXPECT_TRUE(isRendering());
    model->beginSubjectSelection(); // ends it
    EXPECT_FALSE(isRendering());
    model->cancelTracking();
    scheduler.advance(1.1);
    EXPECT_TRUE(isRendering());
    model->beginCurveEdit(); // likewise
    EXPECT_FALSE(isRendering());
    model->scrub(0.9);
    scheduler.advance(1.1);
    EXPECT_TRUE(isRendering()); // nothing has moved yet
    model->endCurveEdit();
    model->cancelPreviewRender();
    model->renderSelectedPreview(SourceRange{8, 9});
    model->beginCurveEdit(); // and leaves what was asked for
    EXPECT_TRUE(isRendering());
}

TEST_F(RenderAheadTest, AnIdleRenderWaitsForTheEndOfAllActivity) {
    model->scrub(0.5);
    model->setSmartPreviewEnabled(true);
    rest();
    const std::tuple<const char*, std::function<void()>, std::function<void()>> activities[] = {
        {"gesture", [&] { model->beginCurveEdit(); }, [&] { model->endCurveEdit(); }},
        {"undo",
         [&] {
             model->beginCurveEdit();
             model->addZoomBlock({1, 2});
             model->endCurveEdit();
             model->beginCurveEdit();
         },
         [&] {
             model->endCurveEdit();
             model->undo();
         }},
        {"moving gesture",
         [&] {
             model->beginCurveEdit();
             model->addZoomBlock({1, 2});
             model->setCurveSmoothing(0.3); // schedules by itself
         },
         [&] { model->endCurveEdit(); }},
        {"play", [&] { model->startPlayback(0.1F); },
         [&] {
             model->pausePlayback();
             model->scrub(0.5);
         }},
        {"pause", [&] { model->startPlayback(0.1F); }, [&] { model->pausePlayback(); }},
        {"play to an end", [&] { model->startPlayback(-8); }, [] {}},
        {"export", [&] { model->exportClip(folder / "out.mov"); }, [] {}},
        {"selection", [&] { model->beginSubjectSelection(); }, [&] { model->cancelTracking(); }},
        {"tracking",
         [&] {
             model->startTracking({0.1, 0.1, 0.2, 0.2});
         },
         [] {}},
        {"off", [&] { model->setSmartPreviewEnabled(false); }, [&] { model->setSmartPreviewEnabled(true); }},
        {"original frames", [&] { model->setFrameInterpolation(FrameInterpolation::nearest); },
         [&] { model->setFrameInterpolation(FrameInterpolation::opticalFlow); }},
        {"nowhere", [&] { model->scrub(1); }, [&] { model->scrub(0.5); }},
        {"project", [&] { model->reset(); }, [&] { open(); }},
    };
    for (const auto& [what, begin, end] : activities) {
        model->clearPreviewCache();
        begin();
        scheduler.advance(2);
        scheduler.settle();
        EXPECT_TRUE(rendered().empty()) << what;
        end();
        rest();
        EXPECT_EQ(rendered().size(), 1U) << what;
    }
}

TEST_F(RenderAheadTest, AllRangesAreRenderedInPieces) {
    model->applyTrimRange(2, 8); // 12 s of output
    EXPECT_EQ(ahead().renderAllLabel(), "Render all ranges");
    EXPECT_EQ(ahead().playheadLabel(), "Preview not rendered");
    model->startPlayback(1);
    model->renderAllRanges();
    EXPECT_FALSE(model->transport().isPlaying());
    std::vector<std::string> labels;
    while (ahead().isRenderingAllRanges()) {
        const std::string label = ahead().renderAllLabel();
        if (labels.empty() || labels.back() != label) labels.push_back(label);
        scheduler.runJob(BackgroundQueue::renders);
        scheduler.turn();
    }
    EXPECT_EQ(labels, (std::vector<std::string>{"Rendering all ranges 0%", "Rendering all ranges 41%", // 5 of 12
                                                "Rendering all ranges 83%", "Rendering all ranges 100%"}));
    EXPECT_EQ(ahead().renderAllLabel(), "All ranges rendered");
    expectRanges(rendered(), {{2, 4.5}, {4.5, 7}, {7, 8}});

    model->clearPreviewCache();
    media->rendered.clear();
    media->failure = "Disk full";
    model->renderAllRanges();
    scheduler.settle();
    EXPECT_EQ(media->rendered.size(), 1U); // it would fail again
    EXPECT_FALSE(ahead().isRenderingAllRanges());
    EXPECT_NE(ahead().render().previewRenderError()->find("Disk full"), std::string::npos);
    model->renderAllRanges();
    model->stopRenderingAll();
    EXPECT_FALSE(isRendering());
    EXPECT_EQ(ahead().renderAllProgress(), 0);
    media->failure.reset();
    model->renderAllRanges();
    while (rendered().empty()) {
        scheduler.runJob(BackgroundQueue::renders);
        scheduler.turn();
    }
    scheduler.turn();
    EXPECT_TRUE(isRendering()) << "the second piece";
    model->clearPreviewCache();
    scheduler.settle();
    EXPECT_FALSE(ahead().isRenderingAllRanges());
    EXPECT_TRUE(rendered().empty());
    // A render that was asked for by itself goes on.
    model->renderSelectedPreview(SourceRange{2, 3});
    model->renderAllRanges();
    model->stopRenderingAll();
    scheduler.settle();
    EXPECT_EQ(rendered(), (SourceRanges{{2, 3}}));
    media->failure = "Disk full";
    render({4, 5});
    EXPECT_TRUE(ahead().render().previewRenderError());
    media->failure.reset();
    open("one.mov");
    EXPECT_FALSE(ahead().render().previewRenderError());
    playAt(0.5);
    model->renderSelectedPreview(SourceRange{6, 7});
    EXPECT_TRUE(isRendering());
    open("two.mov");
    EXPECT_FALSE(isRendering() || ahead().render().previewRenderError());
    EXPECT_EQ(ahead().playheadLabel(), "No rendered previews");
    EXPECT_EQ(ahead().renderAllLabel(), "Render all ranges");
}

TEST_F(RenderAheadTest, RenderingAllGoesOnAfterAnEdit) {
    model->renderAllRanges();
    model->beginCurveEdit();
    for (const double speed : {0.6, 0.7, 0.8})
        playAt(speed);
    scheduler.settle();
    EXPECT_EQ(media->rendered.size(), 1U); // each of these would have been in vain
    model->endCurveEdit();
    scheduler.settle();
    EXPECT_EQ(rendered().size(), 3U); // 12.5 s
    // Where the pieces are the same as before, too.
    model->applyTrimRange(2, 4);
    model->clearPreviewCache();
    model->renderAllRanges();
    playAt(0.7);
    scheduler.settle();
    EXPECT_EQ(rendered(), (SourceRanges{{2, 4}}));
}

TEST_F(RenderAheadTest, WhatComesTooLateIsDropped) {
    model->replaceKeyframes({point(0, 0.5), point(5, 0.5), point(10, 0.5)});
    const auto moved = [&](std::size_t i) {
        SpeedKeyframes list = model->curve().keyframes();
        list[i].speed -= 0.01;
        model->replaceKeyframes(list);
    };
    const auto isKept = [&](const std::function<void()>& edit) {
        model->renderSelectedPreview(SourceRange{1, 4});
        EXPECT_TRUE(scheduler.runJob(BackgroundQueue::renders)); // done, and not home yet
        edit();
        scheduler.settle();
        EXPECT_EQ(media->previewFiles.size(), rendered().size());
        EXPECT_FALSE(ahead().render().previewRenderError() || isRendering());
        const bool isInstalled = !rendered().empty();
        model->clearPreviewCache();
        return isInstalled;
    };
    EXPECT_TRUE(isKept([&] { moved(2); }));
    EXPECT_FALSE(isKept([&] { moved(1); }));
    EXPECT_FALSE(isKept([&] { model->setOpticalFlow(false, model->flow().opticalFlowRanges()[0].id); }));
    model->undo();
    EXPECT_FALSE(isKept([&] { model->cancelPreviewRender(); }));
    EXPECT_FALSE(isKept([&] { model->applyTrimRange(2, 10); }));
    model->resetTrimRange();
    EXPECT_FALSE(isKept([&] { open("two.mov"); }));
}

TEST_F(RenderAheadTest, AnEditInsideEndsARenderAtOnce) {
    model->renderSelectedPreview(SourceRange{1, 4});
    playAt(0.4);
    EXPECT_FALSE(isRendering());
    EXPECT_FALSE(ahead().render().renderingPreviewRange());
    model->renderSelectedPreview(SourceRange{1, 4}); // need not wait for the other
    EXPECT_TRUE(isRendering());
    scheduler.settle();
    EXPECT_EQ(rendered(), (SourceRanges{{1, 4}}));
    EXPECT_EQ(media->previewFiles.size(), 1U);
}

TEST_F(RenderAheadTest, OneRenderAtATimeAndFailuresWithTheirSentence) {
    model->renderSelectedPreview(); // nothing is selected
    EXPECT_FALSE(isRendering());
    model->selectOpticalFlowRange(model->flow().opticalFlowRanges()[0].id);
    model->renderSelectedPreview();
    model->renderSelectedPreview(SourceRange{1, 2});
    scheduler.runJob(BackgroundQueue::renders);
    scheduler.turn();
    EXPECT_EQ(ahead().render().previewRenderProgress(), 0.5);
    scheduler.settle();
    EXPECT_EQ(rendered(), (SourceRanges{{0, 10}}));

    model->setSmartPreviewEnabled(true);
    media->failure = "Disk full";
    render({1, 2});
    EXPECT_NE(ahead().render().previewRenderError()->find("Disk full"), std::string::npos);
    EXPECT_EQ(rendered(), (SourceRanges{{0, 10}}));
    model->clearPreviewCache();
    rest();
    scheduler.advance(30); // by itself it does not try again
    EXPECT_FALSE(isRendering());
    model->scrub(0.5);
    scheduler.advance(1.1);
    EXPECT_TRUE(isRendering());
    model->cancelPreviewRender(); // a cancelled one says nothing
    scheduler.settle();
    EXPECT_FALSE(ahead().render().previewRenderError());
}

} // namespace
} // namespace flowtide::test
