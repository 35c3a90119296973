// In-between frames: exact where the truth is known, sane everywhere else, the same on every run.
#include "media/export/export_engine.h"
#include "media/ffmpeg/ffmpeg_backend.h"
#include "media/flow/optical_flow_interpolator.h"
#include "tests/media/flow/drawn_scenes.h"
#include "tests/support/clip_maker.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace flowtide::test {
namespace {

constexpr PixelLayout layouts[] = {
    {ChromaSubsampling::yuv420, 8, false},  {ChromaSubsampling::yuv420, 8, true},
    {ChromaSubsampling::yuv422, 10, false}, {ChromaSubsampling::yuv444, 10, false},
    {ChromaSubsampling::yuv420, 10, true},
};

TEST(OpticalFlow, ATranslationLandsWhereThePhaseSays) {
    for (const auto& layout : layouts) {
        const double dx = 7.3;
        const double dy = -4.6;
        const auto moved = [&](double share) {
            return drawn(layout, 321, 201, [&](double x, double y) { return texture(x - share * dx, y - share * dy); });
        };
        OpticalFlowInterpolator interpolator(321, 201, layout);
        for (const double phase : {0.37, 0.9}) {
            const VideoFrame frame = interpolator.render({{moved(0), {1}}, {moved(1), {2}}, {}, {}}, {1 + phase});
            const double right = psnr(frame, moved(phase), 0, 16);
            EXPECT_GT(right, 38) << layout.bitDepth << " at " << phase;
            EXPECT_GT(psnr(frame, moved(phase), 1, 16), 35) << layout.bitDepth << " at " << phase;
            // A twentieth of a pixel to any side fits worse.
            for (const double off : {-0.05, 0.05}) {
                const double length = std::hypot(dx, dy);
                EXPECT_GT(right, psnr(frame, moved(phase + off / length * 2), 0, 16)) << phase;
            }
        }
    }
}

TEST(OpticalFlow, EndsStillPairsAndCutsAreTheFramesThemselves) {
    const VideoFrame a = drawn(layouts[0], 160, 120, texture);
    const VideoFrame b = drawn(layouts[0], 160, 120, [](double x, double y) { return texture(x - 3, y); });
    const VideoFrame copy = drawn(layouts[0], 160, 120, texture);
    const VideoFrame other =
        drawn(layouts[0], 160, 120, [](double x, double y) { return std::fmod(x * x * 0.37 + y * 91.3 * x, 220); });
    OpticalFlowInterpolator interpolator(160, 120, layouts[0]);
    const auto shownAt = [&](double time) {
        return interpolator.render({{a, {0}}, {b, {1}}, {}, {}}, {time}).planes[0].data;
    };
    for (const double near : {-0.1, 0.0, 0.9e-6}) { // a millionth of the pair
        EXPECT_EQ(shownAt(near), a.planes[0].data) << near;
        EXPECT_EQ(shownAt(1 - near), b.planes[0].data) << near;
    }
    EXPECT_NE(shownAt(1.1e-6), a.planes[0].data);
    EXPECT_NE(shownAt(1 - 1.1e-6), b.planes[0].data);
    EXPECT_TRUE(samePixels(interpolator.render({{a, {2}}, {copy, {3}}, {}, {}}, {2.4}), a));
    EXPECT_EQ(interpolator.render({{a, {4}}, {other, {5}}, {}, {}}, {4.4}).planes[0].data, a.planes[0].data);
    EXPECT_EQ(interpolator.render({{a, {4}}, {other, {5}}, {}, {}}, {4.6}).planes[0].data, other.planes[0].data);
}

TEST(OpticalFlow, DrawnScenesComeAsNearToTheTruthAsTheyDid) {
    /// PSNR of the luma and of its worst blocks against the true frame, in dB, as measured when the scenes were drawn.
    struct Quality {
        double whole;
        double worst;
    };
    const std::map<std::string, std::pair<Quality, Quality>> known{
        // half-way, and at 0.3
        {"drifting", {{44.62, 33.38}, {47.60, 38.47}}},    {"texture over texture", {{32.51, 21.99}, {33.41, 22.87}}},
        {"turning", {{42.69, 32.91}, {43.90, 34.36}}},     {"zooming", {{37.52, 27.78}, {36.98, 26.43}}},
        {"speeding up", {{44.28, 32.73}, {46.12, 34.79}}}, {"crossing", {{24.91, 13.98}, {26.60, 15.86}}},
        {"fading", {{44.83, 34.38}, {46.54, 36.14}}},      {"cut", {{100, 100}, {100, 100}}},
    };
    for (const DrawnScene& scene : drawnScenes()) {
        OpticalFlowInterpolator interpolator(DrawnScene::width, DrawnScene::height, layouts[0]);
        const FramePair pair = scene.pair();
        const auto& [halfWay, early] = known.at(scene.name);
        for (const auto& [phase, quality] : {std::pair{0.5, halfWay}, {0.3, early}}) {
            const VideoFrame frame = interpolator.render(pair, {phase});
            const VideoFrame truth = scene.at(phase);
            constexpr double slack = 0.2; // dB
            EXPECT_GT(psnr(frame, truth, 0, 0), quality.whole - slack) << scene.name << " at " << phase;
            EXPECT_GT(worstBlocks(frame, truth), quality.worst - slack) << scene.name << " at " << phase;
        }
    }
}

TEST(OpticalFlow, TheSameArgumentsGiveTheSamePixelsWhateverCameBefore) {
    const auto at = [&](double shift) {
        return drawn(layouts[0], 200, 140, [&](double x, double y) { return texture(x - shift, y + 0.5 * shift); });
    };
    const VideoFrame frames[] = {at(0), at(5), at(11)};
    OpticalFlowInterpolator walked(200, 140, layouts[0]);
    walked.render({{frames[0], {0}}, {frames[1], {1}}, {}, {}}, {0.3});
    const VideoFrame inside = walked.render({{frames[1], {1}}, {frames[2], {2}}, {}, {}}, {1.7});
    OpticalFlowInterpolator alone(200, 140, layouts[0]);
    EXPECT_TRUE(samePixels(inside, alone.render({{frames[1], {1}}, {frames[2], {2}}, {}, {}}, {1.7})));
}

TEST(OpticalFlow, ThreadsAndInstructionsChangeNoPixel) {
    for (const auto& layout : layouts)
        for (const auto& [width, height] : {std::pair{322, 181}, {97, 300}}) {
            const FramePair pair = sceneNamed("texture over texture").pair(layout, width, height);
            const auto render = [&pair](int threads, InstructionSet instructions) {
                const VideoFrame& first = pair.first.frame;
                OpticalFlowInterpolator interpolator(first.width, first.height, first.layout, {threads, instructions});
                return interpolator.render(pair, {0.3});
            };
            const VideoFrame frame = render(1, InstructionSet::baseline);
            for (const int threads : {1, 2, 3})
                EXPECT_TRUE(samePixels(frame, render(threads, bestInstructionSet()))) << threads;
        }
}

TEST(OpticalFlow, ContextBendsTheMotion) {
    // What speeds up by 2 pixels a frame² lies a quarter of a pixel behind the straight line half-way.
    const DrawnScene scene = sceneNamed("speeding up");
    const FramePair whole = scene.pair();
    const VideoFrame truth = scene.at(0.5);
    OpticalFlowInterpolator interpolator(DrawnScene::width, DrawnScene::height, layouts[0]);
    const VideoFrame straight = interpolator.render({whole.first, whole.second, {}, {}}, {0.5});
    EXPECT_GT(psnr(interpolator.render(whole, {0.5}), truth, 0, 16), psnr(straight, truth, 0, 16) + 6);
    // A frame that comes at another pace, or shows another scene, tells nothing.
    for (const auto& [before, after, isEven] :
         {std::tuple{-1.0, 2.09, true}, {-0.91, 2.0, true}, {-1.0, 2.11, false}, {-0.89, 2.0, false}}) {
        FramePair pair = whole;
        pair.before->time = {before};
        pair.after->time = {after};
        EXPECT_NE(samePixels(interpolator.render(pair, {0.5}), straight), isEven) << before << " " << after;
    }
    FramePair cut = whole;
    cut.after->frame = sceneNamed("cut").at(1);
    OpticalFlowInterpolator other(DrawnScene::width, DrawnScene::height, layouts[0]);
    EXPECT_TRUE(samePixels(other.render(cut, {0.5}), straight));
}

TEST(OpticalFlow, ARangeAloneShowsThePixelsOfTheWhole) {
    const auto backend = makeFFmpegBackend();
    const TemporaryFolder folder;
    ClipRecipe recipe;
    recipe.codec = VideoCodec::proRes422HQ; // every frame is coded by itself
    recipe.layout = {ChromaSubsampling::yuv422, 10, false};
    recipe.width = 320;
    recipe.height = 192;
    recipe.frameCount = 20;
    recipe.picture = [&, scene = sceneNamed("texture over texture")](std::int64_t i) {
        return scene.at(static_cast<double>(i), recipe.layout, recipe.width, recipe.height);
    };
    makeClip(*backend, folder / "in.mov", recipe);
    ExportRequest request;
    request.clip = ImportedClip::load(*backend, folder / "in.mov");
    for (const double time : {0.0, 0.32, 0.48, 0.8})
        request.keyframes.push_back({Uuid::random(), time, 0.25, SpeedKeyframeRole::curve});
    request.interpolation = FrameInterpolation::opticalFlow;
    request.opticalFlowRanges = {{0, request.clip.duration}};
    const auto exported = [&](const char* name) {
        request.outputURL = folder / name;
        ExportEngine(*backend, [](std::string_view) {}).run(request, [](double) {});
        const ImportedClip clip = ImportedClip::load(*backend, request.outputURL);
        const auto reader = backend->openVideo(clip, recipe.layout, {0, clip.duration});
        std::vector<VideoFrame> frames;
        while (auto frame = reader->next())
            frames.push_back(frame->frame);
        return frames;
    };
    const auto whole = exported("whole.mov");
    request.sourceRange = SourceRange{0.32, 0.48};
    const auto alone = exported("alone.mov");
    ASSERT_EQ(whole.size(), 80U);
    ASSERT_EQ(alone.size(), 16U);
    for (std::size_t i = 0; i < alone.size(); ++i)
        EXPECT_TRUE(samePixels(alone[i], whole[32 + i])) << i;
    for (std::size_t i = 1; i < 76; ++i) // at a quarter of the speed three of four frames are new ones
        EXPECT_FALSE(samePixels(whole[i], whole[i - 1])) << i;
}

TEST(OpticalFlow, AnySizeWorks) {
    for (const auto& layout : layouts)
        for (const auto& [width, height] : {std::pair{1, 1}, {2, 1}, {1, 37}, {3, 5}, {17, 16}, {63, 2}, {2049, 9}}) {
            const VideoFrame a = drawn(layout, width, height, texture);
            const VideoFrame b =
                drawn(layout, width, height, [](double x, double y) { return texture(x + 90, y - 50); });
            OpticalFlowInterpolator interpolator(width, height, layout);
            const VideoFrame frame =
                interpolator.render({{a, {0}}, {b, {1}}, TimedFrame{b, {-1}}, TimedFrame{a, {2}}}, {0.5});
            EXPECT_EQ(frame.width, width);
            EXPECT_EQ(frame.height, height);
        }
}

TEST(OpticalFlow, ExportsMakeNewFramesOnlyInsideTheRanges) {
    const auto backend = makeFFmpegBackend();
    const TemporaryFolder folder;
    ClipRecipe recipe;
    recipe.frameCount = 20;
    makeClip(*backend, folder / "in.mov", recipe);
    ExportRequest request;
    request.clip = ImportedClip::load(*backend, folder / "in.mov");
    request.keyframes = {{Uuid::random(), 0, 0.25, SpeedKeyframeRole::curve},
                         {Uuid::random(), 0.8, 0.25, SpeedKeyframeRole::curve}};
    request.interpolation = FrameInterpolation::opticalFlow;
    request.opticalFlowRanges = {{0.4, 0.8}};
    request.outputURL = folder / "out.mov";
    ExportEngine(*backend, [](std::string_view) {}).run(request, [](double) {});
    const auto numbers = frameNumbers(*backend, ImportedClip::load(*backend, folder / "out.mov"));
    ASSERT_EQ(numbers.size(), 80U);
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        const bool original = i < 40 || i % 4 == 0 || i >= 76; // past the last frame nothing can be in between
        if (original) {
            EXPECT_EQ(numbers[i], static_cast<std::int64_t>(i / 4)) << i;
        }
    }
}

} // namespace
} // namespace flowtide::test
