// How long previews are good for, and what becomes of their files.
#include "tests/editor/preview/render_ahead_stage.h"

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
        ahead.clearPreviewCache();
        render({2.01, 7.99}); // begins at output frame 120.6
        RenderedPreviews previews(session, notifier);
        previews.install(ahead.previews().renderedPreviews().at(0));
        previews.trimCachedPreviews(around);
        ASSERT_EQ(previews.activeRanges(), left) << around.lower;
        if (!left.empty()) {
            const RenderedPreview& preview = previews.renderedPreviews()[0];
            EXPECT_NEAR(preview.fileStart, fileStart, 1e-9);
            EXPECT_NEAR(preview.timeMap.outputDuration(), 2 * (left[0].upper - left[0].lower), 1e-9);
        }
    }
    render({2.01, 7.99});
    render({4, 6});
    EXPECT_EQ(renderedRanges(), (SourceRanges{{2.01, 4}, {4, 6}}));
}

TEST_F(RenderedPreviewsTest, EditsTakeOnlyWhatTheyTouch) {
    const auto point = [](double time, double speed) { return SpeedKeyframe{Uuid::random(), time, speed}; };
    const SpeedKeyframes curve{point(0, 0.5), point(3, 0.5), point(5, 0.2), point(7, 0.5), point(10, 0.5)};
    edits.replaceKeyframes(curve);
    const auto kept = [&](const std::function<void()>& edit) {
        edits.replaceKeyframes(curve);
        render({0.5, 2.5});
        render({4, 6});
        EXPECT_EQ(renderedRanges().size(), 2U);
        pauses = 0;
        edit();
        EXPECT_EQ(pauses > 0, renderedRanges().size() < 2);
        return renderedRanges();
    };
    const auto with = [&](std::size_t i, double time, double speed) {
        SpeedKeyframes changed = curve;
        changed[i].time = time;
        changed[i].speed = speed;
        return [this, changed] { edits.replaceKeyframes(changed); };
    };
    const SourceRange early{0.5, 2.5}, late{4, 6};
    EXPECT_EQ(kept(with(2, 5, 0.3)), SourceRanges{early});
    EXPECT_EQ(kept(with(4, 9.5, 0.5)), (SourceRanges{early, late}));
    EXPECT_EQ(kept(with(0, 0, 0.4)), SourceRanges{late});
    EXPECT_EQ(kept(with(4, 10, 0.7)), SourceRanges{early}); // bends the curve before the keyframe in between
    EXPECT_EQ(kept([&] { TrimEdits(session).applyTrimRange(2, 10); }), SourceRanges{late});
    TrimEdits(session).resetTrimRange();
    EXPECT_EQ(kept([&] { edits.setCurveSmoothing(0.4); }), SourceRanges{});
    EXPECT_EQ(kept([&] { ZoomEdits(session).addZoomBlock({1, 3}); }), (SourceRanges{early, late}));
    EXPECT_EQ(kept([&] { flow.setFrameInterpolation(FrameInterpolation::nearest); }), (SourceRanges{early, late}));
    EXPECT_TRUE(ahead.previews().activeCachedPreviews().empty()); // there is nothing to show them for
    EXPECT_TRUE(ahead.previews().unrenderedRanges().empty());
    flow.setFrameInterpolation(FrameInterpolation::opticalFlow);
    EXPECT_EQ(ahead.previews().activeRanges(), (SourceRanges{early, late}));
    EXPECT_EQ(kept([&] { flow.setOpticalFlow(false, session.flow.opticalFlowRanges()[0].id); }), SourceRanges{});
}

TEST_F(RenderedPreviewsTest, FilesGoWhenNoPlayerUsesThem) {
    render({2, 4});
    const int withFirst = ahead.previews().previewCacheRevision();
    const auto first = media->previewFiles;
    render({2, 4});
    const int withSecond = ahead.previews().previewCacheRevision();
    EXPECT_GT(withSecond, withFirst);
    ahead.playerInstalled(withFirst);
    EXPECT_EQ(media->previewFiles.size(), 2U);
    ahead.playerInstalled(withSecond);
    EXPECT_EQ(media->previewFiles.size(), 1U);
    EXPECT_NE(media->previewFiles, first);
    render({3, 4}); // cuts it; it is still played
    ahead.playerInstalled(ahead.previews().previewCacheRevision());
    EXPECT_EQ(media->previewFiles.size(), 2U);
    ahead.clearPreviewCache();
    EXPECT_EQ(media->previewFiles.size(), 2U);
    ahead.playerInstalled(ahead.previews().previewCacheRevision());
    EXPECT_TRUE(media->previewFiles.empty());
}

} // namespace
} // namespace flowtide::test
