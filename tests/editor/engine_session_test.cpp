// A session from import to export on the real engines. FLOWTIDE_WALK_CLIP names a clip of one's own to walk through,
// FLOWTIDE_WALK_EXPORT where its export is to stay.
#include "media/decode_layout.h"
#include "tests/media/flow/drawn_scenes.h"
#include "tests/media/tracking/drawn_subject.h"
#include "tests/support/clip_maker.h"
#include "tests/support/engine_stage.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <regex>
#include <string>

namespace flowtide::test {
namespace {

double displayedPsnr(const DisplayFrame& a, const DisplayFrame& b) {
    double sum = 0;
    for (int y = 0; y < a.height; ++y)
        for (int x = 0; x < 4 * a.width; ++x) {
            const auto byteOf = [&](const DisplayFrame& frame) {
                return reinterpret_cast<const std::uint8_t*>(frame.pixels)[y * frame.stride + x];
            };
            sum += (byteOf(a) - byteOf(b)) * (byteOf(a) - byteOf(b));
        }
    return 10 * std::log10(255 * 255 / (sum / (3.0 * a.width * a.height) + 1e-9));
}

class EngineSessionTest : public testing::Test {
protected:
    static const char* named(const char* variable) { return std::getenv(variable); } // NOLINT(concurrency-mt-unsafe)
    /// A textured square that goes from left to right, 4 s at 25 fps; or the clip of one's own.
    std::filesystem::path clip(VideoCodec codec) {
        if (const char* own = named("FLOWTIDE_WALK_CLIP")) return own;
        ClipRecipe recipe;
        recipe.codec = codec;
        if (codec != VideoCodec::h264) recipe.layout = {ChromaSubsampling::yuv422, 10, false};
        recipe.width = 320;
        recipe.height = 180;
        recipe.frameCount = 100;
        recipe.sampleRate = 48'000;
        recipe.picture = [layout = recipe.layout](std::int64_t i) {
            const double time = static_cast<double>(i) / 25;
            return drawn(layout, 320, 180, [&](double x, double y) {
                return DrawnSubject{boxAt}.at(x / 320, y / 180, time, DrawnSubject::groundAt(x / 320, y / 180))[0];
            });
        };
        makeClip(*stage.backend, stage.folder / "clip.mov", recipe);
        return stage.folder / "clip.mov";
    }
    std::filesystem::path target() {
        const char* wanted = named("FLOWTIDE_WALK_EXPORT");
        return wanted ? std::filesystem::path(wanted) : stage.folder / "out.mov";
    }
    static SubjectBox boxAt(double time) { return {0.2 + 0.1 * time, 0.35, 0.15, 0.25}; }
    bool isSaved() { return stage.model->binding().projectSaveMessage() == "Saved"; }
    /// The stored document without its date.
    std::string document() {
        const auto file = stage.model->binding().store()->projectFile(stage.model->binding().projectID());
        return std::regex_replace(readFile(file), std::regex(R"("savedAt" *: *[^,}]*)"), "");
    }
    void open(VideoCodec codec) {
        stage.model->importClip(clip(codec));
        ASSERT_TRUE(stage.runUntil([&] { return stage.model->clip() && isSaved(); })) << alert();
    }
    /// What an export of the open clip has written.
    ImportedClip exported() {
        stage.model->exportClip(target());
        EXPECT_TRUE(stage.runUntil([&] { return !stage.model->exporting().isExporting(); }));
        EXPECT_TRUE(stage.model->exporting().lastExportVerification()) << alert();
        return ImportedClip::load(*stage.backend, target());
    }
    std::string alert() const {
        const auto& message = stage.model->alert().errorMessage();
        return message ? message->sentence + " " + message->reason : "";
    }
    static SpeedKeyframe point(double time, double speed) {
        return {Uuid::random(), time, speed, SpeedKeyframeRole::curve};
    }

