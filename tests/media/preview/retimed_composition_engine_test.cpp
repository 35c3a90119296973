// The arithmetic of segments: how many, how long, and that no rounding adds up.
#include "core/curve_engine.h"
#include "media/flowtide_error.h"
#include "media/preview/retimed_composition_engine.h"
#include "tests/support/scripted_media.h"
#include "tests/support/temporary_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace flowtide {
namespace {

std::shared_ptr<ImportedClip> clip(double duration, double frameRate, bool hasAudio = false) {
    auto result = std::make_shared<ImportedClip>();
    result->url = "clip.mov";
    result->duration = duration;
    result->frameRate = frameRate;
    result->video.encodedWidth = result->width = 1920;
    result->video.encodedHeight = result->height = 1080;
    if (hasAudio) result->audio = AudioTrack{48'000, 2, "stereo", aac, false, 0, {}};
    return result;
}

SpeedKeyframes curve(const std::vector<std::pair<double, double>>& points) {
    SpeedKeyframes result;
    for (const auto& [time, speed] : points)
        result.push_back({{}, time, speed, SpeedKeyframeRole::curve});
    return result;
}

RetimedCompositionRequest request(std::shared_ptr<const ImportedClip> source, SpeedKeyframes keyframes = {}) {
    RetimedCompositionRequest result;
    result.clip = std::move(source);
    result.keyframes = std::move(keyframes);
    return result;
}

TEST(RetimedCompositionEngine, CutsAsManySegmentsAsTheRateAsksFor) {
    struct Case {
        double duration;
        double frameRate;
        std::optional<double> segmentRate;
        std::int64_t most;
        std::size_t expected;
    };
    for (const Case& each : std::vector<Case>{
             {10, 30, {}, 10'000, 300},
             {10, 120, {}, 10'000, 600},
             {10, 15, {}, 10'000, 240},
             {10, 24, {}, 10'000, 240},
             {10, 60, {}, 10'000, 600},
             {10.01, 30, {}, 10'000, 301}, // rounded up: no segment is longer than a frame
             {10, 30, 5.0, 10'000, 50},
             {10, 30, 240.0, 10'000, 2400},
             {10, 30, {}, 100, 100},
             {10, 30, {}, 0, 1},
             {10, 30, 0.0, 10'000, 1},
             {10, 30, std::nan(""), 10'000, 1},
             {10, 30, 1e300, 1000, 1000},
         }) {
        auto asked = request(clip(each.duration, each.frameRate));
        asked.segmentRate = each.segmentRate;
        asked.maximumSegmentCount = each.most;
        const RetimedMedia media = RetimedCompositionEngine::build(asked);
        EXPECT_EQ(media.asset.video.size(), each.expected) << each.duration << " s at " << each.frameRate;
        EXPECT_EQ(media.asset.video.back().sourceEnd, CompositionTime::nearest(each.duration));
        EXPECT_EQ(media.asset.duration().value, CompositionTime::nearest(each.duration)->seconds());
    }
}

TEST(RetimedCompositionEngine, EverySegmentRunsAtTheSpeedOfItsMiddle) {
    auto asked = request(clip(4'000, 29.97), curve({{100, 1}, {1'500, 0.25}, {2'000, 8}, {3'900, 1}}));
    asked.sourceRange = SourceRange{37.123456, 3'777.7};
    asked.smoothing = 0.7;
    const RetimedMedia media = RetimedCompositionEngine::build(asked);
    const double length = 3'777.7 - 37.123456;
    const auto count = static_cast<std::size_t>(std::ceil(length * 29.97));
    ASSERT_EQ(media.asset.video.size(), count);
    long double output = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const CompositionSegment& segment = media.asset.video[i];
        const double start = 37.123456 + static_cast<double>(i) * length / static_cast<double>(count);
        const double end = 37.123456 + static_cast<double>(i + 1) * length / static_cast<double>(count);
        EXPECT_EQ(segment.medium, 0U);
        ASSERT_NEAR(static_cast<double>(segment.sourceStart.ticks), start * 60'000, 0.51) << i;
        ASSERT_NEAR(static_cast<double>(segment.outputStart.ticks), static_cast<double>(output * 60'000), 0.51) << i;
        output += (end - start) /
                  CurveEngine::value((start + end) / 2, asked.keyframes, asked.smoothing, CurveEngine::speedLimits);
        ASSERT_NEAR(static_cast<double>(segment.sourceEnd.ticks), end * 60'000, 0.51) << i;
        ASSERT_NEAR(static_cast<double>(segment.outputEnd.ticks), static_cast<double>(output * 60'000), 0.51) << i;
        if (i > 0) {
            ASSERT_EQ(segment.outputStart, media.asset.video[i - 1].outputEnd) << i;
            ASSERT_EQ(segment.sourceStart, media.asset.video[i - 1].sourceEnd) << i;
        }
    }
    EXPECT_EQ(media.asset.media.at(0).url, "clip.mov");
    EXPECT_EQ(media.asset.media.at(0).clip, asked.clip);
}

TEST(RetimedCompositionEngine, TheMapIsWhatTheCompositionShows) {
    // The speed rises evenly from 1 to 3 over two seconds: the output lasts ln(3) seconds.
    auto asked = request(clip(2, 60), curve({{0, 1}, {2, 3}}));
    asked.smoothing = 0;
    const RetimedMedia media = RetimedCompositionEngine::build(asked);
    EXPECT_NEAR(media.timeMap.outputDuration(), std::log(3.0), 1e-4);
    EXPECT_EQ(media.timeMap.sourceRange(), (SourceRange{0, 2}));
    EXPECT_EQ(media.timeMap.outputDuration(), media.asset.duration().value);
    for (double output = 0; output <= media.timeMap.outputDuration(); output += 0.0007)
        EXPECT_NEAR(media.asset.videoAt({output})->fileSeconds, media.timeMap.sourceTime({output}).value, 1e-12);
    // A frame's own time comes back through map and composition as the frame that it means.
    for (int frame = 0; frame < 120; ++frame) {
        const OutputSeconds output = media.timeMap.outputTime({frame / 60.0});
        EXPECT_NEAR(media.asset.videoAt(output)->fileSeconds, frame / 60.0, 1e-12);
    }
}

TEST(RetimedCompositionEngine, WhatIsShorterThanATickJoinsItsNeighbour) {
    auto asked = request(clip(1, 30), curve({{0, 100}}));
    asked.segmentRate = 100'000.0; // each far less than a tick of output
    const RetimedMedia media = RetimedCompositionEngine::build(asked);
    ASSERT_FALSE(media.asset.video.empty());
    CompositionTime source;
    CompositionTime output;
    for (const CompositionSegment& segment : media.asset.video) {
        EXPECT_EQ(segment.sourceStart, source);
        EXPECT_EQ(segment.outputStart, output);
        EXPECT_GT(segment.outputEnd, output);
        EXPECT_GT(segment.sourceEnd, source);
        source = segment.sourceEnd;
        output = segment.outputEnd;
    }
    EXPECT_EQ(source.ticks, 60'000);
    EXPECT_EQ(output.ticks, 600);
}

TEST(RetimedCompositionEngine, ARangeOfNoLengthIsEmpty) {
    for (const SourceRange range : {SourceRange{1, 1}, SourceRange{2, 1}}) {
        auto asked = request(clip(4, 30));
        asked.sourceRange = range;
        const RetimedMedia media = RetimedCompositionEngine::build(asked);
        EXPECT_TRUE(media.asset.video.empty());
        EXPECT_EQ(media.asset.duration(), OutputSeconds{0});
    }
}

TEST(RetimedCompositionEngine, SaysWhatCannotBeBuilt) {
    const auto sentence = [](const RetimedCompositionRequest& asked) -> std::string {
        try {
            RetimedCompositionEngine::build(asked);
        } catch (const FlowtideError& error) {
            EXPECT_EQ(error.kind(), FlowtideError::Case::compositionFailed);
            return error.what();
        }
        return "";
    };
    auto soundOnly = clip(4, 30, true);
    soundOnly->video.encodedWidth = 0;
    EXPECT_EQ(sentence(request(soundOnly)), "Composition failed: Could not create video composition track");
    auto endless = request(clip(4, 30));
    endless.sourceRange = SourceRange{0, std::numeric_limits<double>::infinity()};
    endless.maximumSegmentCount = 10;
    EXPECT_THAT(sentence(endless), testing::StartsWith("Composition failed: Could not insert video segment 0: "));
    auto distant = request(clip(4, 30));
    distant.sourceRange = SourceRange{0, 1e16};
    distant.maximumSegmentCount = 100;
    // 9e18 ticks are 1.5e14 seconds, which the second of a hundred segments passes.
    EXPECT_THAT(sentence(distant), testing::StartsWith("Composition failed: Could not insert video segment 1: "));
}

TEST(RetimedCompositionEngine, SoundIsStretchedOrRenderedOrAbsent) {
    const test::TemporaryFolder folder;
    TemporaryItems items(folder.path());
    const test::ScriptedBackend backend(test::MediaScript{});
    const PreviewAudio renderer(backend, items);
    AudioData sound{std::vector<float>(48'000), 48'000, 2, 0, 0};

    auto asked = request(clip(2, 30, true), curve({{0, 0.5}}));
    const RetimedMedia stretched = RetimedCompositionEngine::build(asked);
    EXPECT_EQ(stretched.asset.audio, stretched.asset.video);
    EXPECT_EQ(stretched.audioMix, AudioMix{TimePitchAlgorithm::varispeed});
    EXPECT_TRUE(stretched.stretchesAudio);
    EXPECT_FALSE(stretched.renderedAudioURL);

    asked.previewAudio.emplace(PreviewAudioSource{sound, renderer});
    const RetimedMedia rendered = RetimedCompositionEngine::build(asked);
    EXPECT_TRUE(rendered.asset.audio.empty());
    EXPECT_FALSE(rendered.stretchesAudio);
    EXPECT_FALSE(rendered.audioMix);
    ASSERT_TRUE(rendered.renderedAudioURL);
    EXPECT_TRUE(std::filesystem::exists(*rendered.renderedAudioURL));

    asked.includeAudio = false;
    const RetimedMedia silent = RetimedCompositionEngine::build(asked);
    asked.includeAudio = true;
    asked.clip = clip(2, 30, false);
    for (const RetimedMedia& media : {silent, RetimedCompositionEngine::build(asked)}) {
        EXPECT_TRUE(media.asset.audio.empty());
        EXPECT_FALSE(media.audioMix || media.renderedAudioURL || media.stretchesAudio);
    }
}

TEST(RetimedCompositionEngine, LaysCachedPreviewsIn) {
    auto asked = request(clip(4, 30), curve({{0, 0.5}}));
    RenderedPreview preview;
    preview.url = "preview.mov";
    preview.timeMap = TimeMap({{1, 0}, {2, 2}}, {1, 2}, 2);
    asked.cachedPreviews = {preview};
    const RetimedMedia media = RetimedCompositionEngine::build(asked);
    EXPECT_EQ(media.asset.videoAt({3})->medium, 1U);
    EXPECT_NEAR(media.asset.videoAt({3})->fileSeconds, 1, 1e-4);
    EXPECT_EQ(media.asset.videoAt({4.5})->medium, 0U);
}

} // namespace
} // namespace flowtide
