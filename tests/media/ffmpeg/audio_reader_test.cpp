// Where the sound of a range starts and ends, and what is said about sound that cannot be decoded.
#include "media/ffmpeg/ffmpeg_backend.h"
#include "media/flowtide_error.h"
#include "media/sound/audio_decoding.h"
#include "tests/support/clip_maker.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

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
