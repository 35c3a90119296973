// How long previews are good for.
#include "tests/editor/preview/render_ahead_stage.h"

#include <functional>

namespace flowtide::test {
namespace {

using RenderedPreviewsTest = RenderAheadStage;

TEST_F(RenderedPreviewsTest, ANewRenderCutsWhatItOverlaps) {
    const struct {
        SourceRange around;
        SourceRanges left;
        double fileStart; ///< of what is left; the whole one's lies 0.02 s into the file
    } cases[] = {
        {{4, 6}, {{2.01, 4}}, 0.02},
        {{3, 6}, {{6, 7.99}}, 0.02 + 2 * 3.99},
        {{2.01, 3}, {{3, 7.99}}, 0.02 + 2 * 0.99},
        {{7.98, 9}, {{2.01, 7.98}}, 0.02},
        {{7.99, 9}, {{2.01, 7.99}}, 0.02}, // they only touch
        {{1, 8}, {}, 0},
        {{2.01 + 1e-7, 9}, {}, 0}, // no piece is that short
    };
    for (const auto& [around, left, fileStart] : cases) {
        model->clearPreviewCache();
        render({2.01, 7.99}); // begins at output frame 120.6
        render(around);
        std::vector<RenderedPreview> previews = ahead().previews().activeCachedPreviews();
        EXPECT_EQ(media->previewFiles.size(), previews.size());
        std::erase_if(previews,
                      [&cut = around](const RenderedPreview& preview) { return preview.timeMap.sourceRange() == cut; });
        ASSERT_EQ(previews.size(), left.size()) << around.lower;
        if (left.empty()) continue;
        EXPECT_EQ(previews[0].timeMap.sourceRange(), left[0]);
        EXPECT_NEAR(previews[0].fileStart, fileStart, 1e-9);
        EXPECT_NEAR(previews[0].timeMap.outputDuration(), 2 * (left[0].upper - left[0].lower), 1e-9);
    }
}

TEST_F(RenderedPreviewsTest, EditsTakeOnlyWhatTheyTouch) {
    const SpeedKeyframes curve{point(0, 0.5), point(3, 0.5), point(5, 0.2), point(7, 0.5), point(10, 0.5)};
    const auto kept = [&](const std::function<void()>& edit) {
        model->replaceKeyframes(curve);
        render({0.5, 2.5});
        render({4, 6});
        EXPECT_EQ(rendered().size(), 2U);
        edit();
        return rendered();
    };
    const auto with = [&](std::size_t i, double time, double speed) {
        SpeedKeyframes changed = curve;
        changed[i].time = time;
        changed[i].speed = speed;
        return [this, changed] { model->replaceKeyframes(changed); };
    };
    const SourceRange early{0.5, 2.5}, late{4, 6};
    const SourceRanges both{early, late};
    EXPECT_EQ(kept(with(2, 5, 0.3)), SourceRanges{early});
    EXPECT_EQ(kept(with(4, 9.5, 0.5)), both);
    EXPECT_EQ(kept(with(0, 0, 0.4)), SourceRanges{late});
    EXPECT_EQ(kept(with(4, 10, 0.7)), SourceRanges{early}); // bends the curve before the keyframe in between
    model->replaceKeyframes(curve);
    render({5, 7});
    with(4, 10, 0.7)(); // the same at the range's ends and at every keyframe in it
    EXPECT_EQ(rendered(), SourceRanges{early});
    EXPECT_EQ(kept([&] { model->applyTrimRange(2, 10); }), SourceRanges{late});
    model->resetTrimRange();
    EXPECT_EQ(kept([&] { model->setCurveSmoothing(0.4); }), SourceRanges{});
    EXPECT_EQ(kept([&] { model->addZoomBlock({1, 3}); }), both);
    EXPECT_EQ(kept([&] { model->setFrameInterpolation(FrameInterpolation::nearest); }), both);
    EXPECT_TRUE(ahead().previews().activeRanges().empty()); // there is nothing to show them for
    EXPECT_TRUE(ahead().previews().unrenderedRanges().empty());
    model->setFrameInterpolation(FrameInterpolation::opticalFlow);
    EXPECT_EQ(ahead().previews().activeRanges(), both);
    EXPECT_EQ(kept([&] { model->setOpticalFlow(false, model->flow().opticalFlowRanges()[0].id); }), SourceRanges{});
}

} // namespace
} // namespace flowtide::test
