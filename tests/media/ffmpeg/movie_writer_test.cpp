// Frames at times of their own, and what scrubbing asks of an encoder.
#include "media/export/temporary_export.h"
#include "media/ffmpeg/ffmpeg_backend.h"
#include "media/ffmpeg/movie_input.h"
#include "tests/support/clip_maker.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <utility>
#include <vector>

namespace flowtide {
namespace {

struct FrameTime {
    std::int64_t start;
    std::int64_t length;
};

std::filesystem::path written(const MediaBackend& backend, const std::filesystem::path& path, MediaTime timeBase,
                              const std::vector<FrameTime>& frames) {
    VideoSettings settings;
    settings.purpose = EncodingPurpose::scrubbing;
    settings.width = 96;
    settings.height = 64;
    settings.timeBase = timeBase;
    settings.averageBitRate = 1'000'000;
    TemporaryExport file(path);
    const auto writer = backend.createMovie(file, FileType::quickTimeMovie, {});
    writer->addVideo(settings);
    writer->start();
    std::int64_t number = 0;
    for (const FrameTime& frame : frames)
        writer->appendVideo(test::numberedFrame(settings.layout, 96, 64, number++), frame.start, frame.length);
    writer->finishVideo();
    writer->finish();
    file.moveIntoPlace();
    return path;
}

TEST(MovieWriter, KeepsFramesAtTheirOwnTimesToTheTick) {
    const auto backend = makeFFmpegBackend();
    const test::TemporaryFolder folder;
    // Even, uneven and late; the last frame's length is its own.
    for (const auto& [timeBase, frames] : std::vector<std::pair<MediaTime, std::vector<FrameTime>>>{
             {{1, 90'000}, {{0, 1501}, {1501, 1501}, {3002, 9000}}},
             {{1, 600}, {{0, 20}, {40, 20}, {41, 1}, {90, 77}}},
             {{1, 44'100}, {{1471, 1471}, {2942, 3}, {50'001, 12'345}}},
             {{1001, 30'000}, {{0, 1}, {1, 1}, {5, 2}}},
             {{1, 1'000'000}, {{333'333, 20'001}, {353'334, 666'667}}},
         }) {
        SCOPED_TRACE(timeBase.denominator);
        const auto clip = ImportedClip::load(*backend, written(*backend, folder / "a.mov", timeBase, frames));
        const auto reader = backend->openVideo(clip, {}, {0, clip.duration});
        for (std::size_t i = 0; i < frames.size(); ++i) {
            const auto frame = reader->next();
            ASSERT_TRUE(frame);
            EXPECT_NEAR(frame->time.value, timeBase.secondsTimes(frames[i].start), 1e-9);
            EXPECT_EQ(test::numberOf(frame->frame), static_cast<std::int64_t>(i));
        }
        EXPECT_FALSE(reader->next());
        ASSERT_TRUE(clip.video.end);
        EXPECT_NEAR(*clip.video.end, timeBase.secondsTimes(frames.back().start + frames.back().length), 1e-9);
        const double ticks = timeBase.seconds() / clip.video.timeBase.seconds();
        EXPECT_NEAR(ticks, std::round(ticks), 1e-9) << "the file counts in parts of the time base";
    }
}

/// The parts of a key frame that can be decoded at once: H.264's units of type 5, each after its length.
int slicesOf(const AVPacket& packet) {
    int slices = 0;
    for (std::int64_t at = 0; at + 4 < packet.size;) {
        const std::uint8_t* unit = packet.data + at;
        if ((unit[4] & 31) == 5) ++slices;
        at += 4 + (std::int64_t{unit[0]} << 24 | unit[1] << 16 | unit[2] << 8 | unit[3]);
    }
    return slices;
}

TEST(MovieWriter, ScrubbingHasNothingButKeyFramesOfSeveralSlices) {
    const auto backend = makeFFmpegBackend();
    const test::TemporaryFolder folder;
    std::vector<FrameTime> frames;
    for (std::int64_t i = 0; i < 60; ++i)
        frames.push_back({i, 1});
    const auto movie = ffmpeg::openMovie(written(*backend, folder / "a.mov", {1, 30}, frames));
    const auto packet = ffmpeg::makePacket();
    std::int64_t count = 0;
    for (; av_read_frame(movie.format.get(), packet.get()) >= 0; av_packet_unref(packet.get()), ++count) {
        EXPECT_TRUE(packet->flags & AV_PKT_FLAG_KEY) << count;
        EXPECT_EQ(packet->pts, packet->dts) << count;
        EXPECT_EQ(slicesOf(*packet), 4) << count;
    }
    EXPECT_EQ(count, 60);
}

} // namespace
} // namespace flowtide
