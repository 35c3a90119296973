// Where reading starts, where it ends, and what stops it on the way.
#include "media/ffmpeg/ffmpeg_backend.h"
#include "media/flowtide_error.h"
#include "tests/support/clip_maker.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

namespace flowtide::test {
namespace {

class VideoReaderTest : public testing::Test {
protected:
    ImportedClip make(const char* name, const ClipRecipe& recipe) {
        makeClip(*backend_, folder_ / name, recipe);
        return ImportedClip::load(*backend_, folder_ / name);
    }
    std::unique_ptr<MediaBackend> backend_ = makeFFmpegBackend();
    TemporaryFolder folder_;
};

TEST_F(VideoReaderTest, CancelIsHeardOnTheWayToTheRange) {
    ClipRecipe recipe;
    recipe.frameCount = 240;
    recipe.frameNumber = [](std::int64_t) { return 1; }; // no cut, so one key frame: every way starts at the first
    const ImportedClip clip = make("in.mov", recipe);
    int asked = 0;
    const auto reader = backend_->openVideo(clip, {}, {9, 9.5}, [&] { return ++asked == 20; });
    try {
        reader->next();
        FAIL() << "read the range after all";
    } catch (const FlowtideError& error) {
        EXPECT_EQ(error.kind(), FlowtideError::Case::exportCancelled);
    }
    EXPECT_EQ(asked, 20);
}

} // namespace
} // namespace flowtide::test
