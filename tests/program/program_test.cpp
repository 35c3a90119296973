// The real program, as a person or a script runs it.
#include "media/ffmpeg/ffmpeg_backend.h"
#include "tests/support/clip_maker.h"
#include "tests/support/program.h"
#include "tests/support/temporary_folder.h"

#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <utility>

namespace flowtide::test {
namespace {

class ProgramTest : public testing::Test {
protected:
    ProgramTest() {
        ClipRecipe recipe;
        recipe.sampleRate = 48'000;
        recipe.sound = chirp;
        makeClip(*makeFFmpegBackend(), in(), recipe);
        source_ = readFile(in());
    }

    std::string in() const { return (folder_ / "in.mov").string(); }
    std::string path(const char* name) const { return (folder_ / name).string(); }

    /// One sentence on standard error, status 1, and the folder as it was.
    void expectRefused(const std::vector<std::string>& arguments, const std::string& sentence,
                       const std::function<void()>& prepareChild = {}) {
        SCOPED_TRACE(testing::PrintToString(arguments));
        const auto before = folder_.names();
        const ProgramResult result = runProgram(arguments, prepareChild);
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.standardError, "[Headless] Export failed: " + sentence + "\n");
        EXPECT_EQ(folder_.names(), before);
        EXPECT_EQ(readFile(in()), source_);
    }

    TemporaryFolder folder_;
    std::string source_;
};

TEST_F(ProgramTest, TheMainJob) {
    const ProgramResult result =
        runProgram({"--headless-export", in(), path("out.mov"), "0.2:1,1:0.25,1.8:1", "1", "0.2:1.8"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.standardError, ""); // no progress bar into a pipe
    const char* lines[] = {"[Headless] Curve: ", "[Headless] Source range: 0.200000:1.800000\n",
                           "[Export] Source duration: ", "[Export] Verification passed: H.264 · 96x64 · 25 fps",
                           "[Headless] Done — verified H.264 · 96x64 · 25 fps · AAC, 48000 Hz, 2 channels\n"};
    std::size_t position = 0;
    for (const char* line : lines) {
        position = result.standardOutput.find(line, position);
        ASSERT_NE(position, std::string::npos) << line << "\nin order in\n" << result.standardOutput;
    }
    EXPECT_EQ(folder_.names(), (std::vector<std::string>{"in.mov", "out.mov"}));
    EXPECT_EQ(readFile(in()), source_);
}

TEST_F(ProgramTest, BadArgumentsAndFilesGetOneSentence) {
    writeFile(folder_ / "text.mp4", "this is no movie at all, whatever its name says\n");
    writeFile(folder_ / "empty.mov", "");
    ASSERT_EQ(::mkfifo(path("pipe.mov").c_str(), 0600), 0);
    std::filesystem::create_directory(folder_ / "folder.mov");
    const std::string out = path("out.mov");
    expectRefused({"--headless-export", in()},
                  "Usage: Flowtide --headless-export <input> <output> [curve] [smoothing] [trim]");
    expectRefused({"--headless-export", in(), out, "0:1,fast"}, "Invalid curve segment \"fast\" — expected time:speed");
    expectRefused({"--headless-export", in(), out, "", "0.5", "2:2.0005"}, "Trim end must be after trim start");
    expectRefused({"--headless-export", in(), out, "--interpolation", "Optical-Flow"},
                  "Use --interpolation optical-flow or nearest.");
    for (const char* name : {"missing.mov", "pipe.mov", "folder.mov"})
        expectRefused({"--headless-export", path(name), out}, "Choose a regular video file.");
    for (const char* name : {"text.mp4", "empty.mov"})
        expectRefused({"--headless-export", path(name), out},
                      "Asset reader failed: " + std::string(name) +
                          " could not be opened: Invalid data found when processing input (error 1094995529)");
}

TEST_F(ProgramTest, BadDestinationsGetOneSentence) {
    const std::string own = "Choose a different output file. Loftwell Video keeps your original video unchanged.";
    std::filesystem::create_symlink("in.mov", folder_ / "link.mov");
    std::filesystem::create_hard_link(folder_ / "in.mov", folder_ / "hard.mov");
    for (const char* name : {"in.mov", "link.mov", "hard.mov", "./../../in.mov"}) {
        const std::string destination = name[0] == '.' ? (folder_ / "x/../in.mov").string() : path(name);
        if (name[0] == '.') std::filesystem::create_directories(folder_ / "x");
        expectRefused({"--headless-export", in(), destination}, own);
    }
    expectRefused({"--headless-export", in(), folder_.path().string()},
                  "Asset writer failed: The destination is a folder. Choose a file name for the export.");
    expectRefused({"--headless-export", in(), path("no/where.mov")},
                  "Asset writer failed: Failed to start writing: No such file or directory (error 2)");
}

TEST_F(ProgramTest, ReadOnlyFolder) {
    // Root may write anywhere: become nobody for the run.
    const auto becomeNobody = [] {
        if (::getuid() == 0) {
            constexpr uid_t nobody = 65534;
            if (::setgroups(0, nullptr) != 0 || ::setgid(nobody) != 0 || ::setuid(nobody) != 0) ::_exit(126);
        }
    };
    std::filesystem::create_directory(folder_ / "locked");
    ::chmod(path("locked").c_str(), 0555);
    ::chmod(folder_.path().c_str(), 0755);
    ::chmod(in().c_str(), 0644);
    expectRefused({"--headless-export", in(), path("locked/out.mov")},
                  "Asset writer failed: Failed to start writing: Permission denied (error 13)", becomeNobody);
    ::chmod(in().c_str(), 0000);
    const ProgramResult unreadable = runProgram({"--headless-export", in(), path("out.mov")}, becomeNobody);
    EXPECT_EQ(unreadable.status, 1);
    EXPECT_EQ(unreadable.standardError, "[Headless] Export failed: Asset reader failed: in.mov could not be opened: "
                                        "Permission denied (error 13)\n");
}

TEST_F(ProgramTest, SignalsCancelAndLeaveNothing) {
    writeFile(folder_ / "out.mov", "old take");
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
        SCOPED_TRACE(signal);
        // Whoever runs the tests may have them ignore some.
        RunningProgram program({"--headless-export", in(), path("out.mov"), "0:0.01,99:0.01"},
                               [signal] { ::signal(signal, SIG_DFL); });
        ASSERT_TRUE(program.waitForOutput("[Export] Rendering"));
        ::kill(program.pid(), signal);
        const ProgramResult result = program.wait();
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.standardError, "[Headless] Export failed: Export was cancelled.\n");
        EXPECT_EQ(folder_.names(), (std::vector<std::string>{"in.mov", "out.mov"}));
        EXPECT_EQ(readFile(folder_ / "out.mov"), "old take");
    }
}

