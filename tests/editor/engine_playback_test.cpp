// Playing, comparing and random use on the real engines and the real player. FLOWTIDE_STORM_SECONDS makes the random
// use longer than a suite has time for, FLOWTIDE_WALK_CLIP names a clip of one's own for it.
#include "media/decode_layout.h"
#include "media/frames/display_frame.h"
#include "tests/support/clip_maker.h"
#include "tests/support/edit_storm.h"
#include "tests/support/engine_stage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <random>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace flowtide::test {
namespace {

class EnginePlaybackTest : public testing::Test {
protected:
    static constexpr double frameSeconds = 1.0 / 25;

    static std::string named(const char* variable) {
        const char* value = std::getenv(variable); // NOLINT(concurrency-mt-unsafe): nobody changes the environment
        return value ? value : "";
    }
    /// 4 s at 25 fps; every picture tells its number.
    std::filesystem::path numberedClip() {
        ClipRecipe recipe;
        recipe.width = 192;
        recipe.height = 128;
        recipe.frameCount = 100;
        recipe.sampleRate = 48'000;
        makeClip(*stage.backend, stage.folder / "clip.mov", recipe);
        return stage.folder / "clip.mov";
    }
    void open(const std::filesystem::path& path) {
        stage.model->importClip(path);
        ASSERT_TRUE(stage.runUntil([&] {
            return stage.model->clip() && stage.player.status() == PlayerStatus::ready && stage.player.picture();
        }));
    }
    double playhead() { return stage.model->timeline().scrubPosition() * stage.model->clip()->duration; }
    /// Where the playhead is, from a start of play until `isOver`.
    std::vector<double> play(float rate, const std::function<bool(const std::vector<double>&)>& isOver) {
        std::vector<double> places{playhead()};
        stage.model->startPlayback(rate);
        EXPECT_TRUE(stage.runUntil([&] {
            if (const double now = playhead(); now != places.back()) places.push_back(now);
            return isOver(places);
        })) << rate;
        return places;
    }
    bool isStopped() const {
        return !stage.model->transport().isPlaying() && !stage.model->transport().isStartingPlayback();
    }
    /// The frame of the open clip, as a display shows it.
    DisplayFrame displayed(std::int64_t index) {
        const ImportedClip& clip = *stage.model->clip();
        const double middle = (static_cast<double>(index) + 0.5) * frameSeconds;
        return converter_.convert(
            stage.backend->openVideo(clip, decodePixelFormat(clip), {middle, middle})->next()->frame,
            pictureColor(clip), clip.preferredTransform, {clip.width, clip.height});
    }
    /// Files of rendered previews.
    std::size_t previewFileCount() const {
        std::size_t count = 0;
        for (const auto& each : std::filesystem::recursive_directory_iterator(stage.folder.path()))
            count += each.is_regular_file() &&
                     each.path().parent_path().filename().string().starts_with("FlowtidePreviews-");
        return count;
    }
    static SpeedKeyframe point(double time, double speed) {
        return {Uuid::random(), time, speed, SpeedKeyframeRole::curve};
    }

