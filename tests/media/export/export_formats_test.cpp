// On real files: each codec, container, colour and depth comes out as it went in, with all that it carried.
#include "media/decode_layout.h"
#include "media/export/export_engine.h"
#include "media/export/export_settings.h"
#include "media/ffmpeg/ffmpeg_backend.h"
#include "media/flowtide_error.h"
#include "tests/support/clip_maker.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

namespace flowtide::test {
namespace {

constexpr PixelLayout eightBit{ChromaSubsampling::yuv420, 8, false};
constexpr PixelLayout eightBitFull{ChromaSubsampling::yuv420, 8, true};
constexpr PixelLayout tenBit{ChromaSubsampling::yuv420, 10, false};
constexpr PixelLayout tenBit422{ChromaSubsampling::yuv422, 10, false};
constexpr PixelLayout tenBit444{ChromaSubsampling::yuv444, 10, false};

class ExportFormatsTest : public testing::Test {
protected:
    ImportedClip make(const std::string& name, const ClipRecipe& recipe) {
        makeClip(*backend_, folder_.path() / name, recipe);
        return ImportedClip::load(*backend_, folder_.path() / name);
    }
    ImportedClip exported(const ImportedClip& clip) {
        ExportRequest request;
        request.clip = clip;
        request.keyframes = {{Uuid::random(), 0, 0.5}};
        request.outputURL = folder_.path() / ("out" + clip.url.extension().string());
        ExportEngine(*backend_, [this](std::string_view line) {
            log_ += std::string(line) + "\n";
        }).run(request, [](double) {});
        return ImportedClip::load(*backend_, request.outputURL);
    }
    std::string refusal(const std::function<void()>& action) {
        try {
            action();
        } catch (const FlowtideError& error) {
            return error.what();
        }
        return {};
    }
    std::unique_ptr<MediaBackend> backend_ = makeFFmpegBackend();
    TemporaryFolder folder_;
    std::string log_;
};

TEST_F(ExportFormatsTest, EveryCodecInEveryContainerThatTakesIt) {
    const struct {
        VideoCodec codec;
        PixelLayout layout;
        std::int64_t depth;
    } codecs[] = {{VideoCodec::h264, eightBit, 8},
                  {VideoCodec::h264, eightBitFull, 8},
                  {VideoCodec::h264, tenBit, 10},
                  {VideoCodec::hevc, eightBit, 8},
                  {VideoCodec::hevc, eightBitFull, 8},
                  {VideoCodec::hevc, tenBit, 10},
                  {VideoCodec::proRes422Proxy, tenBit422, 10},
                  {VideoCodec::proRes422LT, tenBit422, 10},
                  {VideoCodec::proRes422, tenBit422, 10},
                  {VideoCodec::proRes422HQ, tenBit422, 10},
                  {VideoCodec::proRes4444, tenBit444, 12}};
    for (const auto& [codec, layout, depth] : codecs) {
        for (const char* name : {"in.mov", "in.mp4", "in.m4v"}) {
            SCOPED_TRACE(codecLabel(codec) + " " + pixelFormatName(layout) + " " + name);
            ClipRecipe recipe;
            recipe.codec = codec;
            recipe.layout = layout;
            recipe.frameCount = 12;
            recipe.color = ColorProperties{"bt709", "bt709", "bt709"};
            recipe.sampleRate = 48'000;
            if (isProRes(codec) && std::string(name) != "in.mov") {
                EXPECT_EQ(refusal([&] { make(name, recipe); }),
                          "Asset writer failed: Cannot add video input: " + codecLabel(codec) +
                              " cannot be stored in a file of the type " +
                              (std::string(name) == "in.mp4" ? "MPEG-4" : "Apple M4V"));
                continue;
            }
            const ImportedClip clip = make(name, recipe);
            const ImportedClip output = exported(clip);
            EXPECT_EQ(output.videoCodecType, codec);
            EXPECT_EQ(output.videoBitDepth(), depth);
            EXPECT_EQ(output.videoIsFullRange(), layout.fullRange);
            EXPECT_EQ(output.videoColorProperties(), recipe.color);
        }
    }
    const auto names = folder_.names();
    EXPECT_TRUE(std::none_of(names.begin(), names.end(), [](const auto& name) { return name.front() == '.'; }));
}

TEST_F(ExportFormatsTest, ColorTagsSurviveOrStayAbsent) {
    const std::optional<ColorProperties> tags[] = {
        std::nullopt,
        ColorProperties{"bt2020", "arib-std-b67", "bt2020nc"},
        ColorProperties{"bt2020", "smpte2084", "bt2020nc"},
        ColorProperties{"bt470bg", "smpte170m", "bt470bg"},
        ColorProperties{"smpte170m", "bt709", "smpte170m"},
        ColorProperties{"smpte432", "bt709", "bt709"},
    };
    for (const auto& color : tags)
        for (const char* name : {"in.mov", "in.mp4"}) {
            ClipRecipe recipe;
            recipe.codec = VideoCodec::hevc;
            recipe.layout = tenBit;
            recipe.frameCount = 4;
            recipe.color = color;
            EXPECT_EQ(exported(make(name, recipe)).videoColorProperties(), color) << name;
        }
}

TEST_F(ExportFormatsTest, WhatTheClipCarriesIsKept) {
    for (const char* name : {"in.mov", "in.mp4"}) {
        ClipRecipe recipe;
        recipe.codec = VideoCodec::hevc;
        recipe.layout = tenBit;
        recipe.frameCount = 6;
        recipe.color = ColorProperties{"bt2020", "smpte2084", "bt2020nc"};
        recipe.displayMatrix = {0, 65536, 0, -65536, 0, 0, 64 << 16, 0, 1 << 30};
        recipe.metadata.tags = {{"creation_time", "2024-01-24T14:50:14.000000Z"},
                                {"com.apple.quicktime.location.ISO6709", "+48.8577+002.295/"},
                                {"com.apple.quicktime.make", "Höchst"},
                                {"com.apple.quicktime.model", "Zwei 2"}};
        recipe.metadata.sampleAspectRatio = {4, 3};
        recipe.metadata.masteringDisplay =
            MasteringDisplay{{{{0.68, 0.32}, {0.265, 0.69}, {0.15, 0.06}}}, {0.3127, 0.329}, 0.005, 1000};
        recipe.metadata.contentLightLevel = ContentLightLevel{1000, 400};
        recipe.sampleRate = 48'000;
        recipe.channels = 6;
        recipe.channelLayout = "5.1";
        const ImportedClip clip = make(name, recipe);
        const ImportedClip output = exported(clip);
        for (const ImportedClip& one : {clip, output}) {
            SCOPED_TRACE(one.url.string());
            for (const auto& [key, value] : recipe.metadata.tags)
                EXPECT_EQ(one.metadata.tags.count(key) ? one.metadata.tags.at(key) : "", value);
            EXPECT_EQ(one.metadata.sampleAspectRatio, (MediaTime{4, 3}));
            EXPECT_EQ(one.metadata.contentLightLevel, recipe.metadata.contentLightLevel);
            ASSERT_TRUE(one.metadata.masteringDisplay);
            EXPECT_NEAR(one.metadata.masteringDisplay->primaries[1][0], 0.265, 1e-4);
            EXPECT_NEAR(one.metadata.masteringDisplay->maximumLuminance, 1000, 1e-3);
            EXPECT_EQ(one.video.displayMatrix, recipe.displayMatrix);
            ASSERT_TRUE(one.audio);
            EXPECT_EQ(one.audio->channelLayout, "5.1");
        }
    }
}

TEST_F(ExportFormatsTest, WhatTheEncodersCannotWriteIsRefusedAndLeavesNothing) {
    ClipRecipe recipe;
    recipe.width = 97;
    EXPECT_EQ(refusal([&] { make("odd.mov", recipe); }),
              "Asset writer failed: Cannot add video input: H.264 needs an even width and height, and the picture is "
              "97x64");
    recipe.width = 96;
    recipe.sampleRate = 192'000;
    EXPECT_EQ(refusal([&] { make("fast.mp4", recipe); }),
              "Asset writer failed: Cannot add audio input: AAC has no sample rate of 192000 Hz");
    EXPECT_TRUE(folder_.names().empty());
}

TEST_F(ExportFormatsTest, QuickPreviewsFit720pAndFollowTheirTimeMap) {
    ClipRecipe recipe;
    recipe.width = 1920;
    recipe.height = 1080;
    recipe.frameCount = 25;
    ExportRequest request;
    request.clip = make("in.mov", recipe);
    request.outputURL = folder_ / "preview.mov";
    request.previewResolution = PreviewResolution::quick;
    // Frames 10 to 19 at half speed, whatever the keyframes say.
    request.previewTimeMap = TimeMap({{0.4, 0}, {0.8, 0.8}}, {0.4, 0.8}, 0.8);
    ExportEngine(*backend_, [](std::string_view) {}).run(request, [](double) {});
    const ImportedClip preview = ImportedClip::load(*backend_, request.outputURL);
    EXPECT_EQ(preview.encodedWidth(), 1280);
    EXPECT_EQ(preview.encodedHeight(), 720);
    const auto numbers = frameNumbers(*backend_, preview);
    ASSERT_EQ(numbers.size(), 20U);
    for (std::size_t i = 0; i < numbers.size(); ++i)
        EXPECT_EQ(numbers[i], static_cast<std::int64_t>(10 + i / 2));
    recipe.width = 90;
    recipe.height = 160;
    EXPECT_EQ(make("small.mov", recipe).previewSized().width, 90); // never enlarged
}

TEST_F(ExportFormatsTest, HighRateLinearPCM) {
    ClipRecipe recipe;
    recipe.sampleRate = 192'000;
    recipe.channels = 8;
    recipe.audioFormat = linearPCM;
    recipe.audioBitDepth = 24;
    const ImportedClip output = exported(make("in.mov", recipe));
    EXPECT_EQ(output.audio->sampleRate, 192'000);
    EXPECT_EQ(output.audio->channelCount, 8);
    EXPECT_EQ(output.audio->bitDepth, 24);
}

} // namespace
} // namespace flowtide::test
