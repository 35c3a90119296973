// Where reading starts, where it ends, and what stops it on the way.
#include "media/decode_layout.h"
#include "media/ffmpeg/ffmpeg_backend.h"
#include "media/flowtide_error.h"
#include "tests/media/ffmpeg/remux.h"
#include "tests/media/flow/drawn_scenes.h"
#include "tests/support/clip_maker.h"
#include "tests/support/movie_atoms.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace flowtide::test {
namespace {

class VideoReaderTest : public testing::Test {
protected:
    ImportedClip make(const char* name, const ClipRecipe& recipe) {
        makeClip(*backend_, folder_ / name, recipe);
        return ImportedClip::load(*backend_, folder_ / name);
    }
    /// The numbers of the frames from the last one at or before a range to its end, each checked to be at its time.
    std::vector<std::int64_t> numbersIn(const ImportedClip& clip, SourceRange range) {
        const auto reader = backend_->openVideo(clip, decodePixelFormat(clip), range);
        std::vector<std::int64_t> numbers;
        std::vector<double> times;
        for (auto frame = reader->next(); frame && frame->time.value < range.upper - 1e-6; frame = reader->next()) {
            numbers.push_back(numberOf(frame->frame).value_or(-1));
            times.push_back(frame->time.value);
        }
        const double interval = clip.frameDuration.seconds();
        for (std::size_t i = 0; i < times.size(); ++i)
            EXPECT_NEAR(times[i], times[0] + static_cast<double>(i) * interval, 1e-6);
        return numbers;
    }
    std::unique_ptr<MediaBackend> backend_ = makeFFmpegBackend();
    TemporaryFolder folder_;
};

TEST_F(VideoReaderTest, ColumnsThatAreCroppedFromTheLeftAreNotRead) {
    ClipRecipe recipe;
    recipe.frameCount = 2;
    recipe.picture = [](std::int64_t) { return drawn({}, 96, 64, [](double x, double) { return 40 + 2 * x; }); };
    makeClip(*backend_, folder_ / "whole.mp4", recipe);
    remux({folder_ / "whole.mp4"}, folder_ / "in.mp4", {}, "h264_metadata=crop_left=20");
    const ImportedClip clip = ImportedClip::load(*backend_, folder_ / "in.mp4");
    const auto read = backend_->openVideo(clip, decodePixelFormat(clip), {0, clip.duration})->next();
    ASSERT_TRUE(read);
    ASSERT_EQ(read->frame.width, 76);
    for (const int x : {0, 40, 75})
        EXPECT_NEAR(read->frame.planes[0].data[32 * read->frame.planes[0].stride + x], 40 + 2 * (20 + x), 3) << x;
}

TEST_F(VideoReaderTest, EditsPlayOneAfterTheOther) {
    const std::vector<SourceRange> lists[] = {{{0, 3}, {6, 8}}, {{0, 2}, {1, 3}, {0, 2}}, {{2, 4}, {2, 4}}};
    for (const auto& edits : lists) {
        ClipRecipe recipe;
        recipe.frameCount = 250;
        makeClip(*backend_, folder_ / "in.mp4", recipe);
        setEdits(folder_ / "in.mp4", edits);
        const ImportedClip clip = ImportedClip::load(*backend_, folder_ / "in.mp4");
        std::vector<std::int64_t> wanted;
        for (const SourceRange& edit : edits)
            for (auto number = std::lround(edit.lower * 25); number < std::lround(edit.upper * 25); ++number)
                wanted.push_back(number);
        EXPECT_EQ(numbersIn(clip, {0, clip.duration}), wanted);
        for (std::size_t first = 1; first + 12 < wanted.size(); first += 7) {
            const auto trimmed =
                numbersIn(clip, {static_cast<double>(first) / 25, static_cast<double>(first + 10) / 25});
            const auto begin = wanted.begin() + static_cast<std::ptrdiff_t>(first);
            EXPECT_EQ(trimmed, std::vector(begin, begin + 10)) << first;
        }
    }
}

TEST_F(VideoReaderTest, AFileThatEndsEarlyIsAFailureWhereItsPicturesAreAskedFor) {
    for (const bool edited : {false, true}) {
        ClipRecipe recipe;
        recipe.frameCount = 100;
        recipe.sampleRate = 48'000; // sound in between makes several chunks of the pictures
        makeClip(*backend_, folder_ / "in.mp4", recipe);
        if (edited) setEdits(folder_ / "in.mp4", {{0, 1}, {2, 3.6}});
        loseLastChunk(folder_ / "in.mp4", 0);
        const ImportedClip clip = ImportedClip::load(*backend_, folder_ / "in.mp4");
        EXPECT_EQ(numbersIn(clip, {0, 1}).size(), 25U);
        try {
            const auto reader = backend_->openVideo(clip, decodePixelFormat(clip), {0, clip.duration});
            while (reader->next()) {
            }
            ADD_FAILURE() << edited;
        } catch (const FlowtideError& error) {
            EXPECT_STREQ(error.what(), "Asset reader failed: Video decode failed mid-file");
        }
    }
}

TEST_F(VideoReaderTest, ARangeStartsAtItsFrameEvenWhereTheNextKeyFrameIsNone) {
    ClipRecipe recipe;
    recipe.frameCount = 150;
    recipe.picture = [](std::int64_t i) { return numberedFrame({}, 96, 64, i / 50); };
    const ImportedClip clip = make("in.mp4", recipe);
    const auto shown = [&](double start) {
        const auto reader = backend_->openVideo(clip, decodePixelFormat(clip), {start, start + 0.2});
        const auto frame = reader->next();
        return frame ? frame->time.value : -1;
    };
    // The file says that only the first frame, and one that needs those before it, can be started from.
    changeMovie(clip.url, [](MovieAtom& movie) {
        movie.track(0).at({"mdia", "minf", "stbl", "stss"}).bytes =
            bytesOf32(0) + bytesOf32(2) + bytesOf32(1) + bytesOf32(40);
    });
    for (const double start : {1.68, 1.8, 1.96})
        EXPECT_NEAR(shown(start), start, 1e-6);
}

TEST_F(VideoReaderTest, WhereNothingDecodesTheWayBackCostsLittleMoreThanTheClip) {
    ClipRecipe recipe;
    recipe.frameCount = 1000;
    makeClip(*backend_, folder_ / "in.mp4", recipe);
    const std::size_t end = readFile(folder_ / "in.mp4").rfind("moov");
    damageChunk(folder_ / "in.mp4", 0, 0, end / 8, end / 4 * 3);
    const ImportedClip clip = ImportedClip::load(*backend_, folder_ / "in.mp4");
    int packets = 0;
    const auto reader = backend_->openVideo(clip, decodePixelFormat(clip), {33, 34}, [&] { return ++packets < 0; });
    reader->next();
    EXPECT_GT(packets, 900);  // all the way to the start
    EXPECT_LT(packets, 4000); // steps of a fixed length would read the clip over and over
}

TEST_F(VideoReaderTest, SkippingJumpsToTheLastKeyFrameAndLosesNothingBehindTheTime) {
    ClipRecipe recipe;
    recipe.frameCount = 250; // with pictures that differ this much, key frames come every second or so
    const ImportedClip clip = make("in.mp4", recipe);
    for (const double time : {0.5, 3.0, 7.77, 9.0}) {
        int packets = 0;
        const auto reader =
            backend_->openVideo(clip, decodePixelFormat(clip), {0, clip.duration}, [&] { return ++packets < 0; });
        EXPECT_EQ(reader->next()->time.value, 0);
        reader->skipTo({time});
        std::vector<std::int64_t> numbers;
        while (const auto frame = reader->next())
            if (frame->time.value > time - 0.04) numbers.push_back(numberOf(frame->frame).value_or(-1));
        const auto first = static_cast<std::int64_t>(std::floor(time * 25 + 1e-6));
        ASSERT_EQ(numbers.size(), static_cast<std::size_t>(250 - first)) << time;
        for (std::size_t i = 0; i < numbers.size(); ++i)
            EXPECT_EQ(numbers[i], first + static_cast<std::int64_t>(i));
        EXPECT_LT(packets, 250 - first + 75) << time;
    }
}

TEST_F(VideoReaderTest, DamagedFramesAreCounted) {
    ClipRecipe recipe;
    recipe.frameCount = 100;
    recipe.sampleRate = 48'000;
    make("in.mp4", recipe);
    const auto concealed = [&] {
        const ImportedClip clip = ImportedClip::load(*backend_, folder_ / "in.mp4");
        const auto reader = backend_->openVideo(clip, decodePixelFormat(clip), {0, clip.duration});
        while (reader->next()) {
        }
        return reader->concealedFrameCount();
    };
    EXPECT_EQ(concealed(), 0);
    damageChunk(folder_ / "in.mp4", 0, 1, 60, 400);
    EXPECT_GT(concealed(), 0);
}

TEST_F(VideoReaderTest, APacketThatCannotBeDecodedTakesNoOtherFrameWithIt) {
    for (const auto& [name, codec] : {std::pair{"in.mp4", VideoCodec::h264}, {"in.mov", VideoCodec::proRes422}}) {
        ClipRecipe recipe;
        recipe.codec = codec;
        if (isProRes(codec)) recipe.layout = {ChromaSubsampling::yuv422, 10, false};
        recipe.frameCount = 50;
        recipe.sampleRate = 48'000; // sound in between gives every picture a chunk of its own
        make(name, recipe);
        const std::string whole = readFile(folder_ / name);
        for (const std::size_t damaged : {20U, 22U, 24U, 46U, 47U, 48U}) { // in the order of decoding
            writeFile(folder_ / name, whole);
            damageChunk(folder_ / name, 0, damaged, 0, 16);
            const ImportedClip clip = ImportedClip::load(*backend_, folder_ / name);
            for (const double end : {1.0, 2.0}) {
                const auto reader = backend_->openVideo(clip, decodePixelFormat(clip), {0, end});
                std::size_t frames = 0;
                while (const auto frame = reader->next())
                    if (frame->time.value < end - 1e-6) ++frames;
                EXPECT_GE(frames, 25 * end - 1) << name << " " << damaged;
                if (end < clip.duration) continue;
                EXPECT_EQ(frames, 49U) << name << " " << damaged;
                EXPECT_EQ(reader->concealedFrameCount(), 1) << name << " " << damaged;
            }
        }
    }
}

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
