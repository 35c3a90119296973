// Codec, bitrate, colour and audio decisions.
#include "media/decode_layout.h"
#include "media/export/export_settings.h"

#include <gtest/gtest.h>

#include <cmath>

namespace flowtide::test {
namespace {

ImportedClip hevcClip() {
    ImportedClip clip;
    clip.videoCodecType = VideoCodec::hevc;
    clip.frameRate = 30;
    clip.video.encodedWidth = clip.width = 1920;
    clip.video.encodedHeight = clip.height = 1080;
    return clip;
}

TEST(ExportSettings, BitRates) {
    ImportedClip clip = hevcClip();
    EXPECT_EQ(transparentBitRate(clip, VideoCodec::hevc, 1), 3'110'400);
    EXPECT_EQ(transparentBitRate(clip, VideoCodec::h264, 1), 4'976'640);
    EXPECT_EQ(transparentBitRate(clip, VideoCodec::hevc, 606.0 / 1920), 1'000'000); // raised to the floor
    clip.video.estimatedDataRate = 500'000; // not above the threshold: not believed
    EXPECT_EQ(transparentBitRate(clip, VideoCodec::hevc, 1), 3'110'400);
    clip.video.estimatedDataRate = 20'000'001;
    EXPECT_EQ(transparentBitRate(clip, VideoCodec::hevc, 0.5), 10'000'001);
    // A crop keeps its share of the source's rate, and a picture that is no crop never gets more than all of it.
    const auto averageFor = [&](OutputSize size) {
        return videoSettings(clip, VideoCodec::hevc, size, 1).averageBitRate;
    };
    EXPECT_EQ(averageFor({606, 1080}), std::llround(20'000'001 * 606.0 / 1920));
    EXPECT_EQ(averageFor({3840, 2160}), 20'000'001);
    EXPECT_EQ(videoSettings(clip, VideoCodec::proRes422, {1920, 1080}, 1).averageBitRate, std::nullopt);
    clip.video.estimatedDataRate = 600'000;
    EXPECT_EQ(transparentBitRate(clip, VideoCodec::hevc, 1), 1'000'000);
    clip.video.estimatedDataRate = 1e300;
    EXPECT_GT(transparentBitRate(clip, VideoCodec::hevc, 1), 0);
}

TEST(ExportSettings, DecodeLayoutFollowsCodecAndDepth) {
    ImportedClip clip = hevcClip();
    EXPECT_EQ(pixelFormatName(decodePixelFormat(clip)), "420v");
    clip.video.isFullRange = true;
    EXPECT_EQ(pixelFormatName(decodePixelFormat(clip)), "420f");
    clip.video.bitDepth = 10;
    EXPECT_EQ(pixelFormatName(decodePixelFormat(clip)), "xf20");
    clip.videoCodecType = VideoCodec::proRes422LT;
    EXPECT_EQ(pixelFormatName(decodePixelFormat(clip)), "xf22");
    clip.video.isFullRange = false;
    clip.videoCodecType = VideoCodec::proRes4444;
    clip.video.bitDepth = 12;
    EXPECT_EQ(pixelFormatName(decodePixelFormat(clip)), "x444");
    clip.videoCodecType.reset();
    clip.video.bitDepth = 8;
    EXPECT_EQ(outputCodec(clip), VideoCodec::hevc);
    EXPECT_EQ(pixelFormatName(decodePixelFormat(clip)), "420v");
}

TEST(ExportSettings, ColorTags) {
    EXPECT_EQ(presentColorTagNames({{}, "bt709", "bt709"}),
              (std::vector<std::string>{"transfer function", "YCbCr matrix"}));
    EXPECT_EQ(videoSettings(hevcClip(), VideoCodec::hevc, {1920, 1080}, 1).color, std::nullopt);
}

TEST(ExportSettings, AudioFollowsSourceAndContainer) {
    ImportedClip clip = hevcClip();
    EXPECT_EQ(expectedAudioFormatID(clip, FileType::quickTimeMovie), std::nullopt);
    clip.audio.emplace();
    clip.audio->sampleRate = 48'000;
    clip.audio->channelCount = 2;
    clip.audio->formatID = linearPCM;
    clip.audio->bitDepth = 8;
    EXPECT_EQ(audioSettings(clip, FileType::quickTimeMovie).format, linearPCM);
    EXPECT_EQ(audioSettings(clip, FileType::quickTimeMovie).bitDepth, 24);
    clip.audio->bitDepth = 32;
    EXPECT_EQ(audioSettings(clip, FileType::quickTimeMovie).bitDepth, 32);
    EXPECT_EQ(audioSettings(clip, FileType::mpeg4).format, aac);
    const struct {
        std::optional<double> source;
        std::int64_t expected;
    } rates[] = {{500'000, 320'000}, {std::nullopt, 256'000}, {32'000, 64'000}, {128'000.4, 128'000}};
    for (const auto& [source, expected] : rates) {
        clip.audio->estimatedDataRate = source;
        EXPECT_EQ(audioSettings(clip, FileType::mpeg4).bitRate, expected);
    }
}

} // namespace
} // namespace flowtide::test
