// Exports, proxies and tracking: their course, their ends, and results that come too late.
#include "tests/editor/preview/render_ahead_stage.h"

namespace flowtide::test {
namespace {

using JobsTest = SessionStage;

SubjectTrackResult straightTrack() {
    SubjectTrackResult result;
    for (int frame = 0; frame <= 300; ++frame)
        result.samples.push_back({frame / 30.0, 0.5});
    return result;
}

TEST_F(JobsTest, AnExportIsOfTheEditsAsTheyWereWhenItBegan) {
    open();
    model->replaceKeyframes(slowBetween(2, 3));
    model->setVerticalCropEnabled(true);
    model->applyTrimRange(1, 9);
    const SpeedKeyframes keyframes = model->curve().keyframes();
    const SourceRanges ranges = model->effectiveOpticalFlowRanges();
    model->exportClip(folder / "out.mov");
    model->exportClip(folder / "other.mov"); // one at a time
    EXPECT_TRUE(model->exporting().isExporting());
    EXPECT_EQ(scheduler.jobCount(BackgroundQueue::jobs), 1U);
    EXPECT_EQ(model->exporting().frameCount(),
              outputFrameCount(model->curve().timeMap().outputDuration(), model->clip()->frameDuration));
    model->setOpticalFlow(false, model->flow().opticalFlowRanges()[0].id); // not while exporting
    EXPECT_EQ(model->effectiveOpticalFlowRanges(), ranges);
    model->resetCurve();
    scheduler.advance(3);
    scheduler.runJob(BackgroundQueue::jobs);
    EXPECT_EQ(model->exporting().exportProgress(), 0);
    scheduler.turn();
    EXPECT_EQ(model->exporting().exportProgress(), 0.25);
    EXPECT_FALSE(model->exporting().isExporting());
    ASSERT_TRUE(model->exporting().lastExportVerification());
    EXPECT_EQ(model->exporting().lastExportVerification()->summary, "summary");
    EXPECT_EQ(model->exporting().lastExportEnd()->report, model->exporting().lastExportVerification());
    EXPECT_EQ(model->exporting().destination(), folder / "out.mov");
    ASSERT_TRUE(media->exported);
    EXPECT_EQ(media->exported->keyframes, keyframes);
    EXPECT_EQ(media->exported->sourceRange, (SourceRange{1, 9}));
    EXPECT_EQ(media->exported->opticalFlowRanges, ranges);
    EXPECT_EQ(media->exported->interpolation, FrameInterpolation::opticalFlow);
    ASSERT_TRUE(media->exported->verticalCrop);
    EXPECT_EQ(media->exported->verticalCrop->aspectRatio, 0.5625);

    media->failure = "no";
    model->exportClip(folder / "out.mov");
    scheduler.settle();
    EXPECT_FALSE(model->exporting().lastExportVerification());
    ASSERT_TRUE(model->exporting().lastExportEnd());
    EXPECT_EQ(model->exporting().lastExportEnd()->kind, ExportEnd::Kind::failed);
    EXPECT_NE(model->exporting().lastExportEnd()->failure.find("no"), std::string::npos);
    media->failure.reset();
    model->exportClip(folder / "out.mov");
    EXPECT_FALSE(model->exporting().lastExportEnd());
    model->cancelExport();
    scheduler.settle();
    EXPECT_FALSE(model->exporting().isExporting());
    EXPECT_EQ(model->exporting().lastExportEnd()->kind, ExportEnd::Kind::cancelled);
    model->dismissExportEnd();
    EXPECT_FALSE(model->exporting().lastExportEnd());
    EXPECT_FALSE(model->alert().showError());
}

TEST_F(JobsTest, TimeLeftFollowsTheShareDone) {
    open();
    model->exportClip(folder / "out.mov");
    scheduler.advance(100); // behind another job
    std::vector<std::optional<double>> left;
    media->whileExporting = [&](const std::function<void(double)>& onProgress) {
        scheduler.turn();
        scheduler.advance(3);
        for (const double share : {0.0199, 0.02, 0.25, 0.5}) {
            onProgress(share);
            scheduler.turn();
            left.push_back(model->exporting().exportEstimatedRemainingTime());
        }
    };
    scheduler.settle();
    EXPECT_EQ(left, (std::vector<std::optional<double>>{{}, 147.0, 9.0, 3.0}));
    // The next one knows nothing of the last.
    model->exportClip(folder / "out.mov");
    EXPECT_FALSE(model->exporting().exportEstimatedRemainingTime());
    EXPECT_EQ(model->exporting().exportProgress(), 0);
    scheduler.settle();
}

TEST_F(JobsTest, LateResultsAreDropped) {
    open("one.mov");
    model->exportClip(folder / "out.mov");
    model->makeProxy();
    model->startTracking({0.1, 0.1, 0.2, 0.2});
    media->tracked = straightTrack();
    model->importClip(clipFile("two.mov"));
    for (const BackgroundQueue queue : {BackgroundQueue::clips, BackgroundQueue::projects}) {
        while (scheduler.runJob(queue))
            scheduler.turn();
    }
    ASSERT_EQ(model->clip()->url.filename(), "two.mov");
    EXPECT_FALSE(model->tracking().isTracking() || model->tracking().trackingPreview() ||
                 model->tracking().trackingMessage() || model->proxies().isGeneratingProxy());
    scheduler.settle();
    EXPECT_FALSE(model->exporting().isExporting());
    EXPECT_TRUE(model->exporting().lastExportEnd()->report); // an export of the clip before is one all the same
    EXPECT_FALSE(model->exporting().lastExportVerification());
    EXPECT_EQ(model->proxies().proxyProgress(), 0);
    EXPECT_FALSE(model->proxies().proxy());
    EXPECT_FALSE(model->proxies().proxyMessage());
    EXPECT_TRUE(model->trackedRanges().empty());
    EXPECT_EQ(media->uncancelled, 0);

    // Of imports the latest wins, whatever comes home first.
    model->importClip(clipFile("three.mov"));
    model->importClip(clipFile("four.mov"));
    EXPECT_EQ(model->clips().isOpening(), "four.mov");
    scheduler.settle();
    EXPECT_EQ(model->clip()->url.filename(), "four.mov");
    model->importClip(clipFile("five.mov"));
    model->reset();
    scheduler.settle();
    EXPECT_FALSE(model->clip());
    EXPECT_EQ(model->clips().isOpening(), "");

    // And when the session is gone, nothing arrives.
    model->importClip(clipFile("six.mov"));
    model.reset();
    scheduler.settle();
}

TEST_F(JobsTest, AProxyIsBuiltOnce) {
    open();
    model->makeProxy();
    model->makeProxy();
    EXPECT_EQ(scheduler.jobCount(BackgroundQueue::jobs), 1U);
    EXPECT_EQ(model->proxies().proxyMessage(), "Building 720p preview proxy...");
    scheduler.settle();
    EXPECT_EQ(model->proxies().proxyMessage(), "720p proxy ready");
    EXPECT_EQ(model->proxies().proxy(), "proxy.mov");
    EXPECT_EQ(model->proxies().proxyProgress(), 0.5);
    model->makeProxy();
    EXPECT_EQ(model->proxies().proxyProgress(), 0);
    model->cancelProxy();
    scheduler.settle();
    EXPECT_FALSE(model->proxies().proxyMessage());
    media->failure = "Proxy decode failed";
    model->makeProxy();
    scheduler.settle();
    EXPECT_NE(model->proxies().proxyMessage()->find("Proxy decode failed"), std::string::npos);
}

TEST_F(JobsTest, WhatWaitsForAnotherJobIsCancelledAtOnce) {
    open();
    model->startTracking({0.1, 0.1, 0.2, 0.2}); // in front
    model->exportClip(folder / "out.mov");
    model->cancelExport();
    EXPECT_FALSE(model->exporting().isExporting());
    EXPECT_EQ(model->exporting().lastExportEnd()->kind, ExportEnd::Kind::cancelled);
    model->makeProxy();
    model->cancelProxy();
    EXPECT_FALSE(model->proxies().isGeneratingProxy() || model->proxies().proxyMessage());
    model->exportClip(folder / "other.mov");
    model->makeProxy();
    for (int i = 0; i < 3; ++i) { // the tracking and the two that were given up
        EXPECT_TRUE(scheduler.runJob(BackgroundQueue::jobs));
        scheduler.turn();
    }
    EXPECT_TRUE(model->exporting().isExporting() && model->proxies().isGeneratingProxy());
    EXPECT_FALSE(media->exported);
    scheduler.settle();
    EXPECT_EQ(media->exported->outputURL, folder / "other.mov");
    EXPECT_EQ(model->exporting().lastExportEnd()->kind, ExportEnd::Kind::verified);
    EXPECT_TRUE(model->proxies().proxy());
}

TEST_F(JobsTest, TrackingTellsHowFarItIs) {
    open();
    model->startPlayback(1);
    model->beginSubjectSelection();
    EXPECT_FALSE(model->transport().isPlaying());
    scheduler.settle();
    EXPECT_TRUE(model->tracking().subjectSelectionBuffer());
    EXPECT_EQ(media->framesAskedFor, std::vector<double>{0});
    model->cancelTracking();
    EXPECT_FALSE(model->tracking().selectingSubject() || model->tracking().subjectSelectionBuffer() ||
                 model->tracking().trackingMessage());

    const SubjectBox drawn{0.1, 0.1, 0.2, 0.2};
    model->scrub(0.4);
    model->startTracking(drawn);
    model->scrub(0.6);                          // which leaves the chosen frame
    model->startTracking({0.3, 0.1, 0.2, 0.2}); // one at a time
    model->beginSubjectSelection();
    EXPECT_FALSE(model->tracking().selectingSubject());
    EXPECT_EQ(model->tracking().trackingProgress(), 0);
    EXPECT_EQ(model->tracking().chosenSubject()->time, 4);
    EXPECT_EQ(model->tracking().trackingPreview()->box, drawn);
    constexpr double frame = 1.0 / 30;
    std::vector<SourceRanges> covered;
    media->whileTracking = [&](const std::function<void(TrackingProgress)>& onProgress) {
        scheduler.turn();
        EXPECT_EQ(model->tracking().trackingProgress(), 0.4);
        EXPECT_EQ(model->tracking().trackingMessage(), "Looking for the subject…");
        const auto view = std::make_shared<const SubjectView>(SubjectView{4.2, SubjectBox{0.1, 0.2, 0.3, 0.4}, {}});
        onProgress({0.5, false, {{4, 0.5}, {4 + frame, 0.5}, {4 + 5 * frame, 0.5}}, view});
        onProgress({0.6, false, {}, {}});
        scheduler.turn();
        EXPECT_EQ(model->tracking().trackingPreview(), view); // until there is another
        EXPECT_EQ(model->tracking().trackingMessage(), "Following the subject…");
        covered.push_back(model->tracking().trackingCoverage());
        onProgress({0.7, false, {{4 - frame, 0.5}, {4 - 2 * frame, 0.5}}, {}});
        scheduler.turn();
        covered.push_back(model->tracking().trackingCoverage());
    };
    scheduler.settle();
    ASSERT_EQ(covered.size(), 2U);
    expectRanges(covered[0], {{4, 4 + 2 * frame}, {4 + 5 * frame, 4 + 6 * frame}});
    expectRanges(covered[1], {{4 - 2 * frame, 4 + 2 * frame}, {4 + 5 * frame, 4 + 6 * frame}});
    EXPECT_FALSE(model->tracking().trackingPreview() || model->tracking().chosenSubject());
    EXPECT_TRUE(model->tracking().trackingCoverage().empty());
    media->whileTracking = {};

    // Another shape of the crop would need other framing.
    media->tracked = straightTrack();
    model->startTracking(drawn);
    model->setCropAspectRatio(CropAspectRatio::fourByFive);
    scheduler.settle();
    EXPECT_TRUE(model->trackedRanges().empty());
    // What was lost before the chosen frame ended at the first frame that was found.
    media->tracked.lostSubject = media->tracked.lostBeforeSeed = true;
    media->tracked.samples.erase(media->tracked.samples.begin(), media->tracked.samples.begin() + 60);
    model->startTracking(drawn);
    scheduler.settle();
    EXPECT_EQ(model->tracking().trackingStoppedAt(), 2);
    model->beginSubjectSelection();
    EXPECT_FALSE(model->tracking().trackingStoppedAt());
}

TEST_F(JobsTest, TrackingFromTheTrimsEndStartsWithinIt) {
    open();
    const double end = 11 / 30.0;
    model->applyTrimRange(0, end);
    model->scrub(end / 10);
    ASSERT_GT(model->playheadSeconds(), end); // by a rounding
    model->beginSubjectSelection();
    model->startTracking({0.1, 0.1, 0.2, 0.2});
    scheduler.settle();
    EXPECT_EQ(media->framesAskedFor.back(), end);
    EXPECT_EQ(media->trackedFrom, end);
}

TEST_F(JobsTest, TrackingEndsWithTheSentenceOfWhatItCameTo) {
    open();
    const struct {
        bool lost;
        std::vector<double> lostFrames;
        std::size_t samples;
        const char* sentence;
    } ends[] = {
        {true, {}, 1, "Tracking stopped — subject lost. Choose a clearer frame and try again."},
        {false, {0.1}, 1, "Tracking stopped — subject lost. Choose a clearer frame and try again."},
        {false, {}, 301, "Tracking complete: 2 framing points across the retained clip. Ctrl+Z to undo."},
        {false, {4.5}, 301, "Tracking finished with gaps. Review the orange flags where the subject was lost."},
        {true, {}, 301, "Tracking stopped — subject lost. Tracked 2 keyframes. Review the orange flags."},
        {true, {}, 0, "Tracking stopped — subject lost. Choose a clearer frame and try again."},
    };
    for (const auto& [lost, lostFrames, samples, sentence] : ends) {
        media->tracked = straightTrack();
        media->tracked.samples.resize(samples);
        media->tracked.lostSubject = media->tracked.lostAfterSeed = lost;
        media->tracked.lostFrames = lostFrames;
        model->beginSubjectSelection();
        EXPECT_TRUE(model->tracking().selectingSubject());
        EXPECT_EQ(model->tracking().trackingMessage(), "Loading the source frame…");
        EXPECT_FALSE(model->tracking().subjectSelectionBuffer());
        if (lost) scheduler.settle(); // else the frame comes too late
        EXPECT_EQ(model->tracking().subjectSelectionBuffer() != nullptr, lost);
        EXPECT_EQ(model->tracking().trackingMessage()->starts_with("Draw a tight box"), lost);
        model->startTracking({0.1, 0.1, 0.2, 0.2});
        EXPECT_FALSE(model->tracking().selectingSubject() || model->tracking().subjectSelectionBuffer());
        EXPECT_EQ(model->tracking().trackingMessage(), "Following the subject…");
        scheduler.settle();
        EXPECT_FALSE(model->tracking().isTracking());
        EXPECT_EQ(model->tracking().trackingMessage(), sentence);
        EXPECT_EQ(model->tracking().trackingStoppedAt(),
                  lost && samples > 0 ? std::optional(media->tracked.samples.back().time) : std::nullopt);
        EXPECT_EQ(model->trackedRanges().empty(), samples == 1) << "what was drawn is no track";
    }
    EXPECT_EQ(model->trackedRanges().size(), 1U);

    model->startTracking({0.1, 0.1, 0.2, 0.2});
    model->replaceCenterKeyframes({point(0, 0.1), point(10, 0.1)});
    scheduler.settle();
    EXPECT_EQ(model->tracking().trackingMessage(),
              "Framing changed while tracking. Track again to keep your new edits.");
    EXPECT_EQ(model->framing().liveCropTravel(5), 0.1);

    media->tracked = straightTrack();
    model->startTracking({0.1, 0.1, 0.2, 0.2});
    model->cancelTracking();
    EXPECT_FALSE(model->tracking().trackingMessage());
    model->startTracking({0.1, 0.1, 0.2, 0.2}); // the late result of the first is not the second's
    EXPECT_TRUE(scheduler.runJob(BackgroundQueue::jobs));
    scheduler.turn();
    EXPECT_TRUE(model->tracking().isTracking());
    EXPECT_EQ(model->tracking().trackingMessage(), "Following the subject…");
    scheduler.settle();
    EXPECT_FALSE(model->tracking().isTracking());
    media->failure = "Could not decode tracking frames.";
    model->beginSubjectSelection();
    scheduler.settle();
    EXPECT_FALSE(model->tracking().selectingSubject());
    EXPECT_NE(model->tracking().trackingMessage()->find("Could not decode tracking frames."), std::string::npos);
    model->startTracking({0.1, 0.1, 0.2, 0.2});
    scheduler.settle();
    EXPECT_NE(model->tracking().trackingMessage()->find("Could not decode tracking frames."), std::string::npos);
}

TEST_F(JobsTest, ATrackThatEndsDuringADragIsAStepBehindIt) {
    open();
    media->tracked = straightTrack();
    for (const bool isCancelled : {true, false}) {
        const std::size_t steps = model->history().undoStack().size();
        const SpeedKeyframes before = model->curve().keyframes();
        model->startTracking({0.1, 0.1, 0.2, 0.2});
        model->beginCurveEdit();
        model->replaceKeyframes({point(0, 1), point(5, 2), point(10, 1)});
        scheduler.settle();
        EXPECT_TRUE(model->trackedRanges().empty());
        model->replaceKeyframes({point(0, 1), point(5, 3), point(10, 1)});
        EXPECT_EQ(model->history().undoStack().size(), steps);
        if (isCancelled)
            model->cancelCurveEdit();
        else
            model->endCurveEdit();
        EXPECT_EQ(model->curve().keyframes() == before, isCancelled);
        EXPECT_EQ(model->trackedRanges().size(), 1U);
        EXPECT_FALSE(model->tracking().isTracking());
        EXPECT_EQ(model->history().undoStack().size(), steps + (isCancelled ? 1 : 2));
        model->undo();
        EXPECT_TRUE(model->trackedRanges().empty());
    }
}

} // namespace
} // namespace flowtide::test
