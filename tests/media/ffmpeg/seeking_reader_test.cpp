// A player's reader on real files: exact stretches from anywhere, whatever is left out.
#include "media/decode_layout.h"
#include "media/ffmpeg/ffmpeg_backend.h"
#include "tests/support/clip_maker.h"
#include "tests/support/movie_atoms.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

namespace flowtide::test {
namespace {

constexpr double frameSeconds = 1.0 / 25;
constexpr double infinity = std::numeric_limits<double>::infinity();

struct Movie {
    const char* name;
    VideoCodec codec;
    std::vector<SourceRange> edits{}; ///< seconds of the frames made
};

struct SeekingReaderTest : testing::TestWithParam<Movie> {
    struct Shown {
        double time;
        std::int64_t number;
    };

    SeekingReaderTest() {
        ClipRecipe recipe;
        recipe.codec = GetParam().codec;
        if (isProRes(recipe.codec)) recipe.layout = {ChromaSubsampling::yuv422, 10, false};
        recipe.frameCount = 150;
        makeClip(*backend, file, recipe);
        if (!GetParam().edits.empty()) setEdits(file, GetParam().edits);
        clip = ImportedClip::load(*backend, file);
        if (GetParam().edits.empty()) {
            for (std::int64_t i = 0; i < recipe.frameCount; ++i)
                frames.push_back({static_cast<double>(i) * frameSeconds, i});
        } else {
            // Which frames edits show is the other reader's business.
            const auto whole = backend->openVideo(clip, decodePixelFormat(clip), {0, clip.duration});
            while (const auto frame = whole->next())
                frames.push_back({frame->time.value, numberOf(frame->frame).value_or(-1)});
        }
        reader = backend->openForPlayback(clip, decodePixelFormat(clip), [this] { return ++asked == cancelAt; });
    }

    /// A frame is shown for exactly its interval, with nothing before the first one and nothing after the last.
    void expectExact(const SpannedFrame& frame) const {
        const auto found =
            std::ranges::find_if(frames, [&](const Shown& shown) { return std::abs(shown.time - frame.time) < 1e-6; });
        ASSERT_NE(found, frames.end()) << frame.time;
        EXPECT_EQ(numberOf(frame.frame), found->number) << frame.time;
        EXPECT_EQ(frame.from, found == frames.begin() ? -infinity : frame.time);
        const auto after = std::next(found);
        if (after == frames.end())
            EXPECT_EQ(frame.end, infinity);
        else
            EXPECT_NEAR(frame.end, after->time, 1e-6);
    }

    TemporaryFolder folder;
    std::filesystem::path file = folder / (isProRes(GetParam().codec) ? "clip.mov" : "clip.mp4");
    std::unique_ptr<MediaBackend> backend = makeFFmpegBackend();
    std::vector<Shown> frames; ///< all of the movie's
    ImportedClip clip;
    int asked = 0;
    int cancelAt = -1;
    std::unique_ptr<SeekingReader> reader;
};

TEST_P(SeekingReaderTest, DeliversEveryFrameInOrder) {
    EXPECT_EQ(reader->everyFrameIsKey(), isProRes(GetParam().codec));
    reader->seekTo(0);
    for (const Shown& shown : frames) {
        const auto frame = reader->next();
        ASSERT_TRUE(frame);
        EXPECT_NEAR(frame->time, shown.time, 1e-6);
        expectExact(*frame);
    }
    EXPECT_FALSE(reader->next());
    EXPECT_FALSE(reader->next());
    reader->seekTo(-5);
    EXPECT_EQ(numberOf(reader->next()->frame), frames[0].number) << "and again, after the end";
}

TEST_P(SeekingReaderTest, FindsTheFrameOfAnyTimeWithAndWithoutLeavingOut) {
    std::mt19937 random(3);
    const double duration = frames.back().time + frameSeconds;
    int packets = 0;
    for (int i = 0; i < 60; ++i) {
        const double time = (duration + 0.1) * static_cast<double>(random() % 1000) / 1000;
        asked = 0;
        reader->seekTo(time);
        EXPECT_LE(reader->keyFrameAt(time), time);
        if (i % 2 == 1) reader->skipTo(time);
        auto frame = reader->next();
        ASSERT_TRUE(frame) << time;
        EXPECT_LE(frame->from, time + frameReachedGraceSeconds);
        for (; frame && frame->end <= time + frameReachedGraceSeconds; frame = reader->next())
            expectExact(*frame);
        ASSERT_TRUE(frame) << time;
        EXPECT_LE(frame->from, time + frameReachedGraceSeconds) << "a frame that is shown was left out";
        expectExact(*frame);
        if (frame->end < infinity) packets = std::max(packets, asked);
    }
    EXPECT_TRUE(packets <= 1 || !reader->everyFrameIsKey()) << "one frame costs one packet";
}

TEST_P(SeekingReaderTest, GivesUpWhenToldToAndIsGoodForAnotherSeek) {
    asked = 0;
    cancelAt = 3;
    const auto readAll = [&] {
        reader->seekTo(1);
        while (reader->next()) {
        }
    };
    EXPECT_THROW(readAll(), FlowtideError);
    EXPECT_EQ(asked, 3);
    reader->seekTo(1);
    expectExact(*reader->next());
}

INSTANTIATE_TEST_SUITE_P(Movies, SeekingReaderTest,
                         testing::Values(Movie{"H264", VideoCodec::h264}, Movie{"HEVC", VideoCodec::hevc},
                                         Movie{"ProRes", VideoCodec::proRes422},
                                         Movie{"Edited", VideoCodec::h264, {{0, 0.4}, {3, 5}}}),
                         [](const auto& param) { return param.param.name; });

} // namespace
} // namespace flowtide::test
