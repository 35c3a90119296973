// Every property of an export that can be wrong is named, and only those.
#include "media/export/export_validation.h"
#include "media/flowtide_error.h"

#include <gtest/gtest.h>

#include <functional>

namespace flowtide::test {
namespace {

ImportedClip source() {
    ImportedClip clip;
    clip.duration = 10;
    clip.frameRate = 30000.0 / 1001;
    clip.frameDuration = {1001, 30000};
    clip.width = clip.video.encodedWidth = 1920;
    clip.height = clip.video.encodedHeight = 1080;
    clip.videoCodecType = VideoCodec::h264;
    clip.video.colorProperties = ColorProperties{"bt709", "bt709", "bt709"};
    clip.audio.emplace();
    clip.audio->sampleRate = 48'000;
    clip.audio->channelCount = 2;
    clip.audio->formatID = aac;
    return clip;
}

ExportExpectation expectation() {
    return {VideoCodec::h264, {1920, 1080}, {1920, 1080}, 10, {0, 10}, false, FileType::quickTimeMovie};
}

std::string failure(const ImportedClip& output, const ImportedClip& clip = source()) {
    try {
        validateOutput(output, clip, expectation());
    } catch (const FlowtideError& error) {
        EXPECT_EQ(error.kind(), FlowtideError::Case::validationFailed);
        return error.what();
    }
    return {};
}

std::string wrapped(const std::string& text) {
    return "Export validation failed: " + text + ". The destination file was left untouched.";
}

TEST(ExportValidation, EachMismatchHasItsText) {
    const struct {
        std::function<void(ImportedClip&)> change;
        const char* text;
    } cases[] = {
        {[](auto& c) { c.videoCodecType = VideoCodec::proRes422LT; },
         "video codec is Apple ProRes 422 LT, expected H.264"},
        {[](auto& c) { c.video.encodedWidth = 1918; }, "encoded dimensions are 1918x1080, expected 1920x1080"},
        {[](auto& c) { c.height = 1078; }, "display dimensions are 1920x1078, expected 1920x1080"},
        {[](auto& c) { c.preferredTransform.tx = 0.00001; }, "the orientation transform does not match the source"},
        {[](auto& c) { c.video.bitDepth = 10; }, "video is 10-bit, expected 8"},
        {[](auto& c) { c.video.isFullRange = true; }, "video color range is full range, expected video range"},
        {[](auto& c) { c.video.colorProperties->matrix = "bt2020nc"; }, "YCbCr matrix is bt2020nc, expected bt709"},
        {[](auto& c) { c.video.colorProperties->primaries.reset(); }, "color primaries is unspecified, expected bt709"},
        {[](auto& c) { c.duration = 10.04; }, "duration is 10.040s, expected 10.000s"},
        {[](auto& c) { c.audio.reset(); }, "the source audio track is missing"},
        {[](auto& c) { c.audio->formatID = linearPCM; }, "audio format is Linear PCM, expected AAC"},
        {[](auto& c) { c.audio->formatID = 0x01020304; }, "audio format is 0x01020304, expected AAC"},
        {[](auto& c) { c.audio->sampleRate = 44'100; }, "audio sample rate is 44100Hz, expected 48000"},
        {[](auto& c) { c.audio->channelCount = 1; }, "audio has 1 channels, expected 2"},
    };
    for (const auto& [change, text] : cases) {
        ImportedClip output = source();
        change(output);
        EXPECT_EQ(failure(output), wrapped(text));
    }
}

TEST(ExportValidation, TolerancesAreAsStated) {
    ImportedClip output = source();
    output.duration = 10 + 1.1 * 1001 / 30000 - 1e-6;
    output.audio->sampleRate = 48'000.4;
    output.frameRate += 0.009;
    output.preferredTransform.ty = 0.9e-6;
    output.frameDuration = {1'001'097, 30'000'000}; // longer by 0.97 of a ten-thousandth
    EXPECT_EQ(failure(output), "");
    output.frameDuration = {1'001'127, 30'000'000}; // by 1.27
    EXPECT_EQ(failure(output), wrapped("the exact frame interval does not match the source"));
    output = source();
    output.frameRate = 30;
    output.frameDuration = {1, 30};
    EXPECT_EQ(failure(output), wrapped("frame rate is 30fps, expected 29.97; the exact frame interval does not match "
                                       "the source"));
}

TEST(ExportValidation, UntaggedAndPartlyTaggedSources) {
    ImportedClip clip = source();
    clip.video.colorProperties = ColorProperties{{}, "bt709", {}};
    ImportedClip output = source();
    output.video.colorProperties = ColorProperties{"smpte170m", "bt709", "smpte170m"};
    EXPECT_EQ(failure(output, clip), "");
    clip.video.colorProperties.reset();
    EXPECT_NE(validateOutput(output, clip, expectation()).details.find("Source color tags unspecified"),
              std::string::npos);
}

TEST(ExportValidation, PCMDepthAndAddedAudio) {
    ImportedClip clip = source();
    clip.audio->formatID = linearPCM;
    clip.audio->bitDepth = 20;
    ImportedClip output = clip;
    output.audio->bitDepth = 16;
    EXPECT_EQ(failure(output, clip), wrapped("PCM audio is 16-bit, expected 24"));
    clip.audio.reset();
    EXPECT_EQ(failure(output, clip), wrapped("an audio track was added even though the source has no audio"));
}

TEST(ExportValidation, ReportNamesEverything) {
    const ExportValidationReport report = validateOutput(source(), source(), expectation());
    EXPECT_EQ(report.summary, "H.264 · 1920x1080 · 29.97 fps · AAC, 48000 Hz, 2 channels");
    EXPECT_EQ(report.details, "Codec: H.264\nDimensions: 1920x1080 (encoded 1920x1080)\nFrame rate: 29.97 fps\n"
                              "Bit depth: 8-bit\nColor: video range, Source-specified color tags matched\n"
                              "Audio: AAC, 48000 Hz, 2 channels\nSource range: 0.000000:10.000000\n"
                              "Duration: 10.000s");
}

} // namespace
} // namespace flowtide::test
