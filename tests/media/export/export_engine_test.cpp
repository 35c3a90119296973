// An export's life on scripted media: failures, cancellation, and what is left on the disk.
#include "media/export/export_engine.h"
#include "media/flowtide_error.h"
#include "project/files/project_error.h"
#include "tests/support/scripted_media.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <mutex>

namespace flowtide::test {
namespace {

class ExportEngineTest : public testing::Test {
protected:
    ExportEngineTest() {
        script_.source = plainProbe();
        writeFile(folder_ / "in.mov", "source");
        writeFile(folder_ / "out.mov", "old take");
    }

    ExportRequest request() {
        ExportRequest request;
        request.clip = ImportedClip::load(ScriptedBackend(script_), folder_ / "in.mov");
        request.keyframes = {{Uuid::random(), 0, 1}, {Uuid::random(), 2, 1}};
        request.outputURL = folder_ / "out.mov";
        return request;
    }

    /// Runs the export; the error's text, or nothing.
    std::string run(
        const ExportRequest& request, const ProgressHandler& onProgress = [](double) {}) {
        const ScriptedBackend backend(script_);
        ExportEngine engine(backend, [this](std::string_view line) { log_ += std::string(line) + "\n"; });
        engine_ = &engine;
        try {
            engine.run(request, onProgress);
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return {};
    }

    void expectUntouched() {
        EXPECT_EQ(folder_.names(), (std::vector<std::string>{"in.mov", "out.mov"}));
        EXPECT_EQ(readFile(folder_ / "out.mov"), "old take");
        EXPECT_EQ(readFile(folder_ / "in.mov"), "source");
    }

    TemporaryFolder folder_;
    MediaScript script_;
    std::string log_;
    ExportEngine* engine_ = nullptr;
};

TEST_F(ExportEngineTest, ReplacesTheDestinationAfterVerification) {
    script_.onFinish = [&] { EXPECT_EQ(readFile(folder_ / "out.mov"), "old take"); };
    writeFile(folder_ / ".out-export-3F2504E0-4F89-41D3-9A0C-0305E82C3301.mov", "left by a dead process");
    EXPECT_EQ(run(request()), "");
    EXPECT_EQ(readFile(folder_ / "out.mov"), "movie");
    EXPECT_EQ(folder_.names(), (std::vector<std::string>{"in.mov", "out.mov"}));
    const char* lines[] = {"[Export] Source duration: 2.000s, Output duration: 2.000s\n[Export] Source range: ",
                           "\n[Export] Resolution: 64x48\n[Export] Container: QuickTime movie\n",
                           "[Export] Frame rendering: Original Frames · 0 source ranges\n",
                           "[Export] Codec: H.264\n",
                           "[Export] Rendering 50 video frames at source frame rate...\n",
                           "[Export] Video done: 50 frames",
                           "[Export] Verification passed: H.264",
                           "[Export] Dimensions: 64x48 (encoded 64x48)\n",
                           "[Export] Duration: 2.000s\n"};
    std::size_t position = 0;
    for (const char* line : lines) {
        position = log_.find(line, position);
        ASSERT_NE(position, std::string::npos) << line << "\nin order in\n" << log_;
    }
}

TEST_F(ExportEngineTest, DamageInTheSourceIsToldWithItsCount) {
    AudioTrack& audio = script_.source.audio.emplace();
    audio.sampleRate = 48'000;
    audio.channelCount = 2;
    audio.formatID = linearPCM;
    audio.bitDepth = 16;
    EXPECT_EQ(run(request()), "");
    EXPECT_EQ(log_.find("damaged"), std::string::npos) << log_;
    const struct {
        int frames, stretches;
        const char *ofFrames, *ofStretches;
    } warnings[] = {
        {3, 1, "3 damaged source frames were", "1 damaged stretch of the source's sound was"},
        {1, 2, "1 damaged source frame was", "2 damaged stretches of the source's sound were"},
    };
    for (const auto& [frames, stretches, ofFrames, ofStretches] : warnings) {
        script_.concealedFrames = frames;
        script_.damagedSoundStretches = stretches;
        EXPECT_EQ(run(request()), "");
        for (const std::string& sentence : {std::string(ofFrames) + " decoded approximately.\n",
                                            std::string(ofStretches) + " replaced by silence.\n"})
            EXPECT_NE(log_.find("[Export] Warning: " + sentence), std::string::npos) << log_;
    }
}

TEST_F(ExportEngineTest, FailedVerificationTouchesNothing) {
    script_.probeOfOutput = [](ProbedMedia probe) {
        probe.video->isFullRange = true;
        return probe;
    };
    EXPECT_EQ(run(request()), "Export validation failed: video color range is full range, expected video range. The "
                              "destination file was left untouched.");
    expectUntouched();
}

TEST_F(ExportEngineTest, UnreadableOutputTouchesNothing) {
    script_.probeOfOutput = [](const ProbedMedia&) -> ProbedMedia { throw FlowtideError::readerFailed("no moov"); };
    EXPECT_EQ(run(request()), "Export validation failed: The rendered file could not be reopened: Asset reader failed: "
                              "no moov The destination file was left untouched.");
    expectUntouched();
}

TEST_F(ExportEngineTest, FailuresOfEitherWorkerEndTheRender) {
    script_.decodableFrames = 20;
    EXPECT_EQ(run(request()), "Asset reader failed: Video decode failed mid-file");
    expectUntouched();

    script_ = MediaScript{.source = plainProbe()};
    script_.source.audio.emplace();
    script_.source.audio->formatID = aac;
    script_.source.audio->sampleRate = 8000;
    script_.source.audio->channelCount = 1;
    script_.onAppendVideo = [](std::int64_t index) {
        if (index == 7) throw FlowtideError::writerFailed("Failed to append video frame 7: disk");
    };
    EXPECT_EQ(run(request()), "Asset writer failed: Failed to append video frame 7: disk");
    expectUntouched();

    script_.onAppendVideo = {};
    script_.decodableFrames = 1'000'000;
    ExportRequest empty = request();
    empty.clip.duration = 0.001; // too short for a single decoded frame
    EXPECT_EQ(run(empty), "Asset writer failed: No video frames were written");
    expectUntouched();
}

TEST_F(ExportEngineTest, CancellationLeavesNothing) {
    script_.onAppendVideo = [&](std::int64_t index) {
        if (index == 10) engine_->cancel();
        EXPECT_LE(index, 10);
    };
    EXPECT_EQ(run(request()), "Export was cancelled.");
    expectUntouched();

    script_.onAppendVideo = {};
    script_.onFinish = [&] { engine_->cancel(); };
    EXPECT_EQ(run(request()), "Export was cancelled.");
    expectUntouched();
}

TEST_F(ExportEngineTest, DestinationsThatCannotBeReplacedAreRefused) {
    std::filesystem::create_directory(folder_ / "folder");
    std::filesystem::create_symlink("out.mov", folder_ / "link.mov");
    std::filesystem::create_symlink("in.mov", folder_ / "source-link.mov");
    std::filesystem::create_hard_link(folder_ / "in.mov", folder_ / "source-hard.mov");
    const std::string own = "Choose a different output file. Loftwell Video keeps your original video unchanged.";
    const struct {
        const char* name;
        std::string sentence;
    } cases[] = {
        {"in.mov", own},
        {"source-link.mov", own},
        {"source-hard.mov", own},
        {"folder", "Asset writer failed: The destination is a folder. Choose a file name for the export."},
        {"link.mov", "Asset writer failed: The destination is a symbolic link. Choose a regular file."},
        {"nowhere/out.mov", "Asset writer failed: Failed to start writing: No such file or directory (error 2)"},
    };
    for (const auto& [name, sentence] : cases) {
        ExportRequest wanted = request();
        wanted.outputURL = folder_ / name;
        EXPECT_EQ(run(wanted), sentence) << name;
    }
    EXPECT_EQ(readFile(folder_ / "out.mov"), "old take");
    EXPECT_EQ(readFile(folder_ / "in.mov"), "source");
}

TEST_F(ExportEngineTest, OpticalFlowNeedsAnEffectiveRange) {
    ExportRequest wanted = request();
    wanted.interpolation = FrameInterpolation::opticalFlow;
    wanted.opticalFlowRanges = {{3, 4}}; // behind the clip's end
    EXPECT_EQ(run(wanted), "");
    EXPECT_NE(log_.find("[Export] Frame rendering: Original Frames · 0 source ranges"), std::string::npos);
    wanted.opticalFlowRanges = {{0.5, 1}};
    log_.clear();
    EXPECT_EQ(run(wanted), "");
    EXPECT_NE(log_.find("[Export] Frame rendering: Optical Flow · 1 source ranges"), std::string::npos);
}

TEST_F(ExportEngineTest, UnwritableCodecFallsBackWithAWarning) {
    script_.source.video->codec = fourCC("jpeg");
    script_.probeOfOutput = [](ProbedMedia probe) {
        probe.video->codec = fourCC("hvc1");
        return probe;
    };
    EXPECT_EQ(run(request()), "");
    EXPECT_NE(log_.find("[Export] Warning: Motion JPEG (jpeg) cannot be source-matched; an HEVC / H.265 fallback is "
                        "required and may still fail if AVFoundation cannot decode the source.\n"),
              std::string::npos);
}

} // namespace
} // namespace flowtide::test
