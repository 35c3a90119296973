// Each channel of a clip's sound comes back as itself, whatever its layout is called.
#include "media/ffmpeg/ffmpeg_backend.h"
#include "media/flowtide_error.h"
#include "media/sound/audio_decoding.h"
#include "tests/support/clip_maker.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <numbers>

namespace flowtide::test {
namespace {

constexpr double sampleRate = 48'000;
constexpr std::int64_t firstMeasured = 6'000;
constexpr std::int64_t measured = 2'400; // every tone below has whole periods in it

/// A tone of its own for each channel; low ones where the channel carries nothing else.
double toneOf(int channel, int lowFrequencyChannel) {
    return channel == lowFrequencyChannel ? 60 : 400.0 + 160 * channel;
}

/// How loud a tone is in a channel, 0...1.
double amplitude(const AudioData& audio, std::int64_t channel, double frequency) {
    std::complex<double> sum;
    for (std::int64_t n = firstMeasured; n < firstMeasured + measured; ++n)
        sum += static_cast<double>(audio.samples[static_cast<std::size_t>(n * audio.channels + channel)]) *
               std::polar(1.0, -2 * std::numbers::pi * frequency * static_cast<double>(n) / sampleRate);
    return 2 * std::abs(sum) / static_cast<double>(measured);
}

TEST(AudioEncoder, ChannelsStayApartInEveryLayout) {
    const auto backend = makeFFmpegBackend();
    const TemporaryFolder folder;
    const struct {
        const char* layout;
        int channels;
        int lowFrequencyChannel = -1;
    } layouts[] = {{"mono", 1},
                   {"stereo", 2},
                   {"downmix", 2},
                   {"2.1", 3, 2},
                   {"3.0", 3},
                   {"3.0(back)", 3},
                   {"4.0", 4},
                   {"quad", 4},
                   {"quad(side)", 4},
                   {"3.1", 4, 3},
                   {"5.0", 5},
                   {"5.0(side)", 5},
                   {"4.1", 5, 3},
                   {"5.1", 6, 3},
                   {"5.1(side)", 6, 3},
                   {"6.0", 6},
                   {"6.0(front)", 6},
                   {"hexagonal", 6},
                   {"6.1", 7, 3},
                   {"6.1(back)", 7, 3},
                   {"6.1(front)", 7, 2},
                   {"7.0", 7},
                   {"7.0(front)", 7},
                   {"7.1", 8, 3},
                   {"7.1(wide)", 8, 3},
                   {"7.1(wide-side)", 8, 3},
                   {"octagonal", 8},
                   {"cube", 8},
                   {"FL+FR+BC+TC", 4},
                   {"", 1},
                   {"", 2},
                   {"", 3},
                   {"", 4},
                   {"", 5},
                   {"", 6},
                   {"", 7},
                   {"", 8}};
    const struct {
        const char* name;
        FourCC format;
    } files[] = {{"in.mov", linearPCM}, {"in.mov", aac}, {"in.mp4", aac}};
    for (const auto& [layout, channels, low] : layouts)
        for (const auto& [name, format] : files) {
            SCOPED_TRACE(std::string(layout) + " of " + std::to_string(channels) + " in " + name + " as " +
                         fourCCString(format));
            ClipRecipe recipe;
            recipe.frameCount = 10;
            recipe.sampleRate = sampleRate;
            recipe.channels = channels;
            recipe.channelLayout = layout;
            recipe.audioFormat = format;
            recipe.audioBitRate = 96'000 * channels;
            recipe.sound = [lowest = low](double seconds, int channel) {
                return 0.4 * std::sin(2 * std::numbers::pi * toneOf(channel, lowest) * seconds);
            };
            makeClip(*backend, folder / name, recipe);
            const ImportedClip clip = ImportedClip::load(*backend, folder / name);
            ASSERT_EQ(clip.audio->channelCount, channels);
            const AudioData audio = AudioDecoding::readAll(*backend, clip, {0, clip.duration});
            for (int channel = 0; channel < channels; ++channel)
                for (int tone = 0; tone < channels; ++tone)
                    EXPECT_NEAR(amplitude(audio, channel, toneOf(tone, low)), channel == tone ? 0.4 : 0, 0.04)
                        << channel << " has the tone of " << tone;
        }
}

TEST(AudioEncoder, MoreChannelsThanAACHasAreRefusedInASentence) {
    const auto backend = makeFFmpegBackend();
    const TemporaryFolder folder;
    ClipRecipe recipe;
    recipe.sampleRate = sampleRate;
    recipe.channels = 9;
    try {
        makeClip(*backend, folder / "in.mp4", recipe);
        FAIL() << "written after all";
    } catch (const FlowtideError& error) {
        EXPECT_STREQ(error.what(), "Asset writer failed: Cannot add audio input: AAC keeps at most 8 channels apart, "
                                   "and the source has 9. A QuickTime movie keeps linear PCM.");
    }
    recipe.audioFormat = linearPCM;
    EXPECT_NO_THROW(makeClip(*backend, folder / "in.mov", recipe));
}

} // namespace
} // namespace flowtide::test
