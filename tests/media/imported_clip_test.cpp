// What a probe's facts become, and which clips are refused.
#include "media/flowtide_error.h"
#include "media/imported_clip.h"
#include "project/files/project_error.h"
#include "tests/support/scripted_media.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <limits>

namespace flowtide::test {
namespace {

class ImportedClipTest : public testing::Test {
protected:
    ImportedClip load(const ProbedMedia& probe, const char* name = "take.mov") {
        writeFile(folder_ / name, "x");
        return ImportedClip::load(ScriptedBackend({.source = probe}), folder_ / name);
    }
    std::string refusal(const ProbedMedia& probe) {
        try {
            load(probe);
        } catch (const FlowtideError& error) {
            return error.what();
        }
        return {};
    }
    TemporaryFolder folder_;
};

TEST_F(ImportedClipTest, FrameDurationsOfNominalRates) {
    const struct {
        double rate;
        MediaTime expected;
    } cases[] = {{23.976, {1001, 24000}}, {24, {1, 24}},          {25, {1, 25}},    {29.97, {1001, 30000}},
                 {30, {1, 30}},           {59.94, {1001, 60000}}, {12.5, {2, 25}},  {120, {1, 120}},
                 {28.03, {100, 2803}},    {0.5, {1001, 1000}},    {1000, {1, 1000}}};
    for (const auto& [rate, expected] : cases)
        EXPECT_EQ(nominalFrameDuration(rate), expected) << rate;
}

TEST_F(ImportedClipTest, OwnSampleIntervalStandsOnlyWhereItTellsTheTracksRate) {
    ProbedMedia probe = plainProbe();
    probe.video->nominalFrameRate = 90000.0 / 1501;
    probe.video->constantSampleInterval = MediaTime{1501, 90000};
    EXPECT_EQ(load(probe).frameDuration, (MediaTime{1501, 90000}));
    probe.video->nominalFrameRate = 29.988;
    probe.video->constantSampleInterval = MediaTime{1001, 30000};
    EXPECT_EQ(load(probe).frameDuration, (MediaTime{100, 2999}));
    probe.video->nominalFrameRate = 0;
    probe.video->constantSampleInterval.reset();
    EXPECT_EQ(load(probe).frameRate, 30);
    EXPECT_EQ(load(probe).frameDuration, (MediaTime{1, 30}));
}

TEST_F(ImportedClipTest, RotationSwapsTheDisplaySizeOnly) {
    ProbedMedia probe = plainProbe();
    probe.video->encodedWidth = 1920;
    probe.video->encodedHeight = 1080;
    probe.video->displayMatrix = {0, 65536, 0, -65536, 0, 0, 1080 << 16, 0, 1 << 30};
    const ImportedClip clip = load(probe);
    EXPECT_EQ(clip.width, 1080);
    EXPECT_EQ(clip.height, 1920);
    EXPECT_EQ(clip.encodedWidth(), 1920);
    EXPECT_EQ(clip.preferredTransform, (AffineTransform{0, 1, -1, 0, 1080, 0}));
    EXPECT_FALSE(clip.preferredTransform.isIdentity());
}

TEST_F(ImportedClipTest, ImpossibleVideoIsRefused) {
    const std::string sentence =
        "Asset writer failed: This clip has unsupported or invalid video dimensions or timing.";
    const std::function<void(ProbedMedia&)> breaks[] = {
        [](ProbedMedia& media) { media.duration = 0; },
        [](ProbedMedia& media) { media.duration = std::numeric_limits<double>::quiet_NaN(); },
        [](ProbedMedia& media) { media.duration = std::numeric_limits<double>::denorm_min(); },
        [](ProbedMedia& media) { media.duration = 31'536'001; },
        [](ProbedMedia& media) { media.video->nominalFrameRate = 2000; },
        [](ProbedMedia& media) { media.video->encodedWidth = 40'000; },
        [](ProbedMedia& media) { media.video->encodedHeight = 0; },
        [](ProbedMedia& media) { media.video->displayMatrix = {}; },
    };
    for (const auto& breakIt : breaks) {
        ProbedMedia probe = plainProbe();
        breakIt(probe);
        EXPECT_EQ(refusal(probe), sentence) << &breakIt - breaks;
    }
    ProbedMedia silent = plainProbe();
    silent.video.reset();
    EXPECT_EQ(refusal(silent), "No video track found in file.");
}

TEST_F(ImportedClipTest, AudioLimits) {
    const struct {
        double rate;
        std::int64_t channels;
        bool accepted;
    } cases[] = {{96'000, 8, true},   {768'000, 64, true}, {48'000, 65, false},
                 {768'001, 2, false}, {0, 2, false},       {48'000, 0, false}};
    for (const auto& [rate, channels, accepted] : cases) {
        ProbedMedia probe = plainProbe();
        probe.audio.emplace();
        probe.audio->sampleRate = rate;
        probe.audio->channelCount = channels;
        EXPECT_EQ(refusal(probe),
                  accepted ? "" : "Asset writer failed: This clip has unsupported or invalid audio properties.");
    }
}

TEST_F(ImportedClipTest, ContainerFollowsTheExtension) {
    EXPECT_EQ(fileTypeForPath("take.MP4"), FileType::mpeg4);
    EXPECT_EQ(fileTypeForPath("take.m4v"), FileType::appleM4V);
    EXPECT_EQ(fileTypeForPath("take.mov"), FileType::quickTimeMovie);
    EXPECT_EQ(fileTypeForPath("take"), FileType::quickTimeMovie);
}

TEST_F(ImportedClipTest, NamesOfCodecs) {
    const struct {
        FourCC code;
        const char* name;
    } cases[] = {{fourCC("hvc1"), "HEVC / H.265"},           {fourCC("ap4h"), "Apple ProRes 4444"},
                 {fourCC("apco"), "Apple ProRes 422 Proxy"}, {fourCC("jpeg"), "Motion JPEG (jpeg)"},
                 {fourCC("hev1"), "Video codec hev1"},       {0x01020304, "Video codec ...."}};
    for (const auto& [code, name] : cases) {
        ProbedMedia probe = plainProbe();
        probe.video->codec = code;
        EXPECT_EQ(load(probe).videoCodecDisplayName(), name);
    }
    ProbedMedia probe = plainProbe();
    probe.video->codec.reset();
    EXPECT_EQ(load(probe).videoCodecDisplayName(), "Unknown video codec");
}

TEST_F(ImportedClipTest, OnlyRegularFilesAreProbed) {
    EXPECT_THROW(ImportedClip::load(ScriptedBackend({.source = plainProbe()}), folder_.path()), ProjectError);
    EXPECT_THROW(ImportedClip::load(ScriptedBackend({.source = plainProbe()}), folder_ / "nothing.mov"), ProjectError);
}

} // namespace
} // namespace flowtide::test
