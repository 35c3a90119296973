// When the export's own frame is shown at rest.
#include "tests/support/session_stage.h"

namespace flowtide::test {
namespace {

class RestFrameTest : public SessionStage {
protected:
    /// Slow from 2 s to 3 s, 10 s of output.
    void openSlow() {
        open();
        model->replaceKeyframes(slowBetween(2, 3));
        model->scrub(0.25);
        ASSERT_TRUE(comes());
        media->pictured.clear();
    }
    bool isShown() const { return model->restFrame().restPicture() != nullptr; }
    /// Whether it is shown after a rest.
    bool comes() {
        scheduler.settle();
        scheduler.advance(RestFrame::restDelaySeconds);
        scheduler.settle();
        return isShown();
    }
};

TEST_F(RestFrameTest, IsTheExportsFrameOfThePlayhead) {
    openSlow();
    model->addZoomBlock({1, 4});
    scheduler.settle();
    EXPECT_FALSE(isShown()); // another zoom is another picture
    scheduler.advance(RestFrame::restDelaySeconds * 0.9);
    scheduler.settle();
    EXPECT_TRUE(media->pictured.empty());
    ASSERT_TRUE(comes());
    ASSERT_EQ(media->pictured.size(), 1U);
    const auto& [request, time] = media->pictured.front();
    EXPECT_DOUBLE_EQ(time, model->curve().timeMap().outputTime({2.5}).value);
    EXPECT_EQ(model->restFrame().restPicture()->time.value, time);
    EXPECT_EQ(request.keyframes, model->curve().keyframes());
    EXPECT_EQ(request.opticalFlowRanges, model->effectiveOpticalFlowRanges());
    EXPECT_EQ(request.zoom->blocks, model->zoom().zoomBlocks());
    EXPECT_FALSE(request.verticalCrop);

    // The crop comes before the zoom, and is the view's: then so is the zoom.
    model->setVerticalCropEnabled(true);
    ASSERT_TRUE(comes());
    EXPECT_FALSE(media->pictured.back().first.verticalCrop);
    EXPECT_FALSE(media->pictured.back().first.zoom);

    const std::function<void()> changes[] = {
        [&] { model->replaceKeyframes(slowBetween(2, 3.5)); },
        [&] { model->setCurveSmoothing(0.3); },
        [&] { model->applyTrimRange(1, 9); },
        [&] {
            model->setRestPictureSize({640, 360});
        },
    };
    for (const auto& change : changes) {
        const std::size_t before = media->pictured.size();
        change();
        EXPECT_TRUE(comes());
        EXPECT_GT(media->pictured.size(), before);
    }
    EXPECT_EQ(media->sizeAskedFor, (OutputSize{640, 360}));
    model->setRestPictureSize({640, 360});
    EXPECT_TRUE(isShown());
}

TEST_F(RestFrameTest, OnlyWhereFramesAreMadeAndNoneIsRendered) {
    openSlow();
    model->scrub(0.15);
    EXPECT_FALSE(comes());
    model->scrub(0.25);
    EXPECT_TRUE(comes());
    model->setFrameInterpolation(FrameInterpolation::nearest);
    EXPECT_FALSE(comes());
    model->setFrameInterpolation(FrameInterpolation::opticalFlow);
    EXPECT_TRUE(comes());
    model->setOpticalFlow(false, model->flow().opticalFlowRanges().front().id);
    EXPECT_FALSE(comes());
    model->setOpticalFlow(true, model->flow().opticalFlowRanges().front().id);
    EXPECT_TRUE(comes());
    model->renderAllRanges();
    EXPECT_FALSE(comes());
    model->clearPreviewCache();
    EXPECT_TRUE(comes());
    media->isInBetween = false; // the source's own frame is what the player shows
    model->scrub(0.26);
    EXPECT_FALSE(comes());
    media->isInBetween = true;
    media->failure = "";
    model->scrub(0.27);
    EXPECT_FALSE(comes());
    EXPECT_FALSE(model->alert().showError());
}

TEST_F(RestFrameTest, AnyMoveDropsItAtOnce) {
    openSlow();
    for (const double position : {0.26, 0.27, 0.28}) { // a scrub
        model->scrub(position);
        scheduler.turn();
        EXPECT_FALSE(isShown());
        scheduler.advance(RestFrame::restDelaySeconds / 2);
    }
    EXPECT_TRUE(media->pictured.empty());
    EXPECT_TRUE(comes());

    model->scrub(0.29);
    scheduler.turn();
    scheduler.advance(RestFrame::restDelaySeconds);
    media->uncancelled = 0;
    model->scrub(0.15); // while it is being made
    EXPECT_FALSE(comes());
    EXPECT_EQ(media->uncancelled, 0);
    model->scrub(0.25);
    EXPECT_TRUE(comes());
    model->startPlayback(1);
    scheduler.turn();
    scheduler.turn();
    EXPECT_FALSE(isShown());
    scheduler.advance(0.2);
    scheduler.settle();
    EXPECT_FALSE(isShown());
    model->pausePlayback();
    EXPECT_TRUE(comes());
    model->reset();
    EXPECT_FALSE(comes());
}

} // namespace
} // namespace flowtide::test
