// What the probe finds in files that cameras, phones and other programs write.
#include "media/ffmpeg/ffmpeg_backend.h"
#include "media/flowtide_error.h"
#include "tests/media/ffmpeg/remux.h"
#include "tests/support/clip_maker.h"
#include "tests/support/movie_atoms.h"
#include "tests/support/temporary_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace flowtide::test {
namespace {

using testing::ElementsAre;

class ProbeTest : public testing::Test {
protected:
    std::filesystem::path make(const char* name, const ClipRecipe& recipe) {
        makeClip(*backend_, folder_ / name, recipe);
        return folder_ / name;
    }
    std::string refusal(const std::filesystem::path& path) {
        try {
            backend_->probe(path);
        } catch (const FlowtideError& error) {
            return error.what();
        }
        return {};
    }
    std::unique_ptr<MediaBackend> backend_ = makeFFmpegBackend();
    TemporaryFolder folder_;
};

TEST_F(ProbeTest, FragmentedFilesHaveTheRateOfTheirSamples) {
    ClipRecipe recipe;
    recipe.frameDuration = {1, 30};
    recipe.frameCount = 300;
    recipe.sampleRate = 48'000;
    const auto whole = make("whole.mp4", recipe);
    const char* flags[] = {"empty_moov+frag_keyframe", "dash+global_sidx+frag_keyframe", "frag_keyframe"};
    for (const char* flag : flags) {
        remux({whole}, folder_ / "fragmented.mp4", {{"movflags", flag}, {"frag_duration", "2000000"}});
        EXPECT_NEAR(backend_->probe(folder_ / "fragmented.mp4").video->nominalFrameRate, 30, 1e-6) << flag;
    }
    // A first fragment that is not like the rest: 14 frames at half the rate.
    changeMovie(whole, [](MovieAtom& movie) {
        std::string& table = movie.track(0).at({"mdia", "minf", "stbl", "stts"}).bytes;
        const std::uint32_t interval = number32(table, 12);
        table = bytesOf32(0) + bytesOf32(2) + bytesOf32(14) + bytesOf32(2 * interval) + bytesOf32(286) +
                bytesOf32(interval);
    });
    for (const char* flag : flags) {
        remux({whole}, folder_ / "uneven.mp4", {{"movflags", flag}, {"frag_duration", "900000"}});
        EXPECT_NEAR(backend_->probe(folder_ / "uneven.mp4").video->nominalFrameRate, 30, 1e-6) << flag;
    }
}

TEST_F(ProbeTest, FramesThatAreMissingDoNotChangeTheRate) {
    ClipRecipe recipe;
    recipe.frameDuration = {1, 30};
    recipe.frameCount = 150;
    const auto path = make("in.mp4", recipe);
    // The 20th frame stays for two intervals, the 50th for three.
    changeMovie(path, [](MovieAtom& movie) {
        std::string& table = movie.track(0).at({"mdia", "minf", "stbl", "stts"}).bytes;
        const std::uint32_t interval = number32(table, 12);
        table = bytesOf32(0) + bytesOf32(5);
        for (const auto& [count, intervals] : {std::pair{20U, 1U}, {1U, 2U}, {29U, 1U}, {1U, 3U}, {99U, 1U}})
            table += bytesOf32(count) + bytesOf32(intervals * interval);
    });
    const ProbedMedia media = backend_->probe(path);
    EXPECT_NEAR(media.video->nominalFrameRate, 30, 1e-6);
    EXPECT_FALSE(media.video->constantSampleInterval);
}

TEST_F(ProbeTest, EncryptedTracksAreRefusedByName) {
    ClipRecipe recipe;
    recipe.frameCount = 10;
    recipe.sampleRate = 48'000;
    const auto plain = make("plain.mp4", recipe);
    remux({plain}, folder_ / "locked.mp4",
          {{"encryption_scheme", "cenc-aes-ctr"},
           {"encryption_key", "76a6c65c5ea762046bd749a2e632ccbb"},
           {"encryption_kid", "a7e61c373e219033c21091fa607bf3b8"}});
    EXPECT_EQ(refusal(folder_ / "locked.mp4"),
              "Asset reader failed: locked.mp4 could not be read: its video track is encrypted.");
    // A scheme that says nothing of the codec behind it.
    const struct {
        std::size_t track;
        const char* type;
        const char* name;
    } cases[] = {{0, "encv", "video"}, {1, "enca", "sound"}};
    for (const auto& [track, type, name] : cases) {
        const auto path = make("in.mp4", recipe);
        changeMovie(path, [&, index = track, code = type](MovieAtom& movie) {
            movie.track(index).at({"mdia", "minf", "stbl", "stsd"}).children.front().type = code;
        });
        EXPECT_EQ(refusal(path),
                  std::string("Asset reader failed: in.mp4 could not be read: its ") + name + " track is encrypted.");
    }
    EXPECT_EQ(refusal(plain), "");
}

TEST_F(ProbeTest, WhatExportsLeaveOutIsListed) {
    ClipRecipe recipe;
    recipe.frameCount = 10;
    recipe.sampleRate = 48'000;
    const auto first = make("first.mp4", recipe);
    recipe.sampleRate = 0;
    recipe.codec = VideoCodec::hevc;
    const auto second = make("second.mp4", recipe);
    EXPECT_TRUE(backend_->probe(first).uncarriedStreams.empty());
    remux({first, second, first}, folder_ / "many.mp4", {});
    using Kind = UncarriedStream::Kind;
    EXPECT_THAT(backend_->probe(folder_ / "many.mp4").uncarriedStreams,
                ElementsAre(UncarriedStream{Kind::video, fourCC("hev1")}, UncarriedStream{Kind::video, fourCC("avc1")},
                            UncarriedStream{Kind::sound, fourCC("mp4a")}));
    const struct {
        const char* handler;
        const char* type;
        UncarriedStream expected;
    } cases[] = {{"tmcd", "tmcd", {Kind::timecode, fourCC("tmcd")}},
                 {"sbtl", "tx3g", {Kind::subtitles, fourCC("tx3g")}},
                 {"meta", "mebx", {Kind::data, fourCC("mebx")}}};
    for (const auto& one : cases) {
        std::filesystem::copy_file(first, folder_ / "in.mov", std::filesystem::copy_options::overwrite_existing);
        changeMovie(folder_ / "in.mov", [&](MovieAtom& movie) {
            MovieAtom& media = movie.track(1).child("mdia");
            media.child("hdlr").bytes.replace(8, 4, one.handler);
            media.at({"minf", "stbl", "stsd"}).children.front().type = one.type;
        });
        EXPECT_THAT(backend_->probe(folder_ / "in.mov").uncarriedStreams, ElementsAre(one.expected)) << one.type;
    }
}

TEST_F(ProbeTest, LogarithmicSoundIsNoLinearPCM) {
    ClipRecipe recipe;
    recipe.frameCount = 10;
    recipe.sampleRate = 48'000;
    recipe.audioFormat = linearPCM;
    const struct {
        const char* code;
        FourCC format;
    } cases[] = {{"ulaw", fourCC("ulaw")}, {"alaw", fourCC("alaw")}, {"sowt", linearPCM}, {"twos", linearPCM}};
    for (const auto& [code, format] : cases) {
        const auto path = make("in.mov", recipe);
        changeMovie(path, [type = code](MovieAtom& movie) {
            movie.track(1).at({"mdia", "minf", "stbl", "stsd"}).children.front().type = type;
        });
        const ProbedMedia media = backend_->probe(path);
        ASSERT_TRUE(media.audio) << code;
        EXPECT_EQ(media.audio->formatID, format) << code;
        EXPECT_EQ(media.audio->bitDepth, format == linearPCM ? 16 : 0) << code;
        EXPECT_FALSE(media.audio->isLosslesslyCompressed);
    }
}

TEST_F(ProbeTest, FactsOfThePictures) {
    const struct {
        VideoCodec codec;
        PixelLayout layout;
        std::int64_t depth;
    } cases[] = {{VideoCodec::h264, {ChromaSubsampling::yuv420, 8, true}, 8},
                 {VideoCodec::hevc, {ChromaSubsampling::yuv420, 10, false}, 10},
                 {VideoCodec::proRes422, {ChromaSubsampling::yuv422, 10, false}, 10},
                 {VideoCodec::proRes4444, {ChromaSubsampling::yuv444, 10, false}, 12}};
    for (const auto& [codec, layout, depth] : cases) {
        ClipRecipe recipe;
        recipe.codec = codec;
        recipe.layout = layout;
        recipe.frameCount = 3;
        const ProbedMedia media = backend_->probe(make("in.mov", recipe));
        EXPECT_EQ(media.video->chroma, layout.chroma) << codecLabel(codec);
        EXPECT_EQ(media.video->bitDepth, depth) << codecLabel(codec);
        EXPECT_EQ(media.video->isFullRange, layout.fullRange) << codecLabel(codec);
        EXPECT_FALSE(media.video->isInterlaced || media.video->isRGB || media.video->hasAlpha) << codecLabel(codec);
    }
}

TEST_F(ProbeTest, FactsThatOnlyTheSampleDescriptionTells) {
    ClipRecipe recipe;
    recipe.codec = VideoCodec::hevc;
    recipe.layout = {ChromaSubsampling::yuv420, 10, false};
    recipe.frameCount = 3;
    recipe.sampleRate = 48'000;
    recipe.audioFormat = linearPCM;
    const auto described = [&](std::size_t track, const std::function<void(MovieAtom&)>& change) {
        const auto path = make("in.mov", recipe);
        changeMovie(path, [&](MovieAtom& movie) {
            change(movie.track(track).at({"mdia", "minf", "stbl", "stsd"}).children.front());
        });
        return backend_->probe(path);
    };
    const auto added = [](const std::string& type, const std::string& body) {
        return [=](MovieAtom& entry) {
            entry.bytes += bytesOf32(static_cast<std::uint32_t>(8 + body.size())) + type + body;
        };
    };
    // Version 1.0, profile 8, level 4, with metadata and base layer, compatible with HLG; reserved bytes after them.
    const std::string dolbyVision = std::string("\x01\x00\x10\x25\x40", 5) + std::string(19, '\0');
    EXPECT_TRUE(described(0, added("dvcC", dolbyVision)).video->hasDolbyVision);
    EXPECT_FALSE(described(0, added("free", dolbyVision)).video->hasDolbyVision);
    recipe.codec = VideoCodec::proRes422;
    recipe.layout = {ChromaSubsampling::yuv422, 10, false};
    EXPECT_TRUE(described(0, added("fiel", std::string("\x02\x01", 2))).video->isInterlaced);
    EXPECT_FALSE(described(0, added("fiel", std::string("\x01\x00", 2))).video->isInterlaced);
    EXPECT_TRUE(described(1, [](MovieAtom& entry) { entry.type = "alac"; }).audio->isLosslesslyCompressed);
    EXPECT_FALSE(described(1, [](MovieAtom& entry) { entry.type = "sowt"; }).audio->isLosslesslyCompressed);
}

TEST_F(ProbeTest, HDRThatOnlyThePicturesSayIsFound) {
    ClipRecipe recipe;
    recipe.codec = VideoCodec::hevc;
    recipe.layout = {ChromaSubsampling::yuv420, 10, false};
    recipe.frameCount = 3;
    recipe.color = ColorProperties{"bt2020", "smpte2084", "bt2020nc"};
    recipe.metadata.masteringDisplay =
        MasteringDisplay{{{{0.68, 0.32}, {0.265, 0.69}, {0.15, 0.06}}}, {0.3127, 0.329}, 0.005, 1000};
    recipe.metadata.contentLightLevel = ContentLightLevel{1000, 400};
    const auto path = make("in.mp4", recipe);
    int removed = 0;
    changeMovie(path, [&](MovieAtom& movie) {
        std::string& entry = movie.track(0).at({"mdia", "minf", "stbl", "stsd"}).children.front().bytes;
        for (const char* type : {"mdcv", "clli"})
            if (const auto at = entry.find(type); at != std::string::npos) {
                entry.replace(at, 4, "free");
                ++removed;
            }
    });
    EXPECT_EQ(removed, 2);
    const ProbedMedia media = backend_->probe(path);
    EXPECT_EQ(media.metadata.contentLightLevel, recipe.metadata.contentLightLevel);
    ASSERT_TRUE(media.metadata.masteringDisplay);
    EXPECT_NEAR(media.metadata.masteringDisplay->primaries[1][0], 0.265, 1e-4);
    EXPECT_NEAR(media.metadata.masteringDisplay->whitePoint[1], 0.329, 1e-4);
    EXPECT_NEAR(media.metadata.masteringDisplay->maximumLuminance, 1000, 1e-3);
    EXPECT_NEAR(media.metadata.masteringDisplay->minimumLuminance, 0.005, 1e-6);
    EXPECT_FALSE(media.video->hasHDR10Plus || media.video->hasDolbyVision);
}

} // namespace
} // namespace flowtide::test
