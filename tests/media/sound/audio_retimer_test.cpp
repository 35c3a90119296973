// Placement of decoded sound and its resampling along the map.
#include "core/curve_engine.h"
#include "media/flowtide_error.h"
#include "media/sound/audio_retimer.h"
#include "tests/support/scripted_media.h"

#include <gtest/gtest.h>

#include <cmath>

namespace flowtide::test {
namespace {

ImportedClip clipWithSound(double duration, double rate, std::int64_t channels) {
    ImportedClip clip;
    clip.duration = duration;
    clip.audio.emplace();
    clip.audio->sampleRate = rate;
    clip.audio->channelCount = channels;
    return clip;
}

TEST(AudioDecoding, BlocksLieWhereTheirTimesSay) {
    MediaScript script;
    script.audioBlocks = {{{-0.2}, {9, 9, 1, 2}}, // begins two samples before the clip
                          {{0.1}, {8, 3}},        // overlaps what is there by one
                          {{0.5}, {4, 5}},        // two samples missing before it
                          {{0.7}, {6, 7}}};
    const AudioData audio = AudioDecoding::readAll(ScriptedBackend(script), clipWithSound(10, 10, 1), {0, 10});
    EXPECT_EQ(audio.firstFrame, 0);
    EXPECT_EQ(audio.samples, (std::vector<float>{1, 2, 3, 0, 0, 4, 5, 6, 7}));
}

TEST(AudioDecoding, OnlyTheRangeIsKept) {
    MediaScript script;
    AudioBlock block{{0}, std::vector<float>(2000)};
    for (std::size_t i = 0; i < block.samples.size(); ++i) {
        const std::size_t sampleFrame = i / 2;
        block.samples[i] = static_cast<float>(sampleFrame);
    }
    script.audioBlocks = {block};
    const AudioData audio = AudioDecoding::readAll(ScriptedBackend(script), clipWithSound(10, 100, 2), {5, 6});
    EXPECT_GT(audio.firstFrame, 400);
    EXPECT_EQ(audio.samples.front(), static_cast<float>(audio.firstFrame));
    EXPECT_GE(audio.firstFrame + audio.frameCount(), 602);
    EXPECT_LT(audio.frameCount(), 120);
}

TEST(AudioDecoding, TheLimitCountsTheRangeThatIsDecoded) {
    MediaScript script;
    script.audioBlocks = {{{0}, {1, 1}}};
    const double longest = 134'217'728.0 / (48'000 * 2); // seconds of stereo in 512 MB of 32-bit floats
    const ImportedClip clip = clipWithSound(4000, 48'000, 2);
    const auto refusal = [&](SourceRange range) -> std::string {
        try {
            AudioDecoding::readAll(ScriptedBackend(script), clip, range);
            return "";
        } catch (const FlowtideError& error) {
            return error.what();
        }
    };
    const char* sentence = "Asset reader failed: This clip's decoded audio exceeds the 512 MB export limit. Use a "
                           "shorter source clip.";
    EXPECT_EQ(refusal({0, 1}), "");
    EXPECT_EQ(refusal({1000, 1000 + longest - 0.001}), "");
    EXPECT_EQ(refusal({1000, 1000 + longest + 0.001}), sentence);
    EXPECT_EQ(refusal({0, longest - 0.001}), "");
    EXPECT_EQ(refusal({0, longest + 0.001}), sentence);
    EXPECT_EQ(refusal({4000 - longest + 0.001, 1e9}), ""); // nothing is decoded behind the clip's end
}

TEST(AudioRetimer, InterpolatesNeighboursAndFallsSilentOutside) {
    AudioData audio{{10, -10, 20, -20, 40, -40}, 10, 2, 0};
    // Three samples of a clip that goes on for 0.6 s, at half speed.
    const TimeMap map({{0, 0}, {0.6, 1.2}}, {0, 0.6}, 1.2);
    AudioRetimer retimer(audio, map);
    EXPECT_EQ(retimer.totalFrames(), 12);
    std::vector<float> out(24);
    retimer.render(0, std::span(out).first(10));
    retimer.render(5, std::span(out).subspan(10));
    const float expected[] = {10, 15, 20, 30, 40, 40, 0, 0, 0, 0, 0, 0};
    for (std::size_t n = 0; n < 12; ++n) {
        EXPECT_NEAR(out[2 * n], expected[n], 1e-4) << n;
        EXPECT_EQ(out[2 * n + 1], -out[2 * n]) << n;
    }
}

TEST(AudioRetimer, ChunksMatchAnyOtherCutting) {
    AudioData audio{{}, 8000, 1, 0};
    for (int n = 0; n < 16'000; ++n)
        audio.samples.push_back(static_cast<float>(chirp(n / 8000.0, 0)));
    SpeedKeyframes keyframes;
    for (const auto& [time, speed] : {std::pair{0.0, 1.0}, {0.7, 0.2}, {1.4, 3.0}, {2.0, 1.0}})
        keyframes.push_back({Uuid::random(), time, speed});
    const TimeMap map = CurveEngine::buildTimeMap(keyframes, 2, std::nullopt, 1000, 0.5);
    const auto rendered = [&](std::size_t chunk) {
        AudioRetimer retimer(audio, map);
        std::vector<float> out(static_cast<std::size_t>(retimer.totalFrames()));
        for (std::size_t first = 0; first < out.size(); first += chunk)
            retimer.render(static_cast<std::int64_t>(first),
                           std::span(out).subspan(first, std::min(chunk, out.size() - first)));
        return out;
    };
    EXPECT_EQ(rendered(8192), rendered(1));
}

} // namespace
} // namespace flowtide::test
