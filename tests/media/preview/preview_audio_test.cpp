// The preview's sound, sample by sample, and how it fails.
#include "core/curve_engine.h"
#include "media/ffmpeg/ffmpeg_backend.h"
#include "media/flowtide_error.h"
#include "media/preview/preview_audio.h"
#include "tests/support/scripted_media.h"
#include "tests/support/temporary_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

namespace flowtide {
namespace {

AudioData chirpSound(double seconds, double rate, int channels) {
    AudioData sound{{}, rate, channels, 0, 0};
    for (int n = 0; n < static_cast<int>(seconds * rate); ++n)
        for (int channel = 0; channel < channels; ++channel)
            sound.samples.push_back(static_cast<float>(test::chirp(n / rate, channel)));
    return sound;
}

TEST(PreviewAudio, HoldsTheRetimedSoundToTheSample) {
    const auto backend = makeFFmpegBackend();
    const test::TemporaryFolder folder;
    TemporaryItems items(folder.path());
    const PreviewAudio preview(*backend, items);
    const SpeedKeyframes ramp{{{}, 0.5, 1, SpeedKeyframeRole::curve}, {{}, 1.5, 0.5, SpeedKeyframeRole::curve}};
    const TimeMap map = CurveEngine::buildTimeMap(ramp, 2, std::nullopt, 1000, 0);
    for (const auto& [rate, channels] : std::vector<std::pair<double, int>>{{48'000, 2}, {44'100, 1}, {8'000, 6}}) {
        const AudioData sound = chirpSound(2, rate, channels);
        const auto path = preview.render(sound, map);
        EXPECT_EQ(path.extension(), ".caf");

        ImportedClip file;
        file.url = path;
        file.duration = map.outputDuration();
        file.audio = AudioTrack{rate, channels, "", linearPCM, false, 32, {}};
        const AudioData heard = AudioDecoding::readAll(*backend, file, {0, file.duration});
        ASSERT_EQ(heard.frameCount(), std::llround(map.outputDuration() * rate));
        // Between two samples a straight line strays from a sine by at most a²/8 of its amplitude, a the angle that it
        // goes through from one to the other: at the sweep's end 500 + 300 Hz of it.
        const double angle = 2 * 3.14159265 * 800 / rate;
        for (std::int64_t n = 0; n < heard.frameCount(); ++n)
            for (int channel = 0; channel < channels; ++channel) {
                const double source = map.sourceTime({static_cast<double>(n) / rate}).value;
                if (source > 2 - 2 / rate) break; // past the last sample there is nothing to go to
                ASSERT_NEAR(static_cast<double>(heard.samples[static_cast<std::size_t>(n * channels + channel)]),
                            test::chirp(source, channel), 0.5 * angle * angle / 8 + 1e-5)
                    << n;
            }
    }
}

TEST(PreviewAudio, KeepsWhatIsTooQuietForFewerBitsAndWhatIsTooLoud) {
    const auto backend = makeFFmpegBackend();
    const test::TemporaryFolder folder;
    TemporaryItems items(folder.path());
    for (const float level : {1e-6F, 3.0F}) {
        const AudioData sound{std::vector<float>(4'800, level), 48'000, 1, 0, 0};
        ImportedClip file;
        file.url = PreviewAudio(*backend, items).render(sound, TimeMap({{0, 0}, {0.1, 0.1}}, {0, 0.1}, 0.1));
        file.duration = 0.1;
        file.audio = AudioTrack{48'000, 1, "", linearPCM, false, 32, {}};
        const AudioData heard = AudioDecoding::readAll(*backend, file, {0, file.duration});
        ASSERT_EQ(heard.frameCount(), 4'800);
        EXPECT_FLOAT_EQ(heard.samples[2'400], level);
    }
}

TEST(PreviewAudio, IsWrittenInBuffersOfItsSize) {
    const test::TemporaryFolder folder;
    TemporaryItems items(folder.path());
    std::vector<std::size_t> sizes;
    test::MediaScript script;
    script.onAppendSound = [&](std::span<const float> samples) { sizes.push_back(samples.size()); };
    const test::ScriptedBackend backend(script);
    const TimeMap map({{0, 0}, {2, 2}}, {0, 2}, 2);
    PreviewAudio(backend, items).render(chirpSound(2, 44'100, 2), map);
    EXPECT_THAT(sizes, testing::ElementsAre(65'536, 65'536, 2 * (88'200 - 65'536)));
}

TEST(PreviewAudio, SaysWhatWentWrongAndLeavesNothing) {
    const auto backend = makeFFmpegBackend();
    const test::TemporaryFolder folder;
    TemporaryItems items(folder.path());
    const TimeMap map({{0, 0}, {1, 1}}, {0, 1}, 1);
    const auto sentence = [&](const MediaBackend& with, TemporaryItems& owner, const AudioData& sound) -> std::string {
        const auto before = folder.names();
        try {
            static_cast<void>(PreviewAudio(with, owner).render(sound, map));
        } catch (const FlowtideError& error) {
            for (const std::string& name : folder.names())
                EXPECT_FALSE(name.starts_with("LoftwellPreviewAudio")) << name;
            return error.what();
        }
        return "";
    };
    for (const auto& [rate, channels] : std::vector<std::pair<double, std::int64_t>>{
             {48'000, 0}, {0, 2}, {std::nan(""), 2}, {1e12, 1}, {48'000, 1'000'000}})
        EXPECT_EQ(sentence(*backend, items, {{}, rate, channels, 0, 0}), "Unsupported preview audio format.")
            << rate << " Hz, " << channels;

    const test::ScriptedBackend anything(test::MediaScript{});
    for (const std::int64_t channels : {std::int64_t{1} << 50, std::int64_t{1} << 62})
        EXPECT_EQ(sentence(anything, items, {{}, 48'000, channels, 0, 0}), "Could not allocate preview audio.");

    test::MediaScript full;
    full.onAppendSound = [](auto) { throw FlowtideError::writerFailed("No space left on device (error 28)"); };
    EXPECT_EQ(sentence(test::ScriptedBackend(full), items, chirpSound(1, 8'000, 1)),
              "Asset writer failed: No space left on device (error 28)");
    test::writeFile(folder / "file", "");
    TemporaryItems nowhere(folder / "file");
    EXPECT_THAT(sentence(*backend, nowhere, chirpSound(1, 8'000, 1)),
                testing::StartsWith("Could not write preview audio: "));
}

} // namespace
} // namespace flowtide
