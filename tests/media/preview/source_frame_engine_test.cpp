// Which frame is fetched, that it stands upright, and that nothing is decoded twice.
#include "media/ffmpeg/ffmpeg_backend.h"
#include "media/flowtide_error.h"
#include "media/preview/source_frame_engine.h"
#include "tests/support/clip_maker.h"
#include "tests/support/scripted_media.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace flowtide {
namespace {

constexpr OutputSize anySize{10'000, 10'000};

/// Grey that rises with the number on the left, white on the right.
VideoFrame halves(std::int64_t number) {
    constexpr std::ptrdiff_t width = 96;
    constexpr std::ptrdiff_t height = 64;
    constexpr std::ptrdiff_t lumaSize = width * height;
    const auto bytes = std::make_shared<std::vector<std::uint8_t>>(lumaSize * 3 / 2, std::uint8_t{128});
    for (std::ptrdiff_t i = 0; i < lumaSize; ++i)
        (*bytes)[static_cast<std::size_t>(i)] =
            static_cast<std::uint8_t>(i % width < width / 2 ? 30 + 9 * number : 235);
    const std::uint8_t* data = bytes->data();
    return {{},
            width,
            height,
            {{{data, width}, {data + lumaSize, width / 2}, {data + lumaSize * 5 / 4, width / 2}}},
            bytes};
}

std::uint32_t pixelAt(const DisplayFrame& frame, int x, int y) {
    return frame.pixels[y * frame.stride / static_cast<std::ptrdiff_t>(sizeof(std::uint32_t)) + x];
}

/// Of a grey pixel, as its luma code was.
double numberAt(const DisplayFrame& frame, int x, int y) {
    const double luma = 16 + (pixelAt(frame, x, y) >> 8 & 0xFF) * 219.0 / 255;
    return (luma - 30) / 9;
}

TEST(SourceFrameEngine, ShowsTheFrameOfATimeUpright) {
    const auto backend = makeFFmpegBackend();
    const test::TemporaryFolder folder;
    test::ClipRecipe recipe;
    recipe.frameCount = 20;
    recipe.picture = halves;
    recipe.displayMatrix = {0, 65536, 0, -65536, 0, 0, 64 << 16, 0, 1 << 30}; // what was left comes to the top
    test::makeClip(*backend, folder / "in.mov", recipe);
    const auto clip = std::make_shared<ImportedClip>(ImportedClip::load(*backend, folder / "in.mov"));
    SourceFrameEngine engine(*backend, clip, anySize);
    for (const auto& [time, number] : std::vector<std::pair<double, double>>{
             {0.4, 10}, {0.0399, 0}, {0.04, 1}, {0.04 - 1e-9, 1}, {0.7601, 19}, {0.7599, 18}, {0, 0}, {0.9, 19}}) {
        const auto [frame, found] = engine.frame({time});
        EXPECT_NEAR(found.value, number * 0.04, 1e-9) << time;
        ASSERT_EQ((OutputSize{frame.width, frame.height}), (OutputSize{64, 96}));
        EXPECT_NEAR(numberAt(frame, 32, 24), number, 0.4) << time;
        EXPECT_GT(pixelAt(frame, 32, 72) & 0xFF, 245U) << time;
        EXPECT_EQ(pixelAt(frame, 32, 72) >> 24, 0xFFU);
    }
    const DisplayFrame small = SourceFrameEngine(*backend, clip, {1000, 48}).frame({0.4}).picture;
    EXPECT_EQ((OutputSize{small.width, small.height}), (OutputSize{32, 48}));
    EXPECT_NEAR(numberAt(small, 16, 12), 10, 0.4);
}

TEST(SourceFrameEngine, KeepsTheLastFrameAndNoFailure) {
    const test::TemporaryFolder folder;
    test::writeFile(folder / "in.mov", "scripted");
    int opened = 0;
    bool fails = false;
    test::MediaScript script;
    script.source = test::plainProbe();
    script.onOpenVideo = [&] {
        ++opened;
        if (fails) throw FlowtideError::readerFailed("gone");
    };
    const test::ScriptedBackend backend(script);
    const auto clip = std::make_shared<ImportedClip>(ImportedClip::load(backend, folder / "in.mov"));
    SourceFrameEngine engine(backend, clip, anySize);
    const DisplayFrame first = engine.frame({1}).picture;
    EXPECT_EQ(engine.frame({1}).picture.pixels, first.pixels);
    EXPECT_EQ(opened, 1);
    fails = true;
    EXPECT_THROW(engine.frame({0.5}), FlowtideError);
    EXPECT_EQ(engine.frame({1}).picture.pixels, first.pixels);
    fails = false;
    engine.frame({0.5});
    engine.frame({1});
    EXPECT_EQ(opened, 4);
}

} // namespace
} // namespace flowtide
