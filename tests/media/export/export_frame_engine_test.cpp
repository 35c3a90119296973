// A single picture of an export is the export's own, to the byte.
#include "media/export/export_frame_engine.h"
#include "media/export/export_plan.h"
#include "media/export/output_frames.h"
#include "media/ffmpeg/ffmpeg_backend.h"
#include "media/flow/frame_renderer.h"
#include "media/frames/context_reader.h"
#include "tests/media/flow/drawn_scenes.h"
#include "tests/support/clip_maker.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string_view>
#include <vector>

namespace flowtide::test {
namespace {

TEST(ExportFrameEngine, EveryFrameIsTheExportsOwn) {
    const TemporaryFolder folder;
    const auto backend = makeFFmpegBackend();
    ClipRecipe recipe;
    recipe.frameCount = 20;
    recipe.picture = [](std::int64_t i) {
        return drawn({}, 96, 64, [&](double x, double y) { return texture(x - 1.7 * static_cast<double>(i), y); });
    };
    makeClip(*backend, folder / "in.mov", recipe);
    ExportRequest request;
    request.clip = ImportedClip::load(*backend, folder / "in.mov");
    request.keyframes = {{Uuid::random(), 0, 1, SpeedKeyframeRole::curve},
                         {Uuid::random(), 0.4, 0.2, SpeedKeyframeRole::curve}};
    request.sourceRange = SourceRange{0.1, 0.7};
    request.interpolation = FrameInterpolation::opticalFlow;
    request.opticalFlowRanges = {{0.3, 0.6}};
    ZoomBlock zoom;
    zoom.startTime = 0.3;
    zoom.endTime = 0.7;
    request.zoom = ZoomSettings{{zoom}};

    const ExportPlan plan = planExport(request, [](std::string_view) {});
    const auto renderer = makeRenderer(FrameInterpolation::opticalFlow, 96, 64, plan.video.layout);
    const auto reader = openWithContext(*backend, request.clip, plan.video.layout, plan.timeMap.sourceRange());
    OutputFrames all(plan, *reader, renderer.get());
    std::vector<VideoFrame> wanted;
    std::vector<bool> isMade;
    while (const auto frame = all.next()) {
        wanted.push_back(*frame);
        isMade.push_back(all.isInBetween());
    }
    ASSERT_EQ(wanted.size(), static_cast<std::size_t>(plan.frameCount));
    ExportFrameEngine engine(*backend);
    const auto expectExports = [&](std::int64_t i) {
        const double start = plan.video.frameDuration.secondsTimes(i);
        const double within = i % 2 == 0 ? 0 : 0.99; // shown until the next one
        const ExportFrame got = engine.frame(request, {start + within * plan.video.frameDuration.seconds()});
        EXPECT_EQ(got.index, i);
        EXPECT_EQ(got.isInBetween, isMade[static_cast<std::size_t>(i)]) << i;
        EXPECT_TRUE(samePixels(got.frame, wanted[static_cast<std::size_t>(i)])) << i;
    };
    for (std::int64_t i = 0; i < plan.frameCount; ++i)
        expectExports(i);
    for (std::int64_t i = 0; i < plan.frameCount; ++i) // here and there
        expectExports(i * 23 % plan.frameCount);
    request.clip.video.constantSampleInterval.reset(); // as of a clip whose frames come unevenly
    engine.closeClip();
    for (std::int64_t i = 0; i < plan.frameCount; ++i)
        expectExports(i * 17 % plan.frameCount);
    const auto made = std::count(isMade.begin(), isMade.end(), true);
    EXPECT_GT(made, 10);
    EXPECT_LT(made, plan.frameCount);
    EXPECT_EQ(engine.frame(request, {-1}).index, 0);
    EXPECT_EQ(engine.frame(request, {1e9}).index, plan.frameCount - 1);
    EXPECT_THROW(engine.frame(request, {0}, [] { return true; }), FlowtideError);
}

TEST(ExportFrameEngine, ANewClipsPicturesAreItsOwn) {
    const TemporaryFolder folder;
    const auto backend = makeFFmpegBackend();
    ExportFrameEngine engine(*backend);
    const auto inBetween = [&](const char* name, double speed, ExportFrameEngine& drawing) {
        if (!std::filesystem::exists(folder / name)) {
            ClipRecipe recipe;
            recipe.frameCount = 10;
            recipe.picture = [&](std::int64_t i) {
                return drawn({}, 96, 64,
                             [&](double x, double y) { return texture(x, y + speed * static_cast<double>(i)); });
            };
            makeClip(*backend, folder / name, recipe);
        }
        ExportRequest request;
        request.clip = ImportedClip::load(*backend, folder / name);
        request.keyframes = {{Uuid::random(), 0, 0.25, SpeedKeyframeRole::curve}};
        request.interpolation = FrameInterpolation::opticalFlow;
        request.opticalFlowRanges = {{0, 0.4}};
        const ExportFrame made = drawing.frame(request, {0.24});
        EXPECT_TRUE(made.isInBetween);
        return made.frame;
    };
    inBetween("down.mov", 2, engine);
    for (const bool isClosed : {false, true}) {
        if (isClosed) {
            inBetween("down.mov", 2, engine);
            engine.closeClip();
        }
        ExportFrameEngine fresh(*backend);
        EXPECT_TRUE(samePixels(inBetween("up.mov", -3, engine), inBetween("up.mov", -3, fresh))) << isClosed;
    }
}

} // namespace
} // namespace flowtide::test