TEST_F(ProgramTest, StandardOutputThatTakesNothingIsAFailure) {
    const auto intoFullDevice = [] { ::dup2(::open("/dev/full", O_WRONLY | O_CLOEXEC), STDOUT_FILENO); };
    const std::string sentence = "Standard output could not be written: No space left on device (error 28)";
    expectRefused({"--headless-export", in(), path("out.mov")}, sentence, intoFullDevice);
    for (const char* question : {"--help", "--version"}) {
        const ProgramResult result = runProgram({question}, intoFullDevice);
        EXPECT_EQ(result.status, 1) << question;
        EXPECT_EQ(result.standardError, sentence + "\n");
    }
}

TEST_F(ProgramTest, HelpVersionAndWindowedModeWithoutDisplay) {
    const ProgramResult help = runProgram({"--help"});
    EXPECT_EQ(help.status, 0);
    for (const char* option : {"--headless-export", "--vertical-crop", "--zoom", "--flow-ranges", "--smooth-fps"})
        EXPECT_NE(help.standardOutput.find(option), std::string::npos) << option;
    EXPECT_EQ(runProgram({"--version"}).status, 0);
    const auto oneLine = [](const ProgramResult& result) {
        return result.status == 1 && std::count(result.standardError.begin(), result.standardError.end(), '\n') == 1;
    };
    EXPECT_TRUE(oneLine(runProgram({"--no-such-option"})));
    EXPECT_TRUE(oneLine(runProgram({}, [] {
        ::unsetenv("DISPLAY");
        ::unsetenv("WAYLAND_DISPLAY");
    })));
}

} // namespace
} // namespace flowtide::test
