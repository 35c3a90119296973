// Where rendered previews are laid, and that their pictures stay with the clip's time.
#include "core/curve_engine.h"
#include "media/flowtide_error.h"
#include "media/preview/cached_preview_composition.h"

#include <gtest/gtest.h>

#include <cmath>

namespace flowtide {
namespace {

/// A clip of 4 s at half speed: boundaries each quarter of a second of source.
RetimedMedia slowClip() {
    RetimedMedia media;
    media.asset.media = {{"clip.mov", 0, nullptr}};
    std::vector<TimeMap::Entry> entries;
    for (std::int64_t i = 0; i < 16; ++i)
        media.asset.video.push_back({0, {i * 15'000}, {(i + 1) * 15'000}, {i * 30'000}, {(i + 1) * 30'000}});
    for (int i = 0; i <= 16; ++i)
        entries.push_back({i * 0.25, i * 0.5});
    media.timeMap = TimeMap(entries, {0, 4}, 8);
    return media;
}

/// A preview whose own map is bent: it runs from speed 1 to the speed that makes it as long as at half speed.
RenderedPreview preview(SourceRange range, double bend = 0, double fileStart = 0) {
    std::vector<TimeMap::Entry> entries;
    const double length = range.upper - range.lower;
    for (int i = 0; i <= 64; ++i) {
        const double share = i / 64.0;
        entries.push_back({range.lower + share * length, 2 * length * (share - bend * share * (1 - share))});
    }
    RenderedPreview result;
    result.url = "preview.mov";
    result.timeMap = TimeMap(entries, range, 2 * length);
    result.fileStart = fileStart;
    return result;
}

TEST(CachedPreviewComposition, LaysAPreviewOverTheOutputOfItsRange) {
    const std::vector<RenderedPreview> previews{preview({1, 2}, 0, 0.75)};
    const RetimedMedia media = CachedPreviewComposition::build(slowClip(), previews);
    EXPECT_EQ(media.asset.videoAt({1.999})->medium, 0U);
    EXPECT_EQ(media.asset.videoAt({2})->medium, 1U);
    EXPECT_NEAR(media.asset.videoAt({2})->fileSeconds, 0.75, 1e-9);
    EXPECT_NEAR(media.asset.videoAt({3.5})->fileSeconds, 0.75 + 1.5, 1e-9);
    EXPECT_EQ(media.asset.videoAt({4})->medium, 0U);
    EXPECT_EQ(media.asset.media.at(1).url, "preview.mov");
    EXPECT_EQ(media.asset.video, slowClip().asset.video);
    EXPECT_EQ(media.timeMap, slowClip().timeMap);
}

TEST(CachedPreviewComposition, PicturesStayWithTheMapOfTheComposition) {
    const RenderedPreview bent = preview({0.6, 3.1}, 0.4);
    const RetimedMedia media = CachedPreviewComposition::build(slowClip(), std::vector{bent});
    // Inside a segment of a quarter second the bent map strays from a straight line by at most this much of output.
    const double curvature = 2 * 2.5 * 2 * 0.4 / (2.5 * 2.5);
    const double pieces = 2.5 / 64; // of the bent map itself
    const double tolerance = curvature * (0.25 * 0.25 + pieces * pieces) / 8 + 2e-5;
    for (double output = 1.2; output < 6.2; output += 0.01) {
        const auto place = media.asset.videoAt({output});
        ASSERT_EQ(place->medium, 1U) << output;
        EXPECT_NEAR(place->fileSeconds, bent.timeMap.outputTime({output / 2}).value, tolerance) << output;
    }
}

TEST(CachedPreviewComposition, OverlappingPreviewsTakeTurns) {
    const std::vector<RenderedPreview> previews{preview({2, 3}), preview({1, 2.5}), preview({3.5, 9})};
    const RetimedMedia media = CachedPreviewComposition::build(slowClip(), previews);
    EXPECT_EQ(media.asset.videoAt({4.5})->medium, 1U);
    EXPECT_EQ(media.asset.videoAt({5.5})->medium, 2U);
    EXPECT_NEAR(media.asset.videoAt({5.5})->fileSeconds, 1.5, 1e-9);
    EXPECT_EQ(media.asset.duration(), OutputSeconds{8});
    CompositionTime end{0};
    for (const CompositionSegment& segment : media.asset.cachedPreviews) {
        EXPECT_GE(segment.outputStart, end);
        EXPECT_GT(segment.outputEnd, segment.outputStart);
        end = segment.outputEnd;
    }
    EXPECT_EQ(end, media.asset.video.back().outputEnd);
}

TEST(CachedPreviewComposition, NeedsSomethingToLayPreviewsOver) {
    try {
        CachedPreviewComposition::build({}, std::vector{preview({0, 1})});
        FAIL();
    } catch (const FlowtideError& error) {
        EXPECT_EQ(error.kind(), FlowtideError::Case::compositionFailed);
        EXPECT_STREQ(error.what(), "Composition failed: Could not create cached preview video track.");
    }
}

} // namespace
} // namespace flowtide
