// The way through a composition: which medium at which time, and what comes next in either direction.
#include "core/curve_engine.h"
#include "media/media_time.h"
#include "media/player/playback_route.h"
#include "media/preview/retimed_composition_engine.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <set>
#include <utility>
#include <vector>

namespace flowtide {
namespace {

CompositionSegment segment(std::size_t medium, double sourceStart, double sourceEnd, double outputStart,
                           double outputEnd) {
    const auto at = [](double seconds) { return *CompositionTime::nearest(seconds); };
    return {medium, at(sourceStart), at(sourceEnd), at(outputStart), at(outputEnd)};
}

/// Ten seconds of a clip that begins 2 s into its file: 4 s at speed 1, then 4 s at half speed, cut in two, with a
/// rendered preview over 5 … 7 s. Its proxy begins 1 s into its file.
std::shared_ptr<PlaybackItem> routeItem() {
    auto item = std::make_shared<PlaybackItem>();
    item->media.asset.media = {{"clip.mov", 2, nullptr}, {"preview.mov", 0, nullptr}};
    item->media.asset.video = {segment(0, 0, 4, 0, 4), segment(0, 4, 6, 4, 8), segment(0, 6, 7, 8, 10)};
    item->media.asset.cachedPreviews = {segment(1, 0, 2, 5, 7)};
    item->proxy = CompositionMedium{"proxy.mov", 1, nullptr};
    return item;
}

struct PlaybackRouteTest : testing::Test {
    MediumNumbers numbers;
    PlaybackRoute route{routeItem(), numbers};
    MediumId clip = numbers.of({"clip.mov", 0, nullptr});
    MediumId preview = numbers.of({"preview.mov", 0, nullptr});
    MediumId proxy = numbers.of({"proxy.mov", 0, nullptr});
};

TEST_F(PlaybackRouteTest, KnowsThePlaceOfEveryTime) {
    struct Case {
        double output;
        RoutePlace exact, quick;
    };
    for (const Case& c : {
             Case{3, {clip, 5, true}, {proxy, 4, false}},
             Case{4.5, {clip, 6.25, true}, {proxy, 5.25, false}},
             Case{5, {preview, 0, true}, {preview, 0, true}},
             Case{6.5, {preview, 1.5, true}, {preview, 1.5, true}},
             Case{7, {clip, 7.5, true}, {proxy, 6.5, false}},
         }) {
        for (const auto& [source, expected] :
             {std::pair{PictureSource::exact, c.exact}, {PictureSource::proxy, c.quick}}) {
            const auto place = route.at({c.output}, source);
            ASSERT_TRUE(place);
            EXPECT_EQ(place->medium, expected.medium) << c.output;
            EXPECT_NEAR(place->time, expected.time, 1e-9) << c.output;
            EXPECT_EQ(place->isExact, expected.isExact) << c.output;
        }
    }
    // The ends show the frames between them, even where they were rounded over the edge of the next one.
    for (const auto& [output, exact] : {std::pair{-1.0, 2.0}, {0, 2}, {10, 9}, {99, 9}})
        for (const auto& [source, begin] : {std::pair{PictureSource::exact, 0.0}, {PictureSource::proxy, -1}}) {
            const double inside = (route.at({output}, source)->time - begin - exact) * (output > 0 ? -1 : 1);
            EXPECT_GT(inside, 0.5 / 60'000 + frameReachedGraceSeconds) << output;
            EXPECT_LT(inside, 2e-5) << output;
        }
    EXPECT_EQ(route.duration(), 10);
    for (const auto& [output, rendered] : {std::pair{4.99, false}, {5.0, true}, {6.99, true}, {7.0, false}})
        EXPECT_EQ(route.isRenderedPreview({output}), rendered) << output;
}

TEST_F(PlaybackRouteTest, StepsAcrossRenderedPreviewsFindEveryFrame) {
    const double ntsc = 30'000.0 / 1001;
    for (const auto& [rate, slowest] :
         {std::pair{30.0, 0.3}, {30, 0.05}, {ntsc, 0.1}, {24'000.0 / 1001, 0.5}, {240, 0.2}}) {
        for (const double fastest : {slowest, 1.0, 4.0}) {
            const SpeedKeyframes keyframes{{{}, 0, fastest}, {{}, 1, slowest}, {{}, 2, fastest}};
            const TimeMap map = CurveEngine::buildTimeMap(keyframes, 2, {}, CurveEngine::exportTimeMapSteps, 0.5);
            auto source = std::make_shared<ImportedClip>();
            source->duration = 2;
            source->video.encodedWidth = source->video.encodedHeight = 64;
            RetimedCompositionRequest request;
            request.clip = source;
            request.keyframes = keyframes;
            request.segmentRate = 240;
            request.cachedPreviews.emplace_back().timeMap = map;
            auto item = std::make_shared<PlaybackItem>();
            item->media = RetimedCompositionEngine::build(request);
            const PlaybackRoute rendered(item, numbers);
            for (int frame = 0; frame / rate < map.outputDuration() - 1e-4; ++frame) {
                const SourceSeconds playhead = map.sourceTime({frame / rate});
                const auto place = rendered.at(item->media.timeMap.outputTime(playhead), PictureSource::exact);
                EXPECT_EQ(std::floor((place->time + frameReachedGraceSeconds) * rate), frame)
                    << rate << " from " << fastest << " to " << slowest;
            }
        }
    }
}

TEST_F(PlaybackRouteTest, TellsWhatComesNextInEitherDirection) {
    struct Case {
        double output;
        int direction;
        double seconds;
        PictureSource source;
        std::vector<RouteStretch> way;
    };
    for (const Case& c : {
             Case{1, 1, 2, PictureSource::exact, {{clip, 3, 5}}},
             Case{3, 1, 2, PictureSource::exact, {{clip, 5, 6.5}}}, // two segments, one way
             Case{3, 1, 5, PictureSource::proxy, {{proxy, 4, 5.5}, {preview, 0, 2}, {proxy, 6.5, 7}}},
             Case{9, 1, 5, PictureSource::exact, {{clip, 8.5, 9}}},
             Case{10, 1, 5, PictureSource::exact, {}},
             Case{3, -1, 2, PictureSource::exact, {{clip, 5, 3}}},
             Case{8, -1, 4, PictureSource::exact, {{clip, 8, 7.5}, {preview, 2, 0}, {clip, 6.5, 6}}},
             Case{1, -1, 5, PictureSource::proxy, {{proxy, 2, 1}}},
             Case{0, -1, 5, PictureSource::exact, {}},
             Case{-3, 1, 1, PictureSource::exact, {{clip, 2, 3}}},
             Case{99, -1, 1, PictureSource::exact, {{clip, 9, 8.5}}},
         }) {
        const auto way = route.ahead({c.output}, c.direction, c.seconds, c.source);
        ASSERT_EQ(way.size(), c.way.size()) << c.output << " " << c.direction;
        for (std::size_t i = 0; i < way.size(); ++i) {
            EXPECT_EQ(way[i].medium, c.way[i].medium) << c.output << " " << c.direction;
            EXPECT_NEAR(way[i].from, c.way[i].from, 1e-9) << c.output << " " << c.direction;
            EXPECT_NEAR(way[i].to, c.way[i].to, 1e-9) << c.output << " " << c.direction;
        }
    }
}

TEST_F(PlaybackRouteTest, CutsAreNotJoined) {
    auto item = std::make_shared<PlaybackItem>();
    item->media.asset.media = {{"clip.mov", 0, nullptr}};
    item->media.asset.video = {segment(0, 0, 1, 0, 1), segment(0, 5, 6, 1, 2)};
    const PlaybackRoute cut(item, numbers);
    EXPECT_EQ(cut.ahead({0.5}, 1, 1, PictureSource::exact).size(), 2U);
    EXPECT_EQ(cut.ahead({1.5}, -1, 1, PictureSource::exact).size(), 2U);
    EXPECT_TRUE(cut.sharesMediaWith(route));
    EXPECT_FALSE(cut.hasProxy());
    EXPECT_EQ(cut.at({0.5}, PictureSource::proxy)->medium, clip);
}

TEST_F(PlaybackRouteTest, MediaKeepTheirNumbers) {
    EXPECT_EQ((std::set{clip, preview, proxy}).size(), 3U);
    ASSERT_TRUE(route.medium(clip));
    EXPECT_EQ(route.medium(clip)->url, "clip.mov");
    EXPECT_EQ(route.medium(preview)->url, "preview.mov");
    EXPECT_EQ(route.medium(proxy)->url, "proxy.mov");
    EXPECT_FALSE(route.medium(99));
    EXPECT_TRUE(route.hasProxy());

    const auto other = std::make_shared<PlaybackItem>();
    other->media.asset.media = {{"other.mov", 0, nullptr}};
    other->media.asset.video = {segment(0, 0, 1, 0, 1)};
    other->proxy = CompositionMedium{"proxy.mov", 1, nullptr};
    other->proxiedMedium = 5; // none
    const PlaybackRoute elsewhere(other, numbers);
    EXPECT_FALSE(elsewhere.sharesMediaWith(route));
    EXPECT_FALSE(elsewhere.hasProxy());
    EXPECT_FALSE(elsewhere.medium(clip));

    const PlaybackRoute empty(std::make_shared<PlaybackItem>(), numbers);
    EXPECT_FALSE(empty.at({0}, PictureSource::exact));
    EXPECT_TRUE(empty.ahead({0}, 1, 5, PictureSource::exact).empty());
    EXPECT_EQ(empty.duration(), 0);
}

} // namespace
} // namespace flowtide
