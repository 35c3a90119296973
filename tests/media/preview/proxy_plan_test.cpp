// Sizes and formats of proxies.
#include "media/preview/proxy_plan.h"

#include <gtest/gtest.h>

namespace flowtide {
namespace {

ImportedClip clip(std::int64_t width, std::int64_t height) {
    ImportedClip result;
    result.width = result.video.encodedWidth = width;
    result.height = result.video.encodedHeight = height;
    result.frameRate = 30;
    result.duration = 4;
    return result;
}

/// The same, lying on its side in the file, with the matrix that a phone writes.
ImportedClip turned(std::int64_t width, std::int64_t height) {
    ImportedClip result = clip(width, height);
    std::swap(result.video.encodedWidth, result.video.encodedHeight);
    result.video.displayMatrix = {0, 65536, 0, -65536, 0, 0, static_cast<std::int32_t>(width) << 16, 0, 1 << 30};
    return result;
}

TEST(ProxyPlan, FitsIntoTheFrameAndNeverGrows) {
    struct Case {
        OutputSize source;
        OutputSize proxy;
        OutputSize encoded;
    };
    for (const Case& each : std::vector<Case>{
             {{3840, 2160}, {1280, 720}, {1280, 720}},
             {{1080, 1920}, {405, 720}, {404, 720}},
             {{640, 360}, {640, 360}, {640, 360}},
             {{1280, 720}, {1280, 720}, {1280, 720}},
             {{1281, 720}, {1280, 719}, {1280, 718}},
             {{853, 481}, {853, 481}, {852, 480}},
             {{32'766, 2}, {1280, 2}, {1280, 2}},
             {{3, 32'768}, {2, 720}, {2, 720}},
             {{1, 1}, {2, 2}, {2, 2}},
             {{4096, 2160}, {1280, 675}, {1280, 674}},
             {{1920, 1081}, {1279, 720}, {1278, 720}}, // 1278.8
         }) {
        const auto [width, height] = each.source;
        SCOPED_TRACE(std::to_string(width) + " x " + std::to_string(height));
        EXPECT_EQ(proxySize(clip(width, height)), each.proxy);
        EXPECT_EQ(proxySize(turned(width, height)), each.proxy);
        const VideoSettings upright = planProxy(clip(width, height)).video;
        EXPECT_EQ((OutputSize{upright.width, upright.height}), each.encoded);
        const ProxyPlan plan = planProxy(turned(width, height));
        EXPECT_EQ((OutputSize{plan.video.height, plan.video.width}), each.encoded);
        EXPECT_EQ(plan.source.encodedWidth(), plan.video.width);
        EXPECT_EQ(plan.source.encodedHeight(), plan.video.height);
        // Turned about the corner, the picture is moved back by its own width.
        if (width > 1) {
            EXPECT_EQ(plan.video.displayMatrix[6], each.encoded.width << 16);
        }
        EXPECT_EQ(plan.video.displayMatrix[1], 65536);
    }
}

TEST(ProxyPlan, CarriesWhatPicturesNeedAndNothingOfTheRecording) {
    ImportedClip source = clip(1920, 1080);
    source.metadata.contentLightLevel = ContentLightLevel{1000, 400};
    source.metadata.tags["location"] = "+52.5+13.4/";
    const ProxyPlan plan = planProxy(source);
    EXPECT_EQ(plan.video.averageBitRate, 10'000'000);
    EXPECT_EQ(plan.metadata.contentLightLevel, source.metadata.contentLightLevel);
    EXPECT_TRUE(plan.metadata.tags.empty()) << "where a clip was taken is nobody's business in a temporary folder";
    EXPECT_FALSE(plan.audio);
}

TEST(ProxyPlan, SoundIsAACAtTheSourcesRateWhereThatExists) {
    std::vector<std::pair<double, double>> rates{{0, 48'000}, {192'000, 48'000}, {44'000, 48'000}};
    for (const double rate :
         {7'350, 8'000, 11'025, 12'000, 16'000, 22'050, 24'000, 32'000, 44'100, 48'000, 64'000, 88'200, 96'000})
        rates.emplace_back(rate, rate);
    for (const auto& [source, expected] : rates) {
        ImportedClip sounding = clip(640, 360);
        sounding.audio = AudioTrack{source, 6, "5.1", linearPCM, false, 24, {}};
        const ProxyPlan plan = planProxy(sounding);
        ASSERT_TRUE(plan.audio);
        EXPECT_EQ(plan.audio->sampleRate, expected) << source;
        EXPECT_EQ(plan.source.audio->sampleRate, expected) << source;
        EXPECT_EQ(plan.audio->channels, 6);
        EXPECT_EQ(plan.audio->bitRate, 160'000);
    }
}

} // namespace
} // namespace flowtide
