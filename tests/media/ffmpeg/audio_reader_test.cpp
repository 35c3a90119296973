// Where the sound of a range starts and ends, and what is said about sound that cannot be decoded.
#include "media/ffmpeg/ffmpeg_backend.h"
#include "media/ffmpeg/handles.h"
#include "media/flowtide_error.h"
#include "media/sound/audio_decoding.h"
#include "tests/support/clip_maker.h"
#include "tests/support/movie_atoms.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace flowtide::test {
namespace {

class AudioReaderTest : public testing::Test {
protected:
    ImportedClip make(const char* name, const ClipRecipe& recipe) {
        makeClip(*backend_, folder_ / name, recipe);
        return ImportedClip::load(*backend_, folder_ / name);
    }
    std::unique_ptr<MediaBackend> backend_ = makeFFmpegBackend();
    TemporaryFolder folder_;
};

TEST_F(AudioReaderTest, EditsPlayOneAfterTheOther) {
    const struct {
        const char* name;
        FourCC format;
        double tolerance; // linear PCM's rounding; what an AAC encoder makes of a chirp
    } cases[] = {{"in.mov", linearPCM, 1e-4}, {"in.mp4", aac, 0.05}};
    for (const auto& [name, format, tolerance] : cases) {
        ClipRecipe recipe;
        recipe.frameCount = 250;
        recipe.sampleRate = 32'000; // edits that end between two packets of 1024 samples are rounded to one
        recipe.audioFormat = format;
        recipe.sound = chirp;
        makeClip(*backend_, folder_ / name, recipe);
        setEdits(folder_ / name, {{0, 3.2}, {6.4, 8}});
        const ImportedClip clip = ImportedClip::load(*backend_, folder_ / name);
        for (const SourceRange range : {SourceRange{0, 4.8}, {1.3, 2.2}, {2.5, 4.5}, {3.7, 4.7}}) {
            const AudioData audio = AudioDecoding::readAll(*backend_, clip, range);
            const auto last = static_cast<std::int64_t>(range.upper * 32'000) - 1;
            ASSERT_GE(audio.firstFrame + audio.frameCount(), last) << name;
            double worst = 0;
            for (auto n = static_cast<std::int64_t>(range.lower * 32'000); n < last; ++n) {
                const double seconds = static_cast<double>(n) / 32'000;
                if (seconds < 0.07 || std::abs(seconds - 3.2) < 0.07) continue; // blocks of AAC reach over cuts
                const float got = audio.samples[static_cast<std::size_t>(2 * (n - audio.firstFrame))];
                worst = std::max(
                    worst, std::abs(static_cast<double>(got) - chirp(seconds < 3.2 ? seconds : seconds + 3.2, 0)));
            }
            EXPECT_LE(worst, tolerance) << name << " from " << range.lower;
        }
    }
}

TEST_F(AudioReaderTest, SamplesThatAreNoNumbersAreSilent) {
    ClipRecipe recipe;
    recipe.sampleRate = 48'000;
    recipe.audioFormat = linearPCM;
    recipe.audioBitDepth = 32;
    recipe.sound = [](double seconds, int channel) {
        if (channel == 0 && seconds == 0.5) return std::nan("");
        return channel == 1 && seconds == 0.25 ? HUGE_VAL : 0.125;
    };
    const AudioData audio = AudioDecoding::readAll(*backend_, make("in.mov", recipe), {0, 1});
    EXPECT_EQ(audio.samples.at(2 * 24'000), 0);
    EXPECT_EQ(audio.samples.at(2 * 12'000 + 1), 0);
    EXPECT_EQ(std::count(audio.samples.begin(), audio.samples.end(), 0.125F),
              static_cast<std::ptrdiff_t>(audio.samples.size()) - 2);
}

TEST_F(AudioReaderTest, AFileThatEndsEarlyIsAFailureWhereItsSoundIsAskedFor) {
    for (const auto& [name, format] : {std::pair{"in.mov", linearPCM}, {"in.mp4", aac}}) {
        ClipRecipe recipe;
        recipe.frameCount = 100;
        recipe.sampleRate = 48'000;
        recipe.audioFormat = format;
        makeClip(*backend_, folder_ / name, recipe);
        loseLastChunk(folder_ / name, 1);
        const ImportedClip clip = ImportedClip::load(*backend_, folder_ / name);
        EXPECT_NO_THROW(AudioDecoding::readAll(*backend_, clip, {0, 3})) << name;
        try {
            AudioDecoding::readAll(*backend_, clip, {0, 4});
            ADD_FAILURE() << name;
        } catch (const FlowtideError& error) {
            EXPECT_STREQ(error.what(), "Asset reader failed: Audio decode failed mid-file");
        }
    }
}

TEST_F(AudioReaderTest, ARangeSoundsAsItDoesInTheWhole) {
    ClipRecipe recipe;
    recipe.frameCount = 100;
    recipe.sampleRate = 48'000;
    recipe.sound = chirp;
    const ImportedClip clip = make("in.mp4", recipe);
    const AudioData whole = AudioDecoding::readAll(*backend_, clip, {0, clip.duration});
    EXPECT_EQ(whole.damagedStretches, 0);
    for (const double start : {0.6, 1.0, 1.777, 3.2}) {
        const AudioData part = AudioDecoding::readAll(*backend_, clip, {start, start + 0.5});
        ASSERT_GE(part.frameCount(), 24'000);
        EXPECT_TRUE(std::equal(part.samples.begin(), part.samples.end(),
                               whole.samples.begin() + (part.firstFrame - whole.firstFrame) * part.channels))
            << start;
    }
}

TEST_F(AudioReaderTest, DamagedStretchesAreCountedAndSilent) {
    ClipRecipe recipe;
    recipe.frameCount = 200;
    recipe.sampleRate = 48'000;
    recipe.sound = chirp;
    make("in.mp4", recipe);
    for (const std::size_t chunk : {20U, 22U, 100U}) // two that touch, and one apart
        damageChunk(folder_ / "in.mp4", 1, chunk, 0, 4000);
    const ImportedClip clip = ImportedClip::load(*backend_, folder_ / "in.mp4");
    const AudioData audio = AudioDecoding::readAll(*backend_, clip, {0, clip.duration});
    EXPECT_EQ(audio.damagedStretches, 2);
    EXPECT_EQ(audio.frameCount(), 8 * 48'000);
}

TEST_F(AudioReaderTest, LinearPCMWhoseSampleSizeTheLibraryMisreadsIsRefused) {
    ClipRecipe recipe;
    recipe.frameCount = 10;
    recipe.sampleRate = 48'000;
    recipe.audioFormat = linearPCM;
    for (const char* code : {"ipcm", "fpcm"}) {
        makeClip(*backend_, folder_ / "in.mov", recipe);
        changeMovie(folder_ / "in.mov", [&](MovieAtom& movie) {
            movie.track(1).at({"mdia", "minf", "stbl", "stsd"}).children.front().type = code;
        });
        try {
            const ImportedClip clip = ImportedClip::load(*backend_, folder_ / "in.mov");
            AudioDecoding::readAll(*backend_, clip, {0, clip.duration});
            EXPECT_GE(avformat_version(), AV_VERSION_INT(60, 0, 0)) << code;
        } catch (const FlowtideError& error) {
            EXPECT_STREQ(error.what(), "Asset reader failed: Failed to read audio");
        }
    }
}

TEST_F(AudioReaderTest, CancelIsHeardWhileSoundIsRead) {
    ClipRecipe recipe;
    recipe.frameCount = 100;
    recipe.sampleRate = 48'000;
    recipe.sound = chirp;
    const ImportedClip clip = make("in.mp4", recipe);
    int asked = 0;
    try {
        AudioDecoding::readAll(*backend_, clip, {0, clip.duration}, [&] { return ++asked == 20; });
        FAIL() << "read everything after all";
    } catch (const FlowtideError& error) {
        EXPECT_EQ(error.kind(), FlowtideError::Case::exportCancelled);
    }
    EXPECT_EQ(asked, 20);
}

} // namespace
} // namespace flowtide::test
