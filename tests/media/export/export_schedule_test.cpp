// On real files: every output frame is exactly the source frame that the schedule names.
#include "core/curve_engine.h"
#include "media/export/export_engine.h"
#include "media/ffmpeg/ffmpeg_backend.h"
#include "tests/support/clip_maker.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <cmath>

namespace flowtide::test {
namespace {

SpeedKeyframes curve(std::initializer_list<std::pair<double, double>> points) {
    SpeedKeyframes keyframes;
    for (const auto& [time, speed] : points)
        keyframes.push_back({Uuid::random(), time, speed});
    return keyframes;
}

/// The schedule, written down once more without the engine: the last frame at or before each output frame's time.
std::vector<std::int64_t> expectedNumbers(const ImportedClip& clip, const SpeedKeyframes& keyframes,
                                          std::optional<SourceRange> range, std::int64_t frameCount) {
    const TimeMap map =
        CurveEngine::buildTimeMap(keyframes, clip.duration, range, CurveEngine::exportTimeMapSteps, 0.5);
    const double interval = clip.frameDuration.seconds();
    const auto count = std::max<std::int64_t>(std::llround(map.outputDuration() / interval), 1);
    std::vector<std::int64_t> numbers;
    for (std::int64_t i = 0; i < count; ++i) {
        const double time = map.sourceTime(OutputSeconds{static_cast<double>(i) * interval}).value;
        const auto number = static_cast<std::int64_t>(std::floor((time + 1e-6) / interval));
        numbers.push_back(std::min(number, frameCount - 1));
    }
    return numbers;
}

class ExportScheduleTest : public testing::TestWithParam<MediaTime> {
protected:
    std::unique_ptr<MediaBackend> backend_ = makeFFmpegBackend();
    TemporaryFolder folder_;
};

TEST_P(ExportScheduleTest, FramesAreThoseOfTheSchedule) {
    ClipRecipe recipe;
    recipe.frameDuration = GetParam();
    recipe.frameCount = 150;
    makeClip(*backend_, folder_ / "in.mov", recipe);
    const ImportedClip clip = ImportedClip::load(*backend_, folder_ / "in.mov");
    ASSERT_EQ(clip.frameDuration, GetParam());
    ASSERT_EQ(frameNumbers(*backend_, clip).size(), 150U);

    const double end = clip.duration;
    const double frame = clip.frameDuration.seconds();
    const struct {
        const char* name;
        SpeedKeyframes keyframes;
        std::optional<SourceRange> range;
    } cases[] = {
        {"unchanged", curve({{0, 1}, {end, 1}}), std::nullopt},
        {"half", curve({{0, 0.5}, {end, 0.5}}), std::nullopt},
        {"ramp", curve({{0, 1}, {end / 2, 0.25}, {end, 4}}), std::nullopt},
        {"fastest", curve({{0, 100}, {end, 100}}), std::nullopt},
        {"slowest", curve({{40.5 * frame, 0.01}, {43.2 * frame, 0.01}}), SourceRange{40.5 * frame, 43.2 * frame}},
        {"all speeds", curve({{0, 0.1}, {end / 3, 100}, {end * 0.9, 1}}), SourceRange{0.05 * end, end}},
        {"trimmed between key frames", curve({{0, 1}, {end, 2}}), SourceRange{33.3 * frame, 121.7 * frame}},
        {"trimmed on a frame", curve({{0, 0.7}}), SourceRange{77 * frame, 78 * frame}},
        {"last frame", curve({{end, 0.5}}), SourceRange{end - 0.5 * frame, end}},
    };
    for (const auto& [name, keyframes, range] : cases) {
        ExportRequest request;
        request.clip = clip;
        request.keyframes = keyframes;
        request.sourceRange = range;
        request.outputURL = folder_ / "out.mov";
        ExportEngine(*backend_, [](std::string_view) {}).run(request, [](double) {});
        const ImportedClip output = ImportedClip::load(*backend_, request.outputURL);
        EXPECT_EQ(output.frameDuration, clip.frameDuration) << name;
        EXPECT_EQ(frameNumbers(*backend_, output), expectedNumbers(clip, keyframes, range, recipe.frameCount)) << name;
    }
}

INSTANTIATE_TEST_SUITE_P(Rates, ExportScheduleTest,
                         testing::Values(MediaTime{1001, 24000}, MediaTime{1, 25}, MediaTime{1001, 30000},
                                         MediaTime{1, 30}, MediaTime{1, 50}, MediaTime{1001, 60000}, MediaTime{1, 60},
                                         MediaTime{2, 25}, MediaTime{1501, 90000}),
                         [](const auto& rate) {
                             return std::to_string(rate.param.numerator) + "over" +
                                    std::to_string(rate.param.denominator);
                         });

TEST(ExportSchedule, JumpsOverKeyFramesLandOnTheSameFrames) {
    const auto backend = makeFFmpegBackend();
    const TemporaryFolder folder;
    ClipRecipe recipe;
    recipe.frameCount = 1300; // a key frame at least every 250
    makeClip(*backend, folder / "in.mov", recipe);
    const ImportedClip clip = ImportedClip::load(*backend, folder / "in.mov");
    const double end = clip.duration;
    const std::pair<SpeedKeyframes, std::optional<SourceRange>> cases[] = {
        {curve({{0, 100}, {end, 100}}), std::nullopt},
        {curve({{0, 100}, {end * 0.5, 1}, {end, 100}}), SourceRange{3.3, end - 1}},
        {curve({{0, 37}, {end, 37}}), SourceRange{0.5, end}},
    };
    for (const auto& [keyframes, range] : cases) {
        ExportRequest request;
        request.clip = clip;
        request.keyframes = keyframes;
        request.sourceRange = range;
        request.outputURL = folder / "out.mov";
        ExportEngine(*backend, [](std::string_view) {}).run(request, [](double) {});
        EXPECT_EQ(frameNumbers(*backend, ImportedClip::load(*backend, request.outputURL)),
                  expectedNumbers(clip, keyframes, range, recipe.frameCount));
    }
}

} // namespace
} // namespace flowtide::test
