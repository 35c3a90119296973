// The dispatch of headless runs and what they print, on scripted media.
#include "cli/entry.h"
#include "cli/headless_export.h"
#include "tests/support/failing_buffer.h"
#include "tests/support/scripted_media.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <new>
#include <sstream>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace flowtide::test {
namespace {

class HeadlessExportTest : public testing::Test {
protected:
    HeadlessExportTest() {
        writeFile(folder_ / "in.mov", "scripted");
        script_.source = plainProbe();
    }

    int run(HeadlessExport::Arguments arguments) { return runInto(output_, std::move(arguments)); }

    int runInto(std::ostream& output, HeadlessExport::Arguments arguments, bool isTerminal = false) {
        for (auto& argument : arguments)
            if (argument.ends_with(".mov")) argument = (folder_ / argument.c_str()).string();
        output_.str("");
        error_.str("");
        return FlowtideMain::main(arguments, ScriptedBackend(script_), {output, error_, isTerminal});
    }

    TemporaryFolder folder_;
    MediaScript script_;
    std::ostringstream output_;
    std::ostringstream error_;
};

TEST_F(HeadlessExportTest, LinesOfAnExport) {
    EXPECT_EQ(run({"--headless-export", "in.mov", "out.mov", "0:1,0.005:2,2:1"}), 0);
    EXPECT_EQ(error_.str(), "[Headless] Skipping keyframe at 0.005s — within 0.01s of the previous one\n");
    const std::string printed = output_.str();
    EXPECT_TRUE(printed.starts_with("[Headless] Curve: 0.0:1.0, 2.0:1.0\n"
                                    "[Headless] Source range: 0.000000:2.000000\n"
                                    "[Export] "))
        << printed;
    const auto lastLine = printed.rfind('\n', printed.size() - 2) + 1;
    EXPECT_TRUE(printed.substr(lastLine).starts_with("[Headless] Done — verified H.264")) << printed;
    EXPECT_EQ(folder_.names(), (std::vector<std::string>{"in.mov", "out.mov"}));
}

TEST_F(HeadlessExportTest, WarningsGoToStandardErrorAndChangeNothingElse) {
    script_.source.video->hasAlpha = true; // of the export, told in its log too
    EXPECT_EQ(run({"--headless-export", "in.mov", "out.mov", "", "soft", "--vertical-crop", "center",
                   "--vertical-aspect", "100:1"}),
              0);
    EXPECT_EQ(error_.str(), "[Headless] Warning: \"soft\" is no number; the smoothing is 0.5.\n"
                            "[Headless] Warning: the source's alpha channel is not kept; the export is opaque.\n"
                            "[Headless] Warning: Vertical crop skipped — source (64x48) is not wider than the "
                            "crop frame\n");
    EXPECT_NE(output_.str().find("\n[Export] Warning: the source's alpha channel is not kept;"), std::string::npos);
    EXPECT_EQ(run({"--headless-export", "in.mov", "out.mov", "bad", "soft"}), 1);
    EXPECT_EQ(error_.str(), "[Headless] Export failed: Invalid curve segment \"bad\" — expected time:speed\n");
}

TEST_F(HeadlessExportTest, AutomaticRangesForOpticalFlowOnly) {
    const HeadlessExport::Arguments slow = {"--headless-export", "in.mov", "out.mov",
                                            "0.5:0.5,1.5:0.5",   "0",      "0.5:1.5"};
    const auto with = [&](std::initializer_list<std::string> options) {
        HeadlessExport::Arguments arguments = slow;
        arguments.insert(arguments.end(), options);
        run(arguments);
        return output_.str();
    };
    const std::string line = "[Headless] Optical Flow ranges (auto, ";
    const std::string slowLine = line + "24 fps): 0.500000:1.500000\n";
    EXPECT_TRUE(with({"--interpolation", "optical-flow", "--smooth-fps", "24.9"}).starts_with(slowLine))
        << output_.str();
    EXPECT_TRUE(with({"--interpolation", "optical-flow", "--smooth-fps", "5"}).starts_with(line + "5 fps): none\n"))
        << output_.str();
    EXPECT_EQ(with({"--interpolation", "optical-flow", "--flow-ranges", "none"}).find(line), std::string::npos);
    EXPECT_EQ(with({}).find(line), std::string::npos);
}

TEST_F(HeadlessExportTest, CropAndZoomLines) {
    run({"--headless-export", "in.mov", "out.mov", "--vertical-crop", "center", "--zoom", "0-1:2:in;1.5-2:1.5"});
    EXPECT_NE(output_.str().find("\n[Headless] Vertical crop centering: center\n"
                                 "[Headless] Zoom blocks: 0.0-1.0 ×2.0 zoomIn; 1.5-2.0 ×1.5 inOut\n"),
              std::string::npos)
        << output_.str();
    run({"--headless-export", "in.mov", "out.mov", "--zoom", ";"});
    EXPECT_EQ(output_.str().find("Zoom blocks"), std::string::npos) << output_.str();
}

TEST_F(HeadlessExportTest, EveryFailureIsOneLine) {
    const struct {
        HeadlessExport::Arguments arguments;
        const char* sentence;
    } cases[] = {
        {{"--headless-export", "in.mov"},
         "Usage: Flowtide --headless-export <input> <output> [curve] [smoothing] [trim]"},
        {{"--headless-export", "gone.mov", "out.mov", "bad"}, "Choose a regular video file."},
        {{"--headless-export", "in.mov", "out.mov", "bad"}, "Invalid curve segment \"bad\" — expected time:speed"},
    };
    for (const auto& [arguments, sentence] : cases) {
        EXPECT_EQ(run(arguments), 1);
        EXPECT_EQ(error_.str(), "[Headless] Export failed: " + std::string(sentence) + "\n");
        EXPECT_EQ(output_.str(), "");
    }
    script_.decodableFrames = 3;
    EXPECT_EQ(run({"--headless-export", "in.mov", "out.mov"}), 1);
    EXPECT_EQ(error_.str(), "[Headless] Export failed: Asset reader failed: Video decode failed mid-file\n");
    EXPECT_EQ(folder_.names(), std::vector<std::string>{"in.mov"});
}

TEST_F(HeadlessExportTest, ALineThatCannotBePrintedEndsTheRunUnlessItsReaderHasGone) {
    const HeadlessExport::Arguments arguments = {"--headless-export", "in.mov", "out.mov"};
    const std::string full = "Standard output could not be written: No space left on device (error 28)\n";
    const struct {
        const char* line;
        int cause;
        int status;
        std::string error;
        bool isInPlace;
        bool isTerminal = false;
    } cases[] = {
        {"[Headless] Curve", ENOSPC, 1, "[Headless] Export failed: " + full, false},
        {"[Export] Verification passed", ENOSPC, 1, "[Headless] Export failed: " + full, false},
        {"[Headless] Done", ENOSPC, 1, "[Headless] Export failed: The export is in place, but: " + full, true},
        {"[Headless] Curve", EPIPE, 0, "", true},
        {"[Export] Verification passed", EIO, 0, "", true, true},
        {"[Headless] Curve", EIO, 1,
         "[Headless] Export failed: Standard output could not be written: Input/output error (error 5)\n", false},
    };
    for (const auto& [line, cause, status, error, isInPlace, isTerminal] : cases) {
        SCOPED_TRACE(line);
        std::filesystem::remove(folder_ / "out.mov");
        FailingBuffer buffer(line, cause);
        std::ostream output(&buffer);
        EXPECT_EQ(runInto(output, arguments, isTerminal), status);
        EXPECT_EQ(error_.str(), error);
        EXPECT_EQ(folder_.names(),
                  isInPlace ? std::vector<std::string>({"in.mov", "out.mov"}) : std::vector<std::string>({"in.mov"}));
    }
}

TEST_F(HeadlessExportTest, WhatTheLibraryThrowsReadsAsASentence) {
    const std::pair<std::function<void()>, const char*> cases[] = {
        {[] { throw std::bad_alloc(); }, "There is not enough memory."},
        {[] { throw std::length_error("vector::_M_default_append"); }, "There is not enough memory."},
        {[] { throw std::system_error(EAGAIN, std::generic_category()); },
         "The system refused what the run needs: Resource temporarily unavailable (error 11)"},
    };
    for (const auto& [fail, sentence] : cases) {
        script_.onAppendVideo = [&throwing = fail](std::int64_t) { throwing(); };
        EXPECT_EQ(run({"--headless-export", "in.mov", "out.mov"}), 1);
        EXPECT_EQ(error_.str(), "[Headless] Export failed: " + std::string(sentence) + "\n");
        EXPECT_EQ(folder_.names(), std::vector<std::string>{"in.mov"});
    }
}

TEST_F(HeadlessExportTest, WordsOutsideHeadlessRuns) {
    EXPECT_EQ(run({"demo", "--help"}), 0);
    EXPECT_TRUE(output_.str().starts_with("Loftwell Video: "));
    EXPECT_EQ(run({"demo", "--here"}), 1);
    EXPECT_EQ(error_.str(), "Unknown option --here. See --help.\n");
}

} // namespace
} // namespace flowtide::test
