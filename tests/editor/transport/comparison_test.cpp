// Original frames for the playhead.
#include "tests/support/session_stage.h"

#include <gmock/gmock.h>

namespace flowtide::test {
namespace {

using testing::ElementsAre;
using Picture = ComparisonDisplayState::Picture;

class ComparisonTest : public SessionStage {
protected:
    const Comparison& comparison() const { return model->comparison(); }
};

TEST_F(ComparisonTest, FollowsThePlayheadOneFrameAtATime) {
    open();
    model->replaceKeyframes({point(0, 2), point(10, 2)});
    model->setVerticalCropEnabled(true);
    model->replaceCenterKeyframes({point(0, 0.25), point(10, 0.25)});
    model->scrub(0.311);
    scheduler.settle();
    EXPECT_TRUE(media->framesAskedFor.empty());
    model->setComparisonEnabled(true);
    EXPECT_EQ(comparison().comparisonDisplayState(), (ComparisonDisplayState{Picture::loading, ""}));
    scheduler.settle();
    ASSERT_TRUE(comparison().comparisonFrameTimes());
    EXPECT_DOUBLE_EQ(comparison().comparisonFrameTimes()->requested.value, 3.11);
    EXPECT_DOUBLE_EQ(comparison().comparisonFrameTimes()->decoded.value, 3.1);
    EXPECT_NEAR(comparison().comparisonFrameTimes()->output.value, 1.555, 1e-9);
    EXPECT_NEAR(comparison().comparisonPair()->pan, 0.25, 1e-6);
    EXPECT_EQ(comparison().comparisonDisplayState().picture, Picture::pair);

    media->framesAskedFor.clear();
    for (const double position : {0.4, 0.405, 0.5, 0.6}) { // while the first is being decoded
        model->scrub(position);
        scheduler.turn();
    }
    EXPECT_EQ(scheduler.jobCount(BackgroundQueue::frames), 1U);
    scheduler.settle();
    EXPECT_THAT(media->framesAskedFor, ElementsAre(4, 6));
    EXPECT_EQ(comparison().comparisonFrameTimes()->requested.value, 6);
    model->replaceKeyframes({point(0, 3), point(10, 3)});
    scheduler.settle();
    EXPECT_NEAR(comparison().comparisonFrameTimes()->output.value, 2, 1e-9);
    model->replaceCenterKeyframes({point(0, 0.75), point(10, 0.75)});
    scheduler.settle();
    EXPECT_NEAR(comparison().comparisonPair()->pan, 0.75, 1e-6);
    model->setVerticalCropEnabled(false);
    scheduler.settle();
    EXPECT_EQ(comparison().comparisonPair()->pan, ComparisonPair{}.pan);
    media->framesAskedFor.clear();
    model->setComparisonSize({640, 360});
    model->setComparisonSize({640, 360});
    scheduler.settle();
    EXPECT_THAT(media->framesAskedFor, ElementsAre(6));
    EXPECT_EQ(media->sizeAskedFor, (OutputSize{640, 360}));
}

TEST_F(ComparisonTest, LateResultsAreDropped) {
    open();
    model->setComparisonEnabled(true);
    scheduler.settle();
    ASSERT_TRUE(comparison().comparisonPair());
    model->scrub(0.3);
    scheduler.turn();
    model->setComparisonEnabled(false);
    scheduler.settle();
    EXPECT_FALSE(comparison().comparisonPair());
    EXPECT_EQ(comparison().comparisonDisplayState().picture, Picture::none);

    media->failure = "no";
    model->setComparisonEnabled(true);
    scheduler.turn();
    model->setComparisonEnabled(false);
    model->setComparisonEnabled(true);
    scheduler.runJob(BackgroundQueue::frames); // for the one before
    scheduler.turn();
    EXPECT_FALSE(comparison().comparisonMessage());
    scheduler.settle();
    EXPECT_EQ(comparison().comparisonMessage(), "Could not decode the original frame. Toggle Compare to retry.");
    EXPECT_FALSE(comparison().comparisonPair());
    EXPECT_EQ(comparison().comparisonDisplayState().picture, Picture::failed);
    media->failure.reset();
    model->scrub(0.9);
    scheduler.settle();
    EXPECT_TRUE(comparison().comparisonMessage() && !comparison().comparisonPair());
    model->setComparisonEnabled(false);
    model->setComparisonEnabled(true);
    scheduler.settle();
    EXPECT_FALSE(comparison().comparisonMessage());
    EXPECT_EQ(comparison().comparisonFrameTimes()->requested.value, 9);

    model->scrub(0.2);
    scheduler.turn();
    open("two.mov");
    EXPECT_FALSE(comparison().comparisonEnabled() || comparison().comparisonPair());
}

TEST_F(ComparisonTest, SaysWhatTheRetimedFrameIs) {
    open();
    model->replaceKeyframes(slowBetween(3, 4));
    model->setComparisonEnabled(true);
    const OpticalFlowRange range = model->flow().opticalFlowRanges().at(0);
    const auto labelAt = [&](double time) {
        model->scrub(time / 10);
        return comparison().comparisonDisplayState().label;
    };
    constexpr const char* off = "Original frames · Optical Flow off";
    constexpr const char* on = "Optical Flow · preview not rendered";
    EXPECT_EQ(labelAt(range.start - 0.01), "");
    EXPECT_EQ(labelAt(range.start + 1e-9), on);
    EXPECT_EQ(labelAt(range.end + 1e-9), "");
    model->setOpticalFlow(false, range.id);
    EXPECT_EQ(labelAt(3.5), off);
    model->setOpticalFlow(true, model->flow().opticalFlowRanges().at(0).id);
    EXPECT_EQ(labelAt(3.5), on);
    model->setFrameInterpolation(FrameInterpolation::nearest);
    EXPECT_EQ(labelAt(3.5), off);
}

} // namespace
} // namespace flowtide::test
