// What the player is given to play, and when.
#include "tests/support/session_stage.h"

namespace flowtide::test {
namespace {

using PreviewRefreshTest = SessionStage;

TEST_F(PreviewRefreshTest, AnEditReachesThePlayerAfterATwelfthOfASecondOfRest) {
    open();
    ASSERT_TRUE(player.item());
    EXPECT_EQ(player.item()->media.asset.video.size(), 1U); // speed 1: the clip itself
    EXPECT_EQ(player.duration(), 10);
    model->scrub(0.4);
    const std::size_t items = player.items.size();
    model->beginCurveEdit();
    for (double speed = 1.1; speed < 3; speed += 0.1) {
        model->replaceKeyframes({point(0, speed), point(10, speed)});
        scheduler.advance(0.1);
    }
    model->endCurveEdit();
    scheduler.advance(0.119);
    EXPECT_EQ(player.items.size(), items);
    scheduler.advance(0.002);
    ASSERT_EQ(player.items.size(), items + 1);
    const double speed = model->curve().keyframes()[0].speed;
    EXPECT_EQ(player.item()->media.asset.video.size(), 10 * PreviewRefresh::segmentRate);
    EXPECT_NEAR(player.duration(), 10 / speed, 1e-4);
    EXPECT_NEAR(player.currentTime().value, 4 / speed, 1e-4);

    // Work that has begun since makes it stale; whatever needs the player sees to it then.
    model->setCurveSmoothing(0.2);
    model->beginCurveEdit();
    model->endCurveEdit();
    EXPECT_EQ(rebuilds(), 0U);
    model->startPlayback(1);
    EXPECT_EQ(player.items.size(), items + 2);
    model->pausePlayback();
    model->setCurveSmoothing(0.2 + 9e-5);
    model->beginCurveEdit();
    model->endCurveEdit();
    model->startPlayback(1); // too little to see
    EXPECT_EQ(player.items.size(), items + 2);
    model->setCurveSmoothing(0.2 + 1.1e-4);
    model->beginCurveEdit();
    model->endCurveEdit();
    model->startPlayback(1);
    EXPECT_EQ(player.items.size(), items + 3);

    media->duration = 3600;
    open("long.mov");
    model->replaceKeyframes({point(0, 1), point(3600, 2)});
    EXPECT_EQ(rebuilds(), 1U);
    EXPECT_LE(player.item()->media.asset.video.size(), 20'000U);
    model->reset();
    EXPECT_FALSE(player.item());
}

TEST_F(PreviewRefreshTest, WhatPlaysIsTheCurveOfTheExport) {
    open();
    const auto expectTheSame = [&](const char* what) {
        rebuilds();
        EXPECT_NEAR(player.duration(), model->curve().timeMap().outputDuration(), 0.01) << what;
    };
    model->replaceKeyframes({point(0, 1), point(5, 0.25)});
    expectTheSame("the curve comes back to speed 1 where its last point is gone");
    model->replaceKeyframes({point(0, 1), point(4, 0.2), point(10, 1)});
    model->applyTrimRange(2, 10);
    expectTheSame("points before the trim don't bend it");
}

TEST_F(PreviewRefreshTest, SoundAndProxyArriveWhenTheyAreThere) {
    // Opens a clip whose sound is not decoded yet; that of the clip before comes home right after it.
    const auto openSoundless = [&](const std::string& name) {
        while (scheduler.runJob(BackgroundQueue::projects))
            scheduler.turn();
        model->importClip(clipFile(name));
        while (scheduler.turn(), !model->clip() || model->clip()->url.filename() != name) {
            scheduler.runJob(BackgroundQueue::clips);
            if (scheduler.runJob(BackgroundQueue::projects)) scheduler.runJob(BackgroundQueue::sound);
        }
        EXPECT_FALSE(player.item()->sound || player.item()->proxy);
    };
    media->hasSound = true;
    openSoundless("one.mov");
    model->replaceKeyframes({point(0, 2), point(10, 2)});
    model->startPlayback(1);
    scheduler.advance(1.001);
    scheduler.settle();
    ASSERT_TRUE(player.item()->sound);
    EXPECT_EQ(player.item()->sound->samples.size(), 2U);
    EXPECT_NEAR(player.currentTime().value, 1, 0.01); // it plays on
    EXPECT_EQ(player.requestedRate(), 1);
    model->makeProxy();
    scheduler.settle();
    ASSERT_TRUE(player.item()->proxy);
    EXPECT_EQ(player.item()->proxy->url, "proxy.mov");
    EXPECT_EQ(player.item()->proxy->startOffset, 0) << "a proxy has its frames at the times of the clip";
    model->setCurveSmoothing(0);
    rebuilds();
    EXPECT_TRUE(player.item()->sound && player.item()->proxy);

    openSoundless("two.mov");
    media->hasSound = false;
    openSoundless("silent.mov");
    scheduler.settle();
    EXPECT_FALSE(player.item()->sound);
    EXPECT_FALSE(model->renders().render().previewRenderError());

    media->hasSound = true;
    media->soundFailure = "The sound is damaged.";
    open("damaged.mov");
    EXPECT_FALSE(player.item()->sound);
    ASSERT_TRUE(model->renders().render().previewRenderError());
    EXPECT_NE(model->renders().render().previewRenderError()->find("The sound is damaged."), std::string::npos);
}

TEST_F(PreviewRefreshTest, RendersArePlayedAndTheirFilesGoOnceTheyAreNot) {
    open();
    model->replaceKeyframes(slowBetween(3, 4));
    rebuilds();
    const auto renderSelected = [&] {
        model->selectOpticalFlowRange(model->flow().opticalFlowRanges().at(0).id);
        model->renderSelectedPreview();
        scheduler.settle();
    };
    model->startPlayback(1);
    renderSelected();
    EXPECT_FALSE(player.item()->media.asset.cachedPreviews.empty());
    EXPECT_EQ(media->previewFiles.size(), 1U);
    model->clearPreviewCache();
    EXPECT_TRUE(player.item()->media.asset.cachedPreviews.empty());
    EXPECT_TRUE(media->previewFiles.empty());
    // A render that ends while something plays is played from there on.
    model->renderSelectedPreview();
    model->startPlayback(1);
    player.seeks.clear();
    scheduler.settle();
    EXPECT_FALSE(player.item()->media.asset.cachedPreviews.empty());
    EXPECT_TRUE(player.seeks.empty());
    model->replaceKeyframes(slowBetween(3, 4.5));
    EXPECT_FALSE(model->transport().isPlaying());
    EXPECT_EQ(media->previewFiles.size(), 1U); // still played
    EXPECT_EQ(rebuilds(), 1U);
    EXPECT_TRUE(player.item()->media.asset.cachedPreviews.empty());
    EXPECT_TRUE(media->previewFiles.empty());
    renderSelected();
    model->reset();
    EXPECT_TRUE(media->previewFiles.empty());
    open("two.mov");

    model->replaceKeyframes(slowBetween(3, 4));
    model->setSmartPreviewEnabled(true);
    model->scrub(0.35);
    model->startPlayback(0.5F);
    scheduler.advance(1.5);
    EXPECT_EQ(scheduler.jobCount(BackgroundQueue::renders), 0U);
    model->pausePlayback();
    model->scrub(0.35);
    scheduler.advance(1.1);
    EXPECT_TRUE(model->renders().render().isAutomaticPreviewRender());
    model->scrub(0.36);
    EXPECT_FALSE(model->renders().render().isRendering());
}

} // namespace
} // namespace flowtide::test