    EngineStage stage;
};

TEST_F(EngineSessionTest, FromImportToExportAndAgainAfterARestart) {
    auto& model = stage.model;
    ASSERT_NO_FATAL_FAILURE(open(VideoCodec::h264));
    const double end = model->clip()->duration;

    model->replaceKeyframes({point(0, 1), point(0.3 * end, 1), point(0.45 * end, 0.25), point(0.6 * end, 0.25),
                             point(0.8 * end, 2), point(end, 1)});
    EXPECT_FALSE(model->effectiveOpticalFlowRanges().empty());
    model->applyTrimRange(0.05 * end, 0.9 * end);
    model->scrub(0.3);
    model->addZoomBlock({0.4 * end, 0.6 * end});
    model->setVerticalCropEnabled(true);
    model->setLockCropCenter(false);
    model->beginCropDrag();
    for (const double travel : {0.5, 0.6, 0.7})
        model->updateCropDrag(travel);
    model->endCropDrag();
    const auto dragged = model->framing().centerKeyframes();

    model->beginSubjectSelection();
    model->startTracking(boxAt(0.3 * end));
    ASSERT_TRUE(stage.runUntil([&] { return !model->tracking().isTracking(); }));
    const auto tracked = model->framing().centerKeyframes();
    EXPECT_NE(tracked, dragged) << model->tracking().trackingMessage().value_or("");
    model->undo();
    EXPECT_EQ(model->framing().centerKeyframes(), dragged);
    model->redo();
    EXPECT_EQ(model->framing().centerKeyframes(), tracked);

    ASSERT_TRUE(stage.runUntil([&] { return isSaved(); }));
    FlowtideProject before = model->projectSnapshot();
    const std::string stored = document();
    stage.restart();
    model->restoreLastProject();
    ASSERT_TRUE(stage.runUntil([&] { return model->clip() != nullptr; }));
    const FlowtideProject after = model->projectSnapshot();
    before.savedAt = after.savedAt;
    EXPECT_EQ(before, after);
    model->saveProjectNow();
    ASSERT_TRUE(stage.runUntil([&] { return isSaved(); }));
    EXPECT_EQ(document(), stored);

    const ImportedClip written = exported();
    EXPECT_NEAR(written.duration, model->curve().timeMap().outputDuration(), 1 / written.frameRate);
    EXPECT_EQ(written.width, model->clip()->height * 9 / 16 / 2 * 2);
}

TEST_F(EngineSessionTest, WhatIsShownIsWhatIsExported) {
    auto& model = stage.model;
    ASSERT_NO_FATAL_FAILURE(open(VideoCodec::proRes422));
    const double end = model->clip()->duration;
    model->replaceKeyframes({point(0, 1), point(0.2 * end, 1), point(0.23 * end, 0.1), point(0.33 * end, 0.1),
                             point(0.36 * end, 1), point(end, 1)});
    model->applyTrimRange(0.111 * end, 0.45 * end); // so that ranges begin between two frames
    model->setPreviewResolution(PreviewResolution::full);
    const ImportedClip written = exported();
    const double step = model->clip()->frameDuration.seconds();
    const TimeMap map = model->curve().timeMap();
    const auto frameOf = [&](std::int64_t index) {
        const double middle = (static_cast<double>(index) + 0.5) * step;
        return stage.backend->openVideo(written, decodePixelFormat(written), {middle, middle})->next()->frame;
    };

    // At rest, where nothing is rendered.
    const SourceRange range = model->effectiveOpticalFlowRanges().front();
    const auto first = static_cast<std::int64_t>(std::ceil(map.outputTime({range.lower}).value / step)) + 2;
    const auto last = static_cast<std::int64_t>(std::floor(map.outputTime({range.upper}).value / step)) - 2;
    const auto goTo = [&](std::int64_t index) {
        model->scrub(map.sourceTime({(static_cast<double>(index) + 0.5) * step}).value / end);
    };
    model->setRestPictureSize({model->clip()->width, model->clip()->height});
    DisplayConverter converter;
    for (const std::int64_t index : {first, (first + last) / 2}) {
        goTo(index);
        const double time = static_cast<double>(index) * step;
        const auto& shown = model->restFrame().restPicture();
        ASSERT_TRUE(stage.runUntil([&] { return shown && std::abs(shown->time.value - time) < 1e-6; })) << index;
        const DisplayFrame wanted = converter.convert(frameOf(index), pictureColor(written), written.preferredTransform,
                                                      {written.width, written.height});
        EXPECT_GT(displayedPsnr(shown->picture, wanted), 45) << index;
    }

    model->renderAllRanges();
    ASSERT_TRUE(stage.runUntil([&] { return !model->renders().isRenderingAllRanges(); }));
    EXPECT_TRUE(model->renders().previews().unrenderedRanges().empty())
        << model->renders().render().previewRenderError().value_or("");
    for (std::int64_t index = first; index <= last; index += 7) {
        goTo(index);
        const double wanted = (static_cast<double>(index) + 0.5) * step;
        const auto isThere = [&] {
            const auto& picture = stage.player.picture();
            return picture && picture->isExact && std::abs(picture->time.value - wanted) < step / 4;
        };
        ASSERT_TRUE(stage.runUntil(isThere)) << index;
        EXPECT_FALSE(model->restFrame().restPicture());
        EXPECT_GT(psnr(stage.player.picture()->frame, frameOf(index), 0, 0), 40) << index;
    }
}

} // namespace
} // namespace flowtide::test