    EngineStage stage;

private:
    DisplayConverter converter_;
};

bool areSame(const DisplayFrame& a, const DisplayFrame& b) {
    const auto row = [](const DisplayFrame& frame, int y) {
        const auto* bytes = reinterpret_cast<const std::uint8_t*>(frame.pixels) + y * frame.stride;
        return std::span(bytes, static_cast<std::size_t>(4 * frame.width));
    };
    if (a.width != b.width || a.height != b.height) return false;
    for (int y = 0; y < a.height; ++y)
        if (!std::ranges::equal(row(a, y), row(b, y))) return false;
    return true;
}

TEST_F(EnginePlaybackTest, EveryShuttleRateEndsAtItsEndOfTheTrim) {
    ASSERT_NO_FATAL_FAILURE(open(numberedClip()));
    stage.model->applyTrimRange(1.5, 2.5);
    for (const float rate : {1.0F, 2.0F, 4.0F, 8.0F, -1.0F, -2.0F, -4.0F, -8.0F}) {
        stage.model->scrub(0.5);
        const std::vector<double> places = play(rate, [&](const auto& seen) { return seen.size() > 1 && isStopped(); });
        const bool isForward = rate > 0;
        EXPECT_DOUBLE_EQ(places.back(), isForward ? 2.5 : 1.5) << rate;
        for (std::size_t i = 2; i < places.size(); ++i) // backward, the start is a little before the playhead
            EXPECT_EQ(places[i] > places[i - 1], isForward) << rate << ": " << places[i - 1] << " to " << places[i];
        EXPECT_EQ(stage.model->transport().shuttleRate(), 0);
        EXPECT_EQ(stage.player.rate(), 0);
        // Play from an end begins at the other one.
        const std::vector<double> again = play(rate, [](const auto& seen) { return seen.size() > 1; });
        EXPECT_LT(std::abs(again[1] - (isForward ? 1.5 : 2.5)), 0.9) << rate;
        stage.model->pausePlayback();
    }
}

TEST_F(EnginePlaybackTest, ALoopStaysInItsRangeAtEveryRate) {
    ASSERT_NO_FATAL_FAILURE(open(numberedClip()));
    stage.model->replaceKeyframes(
        {point(0, 2), point(1.4, 2), point(1.5, 0.8), point(2, 0.8), point(2.1, 2), point(4, 2)});
    ASSERT_EQ(stage.model->flow().opticalFlowRanges().size(), 1U);
    const OpticalFlowRange range = stage.model->flow().opticalFlowRanges()[0];
    stage.model->selectOpticalFlowRange(range.id);
    stage.model->setLoopPreview(true);
    for (const float rate : {1.0F, 8.0F, -1.0F, -8.0F}) {
        stage.model->scrub(1.75 / 4);
        int jumps = 0;
        const bool isForward = rate > 0;
        const std::vector<double> places = play(rate, [&](const auto& seen) {
            jumps = 0;
            for (std::size_t i = 2; i < seen.size(); ++i)
                jumps += (seen[i] > seen[i - 1]) != isForward;
            return jumps >= 2 && !stage.model->transport().loopSeekPending();
        });
        EXPECT_TRUE(stage.model->transport().isPlaying()) << rate;
        for (const double place : places) {
            EXPECT_GT(place, range.start - 0.01) << rate;
            EXPECT_LT(place, range.end + 0.01) << rate;
        }
        stage.model->pausePlayback();
        EXPECT_TRUE(isStopped());
    }
}

TEST_F(EnginePlaybackTest, ComparesWithTheExactFrameOfThePlayhead) {
    ASSERT_NO_FATAL_FAILURE(open(numberedClip()));
    auto& model = stage.model;
    const auto& clip = *model->clip();
    model->replaceKeyframes({point(0, 0.3), point(4, 1.5)});
    model->setComparisonSize({clip.width, clip.height});
    model->setComparisonEnabled(true);
    for (const double time : {2.0, 0.5 * frameSeconds, 3.99, 1.3 - 1e-6, 1.3}) {
        model->scrub(time / 4);
        const auto isThere = [&] {
            const auto times = model->comparison().comparisonFrameTimes();
            return times && std::abs(times->requested.value - time) < 1e-9;
        };
        ASSERT_TRUE(stage.runUntil(isThere)) << time;
        const auto index = static_cast<std::int64_t>(std::floor(time / frameSeconds + 1e-4));
        const ComparisonPair& pair = *model->comparison().comparisonPair();
        EXPECT_NEAR(pair.times.decoded.value, static_cast<double>(index) * frameSeconds, 1e-6);
        EXPECT_TRUE(areSame(pair.original, displayed(index))) << time;
        // The retimed side is what the player shows there.
        const auto isShown = [&] {
            const auto& picture = stage.player.picture();
            return picture && picture->isExact && std::abs(picture->time.value - pair.times.output.value) < 1e-3;
        };
        ASSERT_TRUE(stage.runUntil(isShown)) << time;
        EXPECT_EQ(numberOf(stage.player.picture()->frame), index) << time;
        EXPECT_EQ(model->comparison().comparisonDisplayState().label,
                  time < model->flow().opticalFlowRanges()[0].end ? "Optical Flow · preview not rendered" : "");
    }
    std::filesystem::remove(stage.folder / "clip.mov");
    model->setComparisonEnabled(false);
    model->setComparisonSize({96, 64});
    model->setComparisonEnabled(true);
    ASSERT_TRUE(stage.runUntil([&] { return model->comparison().comparisonMessage().has_value(); }));
    EXPECT_EQ(model->comparison().comparisonMessage(), "Could not decode the original frame. Toggle Compare to retry.");
    EXPECT_EQ(model->comparison().comparisonDisplayState().picture, ComparisonDisplayState::Picture::failed);
}

TEST_F(EnginePlaybackTest, RandomUseLeavesNoFile) {
    const std::string own = named("FLOWTIDE_WALK_CLIP");
    const std::string wanted = named("FLOWTIDE_STORM_SECONDS");
    const double seconds = wanted.empty() ? 2 : std::stod(wanted);
    ASSERT_NO_FATAL_FAILURE(open(own.empty() ? numberedClip() : std::filesystem::path(own)));
    auto& model = stage.model;
    EditStorm storm(*model, 5);
    std::mt19937 random(7);
    std::size_t rendered = 0;
    for (const double end = stage.clock.seconds() + seconds; stage.clock.seconds() < end;) {
        storm.step();
        switch (random() % 60) {
        case 0:
        case 1:
        case 2:
        case 3:
            model->renderAllRanges();
            break;
        case 4:
        case 5:
        case 6:
            model->renderSelectedPreview();
            break;
        case 7:
        case 8:
            model->cancelPreviewRender();
            break;
        case 9:
            model->clearPreviewCache();
            break;
        case 10:
            model->makeProxy();
            break;
        case 11: // a rest, in which a render comes to its end
            model->endCurveEdit();
            model->setFrameInterpolation(FrameInterpolation::opticalFlow);
            model->replaceKeyframes({point(0, 1), point(1, 0.2), point(1.5, 0.2), point(2, 2)});
            model->applyTrimRange(0, 3);
            model->scrub(0.3, random() % 2 == 0);
            model->cancelPreviewRender();
            model->renderSelectedPreview(SourceRange{1.1, 1.2});
            EXPECT_TRUE(stage.runUntil([&] { return !model->renders().render().isRendering(); }));
            rendered = std::max(rendered, model->renders().previews().renderedPreviews().size());
            break;
        default:
            break;
        }
        if (random() % 4 == 0)
            static_cast<void>(
                stage.runUntil([&, until = stage.clock.seconds() + 0.02] { return stage.clock.seconds() > until; }));
    }
    model->endCurveEdit();
    model->resetTrimRange();
    ASSERT_TRUE(stage.runUntil([&] {
        return !model->renders().render().isRendering() && !model->proxies().isGeneratingProxy() &&
               model->binding().projectSaveMessage() == "Saved";
    }));
    EXPECT_GT(rendered, 0U);
    const auto& previews = model->renders().previews().renderedPreviews();
    EXPECT_TRUE(stage.runUntil([&] { return previewFileCount() == previews.size(); })) << previewFileCount();
    model->clearPreviewCache();
    EXPECT_TRUE(stage.runUntil([&] { return previewFileCount() == 0; })) << previewFileCount();
}

} // namespace
} // namespace flowtide::test
