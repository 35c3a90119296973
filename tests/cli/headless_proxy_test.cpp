// What a proxy run prints and what it leaves, on scripted media.
#include "cli/entry.h"
#include "tests/support/environment.h"
#include "tests/support/failing_buffer.h"
#include "tests/support/scripted_media.h"
#include "tests/support/temporary_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

namespace flowtide::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class HeadlessProxyTest : public testing::Test {
protected:
    HeadlessProxyTest() {
        ::setenv("TMPDIR", temporary_.path().c_str(), 1);
        writeFile(folder_ / "in.mov", "scripted");
        script_.source = plainProbe();
    }

    int run(const std::vector<std::string>& arguments, std::ostream& output) {
        error_.str("");
        return FlowtideMain::main(arguments, ScriptedBackend(script_), {output, error_});
    }
    std::string in() const { return (folder_ / "in.mov").string(); }

    const RestoredVariable variable_{"TMPDIR"};
    TemporaryFolder folder_;
    TemporaryFolder temporary_;
    MediaScript script_;
    std::ostringstream output_;
    std::ostringstream error_;
};

TEST_F(HeadlessProxyTest, SaysWhereTheProxyIsAndLeavesItThere) {
    EXPECT_EQ(run({"--headless-proxy", in()}, output_), 0);
    EXPECT_EQ(error_.str(), "");
    const auto names = temporary_.names();
    ASSERT_EQ(names.size(), 1U);
    EXPECT_TRUE(std::regex_match(names[0], std::regex("FlowtideProxy-[0-9A-F-]{36}\\.mov"))) << names[0];
    EXPECT_EQ(output_.str(), "[Headless] Proxy: " + (temporary_.path() / names[0]).string() +
                                 "\n"
                                 "[Headless] Source: 64x48, 2.000000s, frameDuration 0.040000\n"
                                 "[Headless] Proxy:  64x48, 2.000000s, frameDuration 0.040000\n");
    EXPECT_THAT(folder_.names(), ElementsAre("in.mov"));
    // The next run leaves it alone.
    EXPECT_EQ(run({"--headless-proxy", in()}, output_), 0);
    EXPECT_EQ(temporary_.names().size(), 2U);
}

TEST_F(HeadlessProxyTest, WinsOverAnExportAndNamesTheWordsThatNothingTakes) {
    EXPECT_EQ(run({"--headless-export", "a.mov", "b.mov", "--headless-proxy", in(), "--zoom"}, output_), 0);
    EXPECT_EQ(
        error_.str(),
        "[Headless] Warning: Nothing takes \"--headless-export\", \"a.mov\", \"b.mov\", \"--zoom\". See --help.\n");
    EXPECT_THAT(output_.str(), testing::StartsWith("[Headless] Proxy: "));
}

TEST_F(HeadlessProxyTest, DamageOfTheSourceIsTold) {
    script_.concealedFrames = 1;
    script_.source.audio = AudioTrack{48'000, 1, "mono", aac, false, 0, {}};
    script_.damagedSoundStretches = 2;
    EXPECT_EQ(run({"--headless-proxy", in()}, output_), 0);
    EXPECT_EQ(error_.str(),
              "[Headless] Warning: 1 damaged source frame was decoded approximately.\n"
              "[Headless] Warning: 2 damaged stretches of the source's sound were replaced by silence.\n");
}

TEST_F(HeadlessProxyTest, EveryFailureIsOneLineAndLeavesNothing) {
    const auto expectFailure = [&](const std::vector<std::string>& arguments, const std::string& sentence) {
        EXPECT_EQ(run(arguments, output_), 1);
        EXPECT_EQ(error_.str(), "[Headless] Export failed: " + sentence + "\n");
        EXPECT_EQ(output_.str(), "");
        EXPECT_THAT(temporary_.names(), IsEmpty());
    };
    expectFailure({"--headless-proxy"}, "Usage: Flowtide --headless-proxy <input>");
    expectFailure({in(), "--headless-proxy"}, "Usage: Flowtide --headless-proxy <input>");
    expectFailure({"--headless-proxy", (folder_ / "gone.mov").string()}, "Choose a regular video file.");
    script_.decodableFrames = 3;
    expectFailure({"--headless-proxy", in()}, "Proxy failed: Proxy decode failed");
}

TEST_F(HeadlessProxyTest, ASignalCancels) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        script_.source.duration = 100'000; // longer than the signal takes
        script_.onAppendVideo = [signal](std::int64_t start) {
            if (start == 0) ::kill(::getpid(), signal);
        };
        EXPECT_EQ(run({"--headless-proxy", in()}, output_), 1);
        EXPECT_EQ(error_.str(), "[Headless] Export failed: Export was cancelled.\n");
        EXPECT_THAT(temporary_.names(), IsEmpty());
    }
}

TEST_F(HeadlessProxyTest, AProxyThatNobodyIsToldOfIsRemoved) {
    for (const char* line : {"[Headless] Proxy: ", "[Headless] Proxy:  "}) {
        FailingBuffer buffer(line, ENOSPC);
        std::ostream full(&buffer);
        EXPECT_EQ(run({"--headless-proxy", in()}, full), 1);
        EXPECT_THAT(temporary_.names(), IsEmpty());
    }
}

} // namespace
} // namespace flowtide::test
