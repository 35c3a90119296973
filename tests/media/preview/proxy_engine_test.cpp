// Proxies of made clips, frame by frame, and how a proxy fails.
#include "media/export/temporary_export.h"
#include "media/ffmpeg/ffmpeg_backend.h"
#include "media/flowtide_error.h"
#include "media/preview/proxy_engine.h"
#include "media/sound/audio_decoding.h"
#include "tests/support/scripted_media.h"
#include "tests/support/temporary_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

namespace flowtide {
namespace {

using testing::IsEmpty;

struct Source {
    MediaTime timeBase{1, 600};
    std::vector<std::int64_t> starts; ///< in ticks
    std::int64_t end = 0;
    VideoSettings video;
    MediaTime sampleAspectRatio{1, 1};
    bool hasSound = false;
};

Source unevenSource() {
    Source source;
    source.video.width = 128;
    source.video.height = 96;
    source.video.averageBitRate = 1'000'000;
    for (std::int64_t i = 0, at = 0; i < 40; ++i, at += 20 + 7 * (i % 5))
        source.starts.push_back(at);
    source.end = source.starts.back() + 91;
    return source;
}

std::filesystem::path made(const MediaBackend& backend, const std::filesystem::path& path, const Source& source) {
    constexpr int channels = 2;
    constexpr double rate = 44'100;
    CarriedMetadata metadata;
    metadata.sampleAspectRatio = source.sampleAspectRatio;
    TemporaryExport file(path);
    const auto writer = backend.createMovie(file, FileType::quickTimeMovie, metadata);
    VideoSettings video = source.video;
    video.timeBase = source.timeBase;
    writer->addVideo(video);
    if (source.hasSound) writer->addAudio({aac, rate, channels, "stereo", 256'000, 0});
    writer->start();
    for (std::size_t i = 0; i < source.starts.size(); ++i)
        writer->appendVideo(test::numberedFrame(video.layout, video.width, video.height, static_cast<std::int64_t>(i)),
                            source.starts[i], source.end - source.starts[i]);
    writer->finishVideo();
    if (source.hasSound) {
        std::vector<float> samples;
        for (int n = 0; n < static_cast<int>(source.timeBase.secondsTimes(source.end) * rate); ++n)
            for (int channel = 0; channel < channels; ++channel)
                samples.push_back(static_cast<float>(test::chirp(n / rate, channel)));
        writer->appendAudio(samples);
        writer->finishAudio();
    }
    writer->finish();
    file.moveIntoPlace();
    return path;
}

class ProxyEngineTest : public testing::Test {
protected:
    ImportedClip proxyOf(const ImportedClip& clip) {
        std::vector<double> reported;
        const auto path =
            ProxyEngine(*backend_, items_).makeProxy(clip, [&](double fraction) { reported.push_back(fraction); });
        EXPECT_TRUE(std::is_sorted(reported.begin(), reported.end()));
        return ImportedClip::load(*backend_, path);
    }
    std::vector<TimedFrame> framesOf(const ImportedClip& clip) {
        const PixelLayout layout{ChromaSubsampling::yuv420, 8, clip.videoIsFullRange()};
        const auto reader = backend_->openVideo(clip, layout, {0, clip.duration});
        std::vector<TimedFrame> frames;
        while (auto frame = reader->next())
            frames.push_back(std::move(*frame));
        return frames;
    }

    const std::unique_ptr<MediaBackend> backend_ = makeFFmpegBackend();
    const test::TemporaryFolder sources_;
    const test::TemporaryFolder folder_;
    TemporaryItems items_{folder_.path()};
};

TEST_F(ProxyEngineTest, HasEveryFrameAtItsOwnTime) {
    Source even = unevenSource();
    even.timeBase = {1001, 30'000};
    for (std::size_t i = 0; i < even.starts.size(); ++i)
        even.starts[i] = static_cast<std::int64_t>(i);
    even.end = static_cast<std::int64_t>(even.starts.size());
    Source late = unevenSource();
    late.timeBase = {1, 90'000};
    for (auto& start : late.starts)
        start = start * 150 + 4567;
    late.end = late.end * 150 + 4567;
    Source single = unevenSource();
    single.starts = {0};
    single.end = 777;
    for (const Source& source : {unevenSource(), even, late, single}) {
        SCOPED_TRACE(source.timeBase.denominator);
        const auto clip = ImportedClip::load(*backend_, made(*backend_, sources_ / "a.mov", source));
        const ImportedClip proxy = proxyOf(clip);
        const auto frames = framesOf(proxy);
        ASSERT_EQ(frames.size(), source.starts.size());
        for (std::size_t i = 0; i < frames.size(); ++i) {
            EXPECT_NEAR(frames[i].time.value, source.timeBase.secondsTimes(source.starts[i]), 1e-9) << i;
            EXPECT_EQ(test::numberOf(frames[i].frame), static_cast<std::int64_t>(i));
        }
        EXPECT_NEAR(proxy.video.end.value(), clip.video.end.value(), 1e-9);
        EXPECT_FALSE(proxy.hasAudio());
        EXPECT_EQ(proxy.videoCodecFourCC(), fourCC("avc1"));
    }
}

TEST_F(ProxyEngineTest, LooksAsTheSourceDoes) {
    Source source = unevenSource();
    source.video.width = 1440;
    source.video.height = 1080;
    source.video.layout = {ChromaSubsampling::yuv420, 10, true};
    source.video.codec = VideoCodec::hevc;
    source.video.color = ColorProperties{"bt2020", "arib-std-b67", "bt2020nc"};
    source.video.displayMatrix = {0, 65536, 0, -65536, 0, 0, 1080 << 16, 0, 1 << 30};
    source.sampleAspectRatio = {4, 3};
    source.starts.resize(6);
    source.end = source.starts.back() + 20;
    const auto clip = ImportedClip::load(*backend_, made(*backend_, sources_ / "a.mov", source));
    const ImportedClip proxy = proxyOf(clip);
    // Displayed 1080 × 1440, hence at half the size: 540 × 720.
    EXPECT_EQ((OutputSize{proxy.width, proxy.height}), (OutputSize{540, 720}));
    EXPECT_EQ((OutputSize{proxy.encodedWidth(), proxy.encodedHeight()}), (OutputSize{720, 540}));
    EXPECT_EQ(proxy.preferredTransform, (AffineTransform{0, 1, -1, 0, 540, 0}));
    EXPECT_EQ(proxy.metadata.sampleAspectRatio, (MediaTime{4, 3}));
    EXPECT_EQ(proxy.videoColorProperties(), source.video.color);
    EXPECT_TRUE(proxy.videoIsFullRange());
    EXPECT_EQ(proxy.videoBitDepth(), 8);
    const auto frames = framesOf(proxy);
    ASSERT_EQ(frames.size(), 6U);
    for (std::size_t i = 0; i < 6; ++i)
        EXPECT_EQ(test::numberOf(frames[i].frame), static_cast<std::int64_t>(i));
}

TEST_F(ProxyEngineTest, SoundStaysWhereItWas) {
    Source source = unevenSource();
    source.hasSound = true;
    const auto clip = ImportedClip::load(*backend_, made(*backend_, sources_ / "a.mov", source));
    const ImportedClip proxy = proxyOf(clip);
    ASSERT_TRUE(proxy.hasAudio());
    EXPECT_EQ(proxy.audio->formatID, aac);
    EXPECT_EQ(proxy.audio->sampleRate, 44'100);
    EXPECT_EQ(proxy.audio->channelCount, 2);
    const AudioData sound = AudioDecoding::readAll(*backend_, proxy, {0, proxy.duration});
    EXPECT_NEAR(static_cast<double>(sound.frameCount()) / 44'100, proxy.duration, 0.03);
    double squares = 0;
    int compared = 0;
    for (std::int64_t n = 4'000; n < sound.frameCount() - 4'000; ++n)
        for (int channel = 0; channel < 2; ++channel, ++compared) {
            const auto sample = static_cast<double>(sound.samples[static_cast<std::size_t>(2 * n + channel)]);
            squares += std::pow(sample - test::chirp(static_cast<double>(n) / 44'100, channel), 2);
        }
    // A shift of one sample, at the sweep's middle of 560 Hz: 0.5 × 2π × 560 / 44'100 / √2.
    EXPECT_LT(std::sqrt(squares / compared), 0.5 * 0.028);
}

TEST_F(ProxyEngineTest, SoundThatStartsLateOrHasGapsIsFilledWithSilence) {
    test::MediaScript script;
    script.source = test::plainProbe();
    script.source.audio = AudioTrack{48'000, 1, "mono", aac, false, 0, {}};
    script.audioBlocks = {{{0.5}, std::vector<float>(4'800, 0.25F)},
                          {{0.55}, std::vector<float>(4'800, 0.5F)}, // half of it was delivered already
                          {{1.9}, std::vector<float>(24'000, 0.75F)}};
    std::vector<float> heard;
    script.onAppendMovieSound = [&](std::span<const float> samples) {
        heard.insert(heard.end(), samples.begin(), samples.end());
    };
    const test::ScriptedBackend backend(script);
    ProxyEngine(backend, items_)
        .makeProxy(ImportedClip::load(backend, made(*backend_, sources_ / "a.mov", unevenSource())));
    ASSERT_EQ(heard.size(), 96'000U) << "the clip's two seconds, and nothing past its end";
    for (std::size_t n = 0; n < heard.size(); ++n) {
        const float expected = n < 24'000 ? 0 : n < 28'800 ? 0.25F : n < 31'200 ? 0.5F : n < 91'200 ? 0 : 0.75F;
        ASSERT_EQ(heard[n], expected) << n;
    }
}

TEST_F(ProxyEngineTest, DamageInTheSourceIsToldWithItsCount) {
    const auto clip = ImportedClip::load(*backend_, made(*backend_, sources_ / "a.mov", unevenSource()));
    const std::pair<int, std::vector<std::string>> cases[] = {
        {0, {}},
        {1, {"1 damaged source frame was decoded approximately."}},
        {3, {"3 damaged source frames were decoded approximately."}},
    };
    for (const auto& [frames, expected] : cases) {
        test::MediaScript script;
        script.source = test::plainProbe();
        script.concealedFrames = frames;
        const test::ScriptedBackend backend(script);
        std::vector<std::string> said;
        ProxyEngine(backend, items_, [&](std::string_view line) { said.emplace_back(line); }).makeProxy(clip);
        EXPECT_EQ(said, expected);
    }
}

TEST_F(ProxyEngineTest, SaysWhatWentWrongAndLeavesNothing) {
    const auto sourcePath = made(*backend_, sources_ / "a.mov", unevenSource());
    const auto fail = [](auto&&...) { throw FlowtideError::writerFailed("No space left on device (error 28)"); };
    struct Case {
        const char* sentence;
        std::function<void(test::MediaScript&)> arrange;
    };
    for (const Case& each : std::vector<Case>{
             {"Cannot read source video for proxy", [&](auto& script) { script.onOpenVideo = fail; }},
             {"Cannot write proxy video", [&](auto& script) { script.onStart = fail; }},
             {"Proxy decode failed", [](auto& script) { script.decodableFrames = 0; }},
             {"Proxy decode failed", [](auto& script) { script.decodableFrames = 7; }},
             {"Proxy decode failed", [](auto& script) { script.source.duration = 0.001; }},
             {"Proxy encode failed", [&](auto& script) { script.onAppendVideo = fail; }},
             {"Proxy encode failed", [&](auto& script) { script.onAppendMovieSound = fail; }},
             {"Proxy reader failed", [&](auto& script) { script.onOpenAudio = fail; }},
             {"Proxy writer failed", [&](auto& script) { script.onFinish = fail; }},
             {"Proxy render produced a zero-byte file", [](auto& script) { script.writesNothing = true; }},
             {"Source has no video track", [](auto& script) { script.source.video->encodedWidth = 1; }},
         }) {
        SCOPED_TRACE(each.sentence);
        test::MediaScript script;
        script.source = test::plainProbe();
        script.source.audio = AudioTrack{48'000, 1, "mono", aac, false, 0, {}};
        script.audioBlocks = {{{0}, std::vector<float>(48'000)}};
        each.arrange(script);
        const test::ScriptedBackend backend(script);
        ImportedClip clip = ImportedClip::load(backend, sourcePath);
        if (clip.encodedWidth() == 1) clip.video.encodedWidth = 0;
        TemporaryItems items(folder_.path());
        try {
            ProxyEngine(backend, items).makeProxy(clip);
            ADD_FAILURE() << "no failure";
        } catch (const FlowtideError& error) {
            EXPECT_EQ(error.kind(), FlowtideError::Case::proxyFailed);
            EXPECT_STREQ(error.what(), (std::string("Proxy failed: ") + each.sentence).c_str());
        }
        for (const std::string& name : folder_.names())
            EXPECT_FALSE(name.starts_with("FlowtideProxy")) << name;
    }
}

TEST_F(ProxyEngineTest, AFolderThatCannotBeWrittenToIsTheWritersFailure) {
    test::writeFile(folder_ / "file", "");
    TemporaryItems items(folder_ / "file");
    const auto clip = ImportedClip::load(*backend_, made(*backend_, sources_ / "a.mov", unevenSource()));
    EXPECT_THAT([&] { ProxyEngine(*backend_, items).makeProxy(clip); },
                testing::ThrowsMessage<FlowtideError>("Proxy failed: Proxy writer failed"));
}

TEST_F(ProxyEngineTest, CancellingLeavesNothing) {
    ProxyEngine* running = nullptr;
    test::MediaScript script;
    script.source = test::plainProbe();
    script.source.audio = AudioTrack{48'000, 1, "mono", aac, false, 0, {}};
    script.onAppendVideo = [&](std::int64_t start) {
        if (start > 10'000) running->cancel();
    };
    const test::ScriptedBackend backend(script);
    const ImportedClip clip = ImportedClip::load(backend, made(*backend_, sources_ / "a.mov", unevenSource()));
    {
        TemporaryItems items(folder_.path());
        ProxyEngine engine(backend, items);
        running = &engine;
        try {
            engine.makeProxy(clip);
            ADD_FAILURE() << "no failure";
        } catch (const FlowtideError& error) {
            EXPECT_EQ(error.kind(), FlowtideError::Case::exportCancelled);
        }
    }
    EXPECT_THAT(folder_.names(), IsEmpty());
}

} // namespace
} // namespace flowtide
