// Killed half-way, or out of disk: the destination is the old file or the whole new one, never anything else.
#include "media/ffmpeg/ffmpeg_backend.h"
#include "tests/support/clip_maker.h"
#include "tests/support/program.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <random>

namespace flowtide::test {
namespace {

class CrashSafetyTest : public testing::Test {
protected:
    void makeSource(std::int64_t frameCount) {
        ClipRecipe recipe;
        recipe.frameCount = frameCount;
        recipe.sampleRate = 48'000;
        recipe.sound = chirp;
        makeClip(*makeFFmpegBackend(), folder_ / "in.mov", recipe);
    }
    std::vector<std::string> exportTo(const std::filesystem::path& destination) const {
        return {"--headless-export", (folder_ / "in.mov").string(), destination.string(), "0:0.5,99:0.5"};
    }
    TemporaryFolder folder_;
};

TEST_F(CrashSafetyTest, KilledAtFiftyRandomInstants) {
    makeSource(100);
    const auto started = std::chrono::steady_clock::now();
    ASSERT_EQ(runProgram(exportTo(folder_ / "reference.mov")).status, 0);
    const auto whole =
        std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - started).count();
    const std::string verified = readFile(folder_ / "reference.mov");

    std::mt19937 random(20'241); // any seed: the instants only have to spread over the run
    std::uniform_int_distribution<long> instant(0, whole + whole / 10);
    int replaced = 0;
    int leftovers = 0;
    for (int i = 0; i < 50; ++i) {
        writeFile(folder_ / "out.mov", "the old take");
        {
            RunningProgram program(exportTo(folder_ / "out.mov"));
            program.killAfter(std::chrono::microseconds(instant(random)));
            program.wait();
        }
        const std::string found = readFile(folder_ / "out.mov");
        ASSERT_TRUE(found == "the old take" || found == verified) << "after kill " << i;
        replaced += found == verified;
        const auto names = folder_.names();
        leftovers += static_cast<int>(
            std::count_if(names.begin(), names.end(), [](const std::string& name) { return name.front() == '.'; }));
    }
    EXPECT_LT(replaced, 50);
    EXPECT_GT(leftovers, 0); // a killed export cannot tidy up after itself …
    ASSERT_EQ(runProgram(exportTo(folder_ / "out.mov")).status, 0);
    EXPECT_EQ(folder_.names(), (std::vector<std::string>{"in.mov", "out.mov", "reference.mov"})); // … the next one does
}

TEST_F(CrashSafetyTest, FileSizeLimit) {
    makeSource(50);
    writeFile(folder_ / "out.mov", "the old take");
    const ProgramResult result = runProgram(exportTo(folder_ / "out.mov"), [] {
        const rlimit limit{20'000, 20'000};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        ::signal(SIGXFSZ, SIG_DFL); // whatever this test was started with
    });
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.standardError.find("[Headless] Export failed: Asset writer failed: "), 0U) << result.standardError;
    EXPECT_NE(result.standardError.find("File too large (error 27)"), std::string::npos) << result.standardError;
    EXPECT_EQ(folder_.names(), (std::vector<std::string>{"in.mov", "out.mov"}));
    EXPECT_EQ(readFile(folder_ / "out.mov"), "the old take");
}

TEST_F(CrashSafetyTest, FullDisk) {
    const std::filesystem::path disk = folder_ / "disk";
    std::filesystem::create_directory(disk);
    if (::mount("tmpfs", disk.c_str(), "tmpfs", 0, "size=64k") != 0) GTEST_SKIP() << "mounting needs root";
    makeSource(200);
    writeFile(disk / "out.mov", "the old take");
    const ProgramResult result = runProgram(exportTo(disk / "out.mov"));
    std::vector<std::string> left;
    for (const auto& entry : std::filesystem::directory_iterator(disk))
        left.push_back(entry.path().filename());
    const std::string destination = readFile(disk / "out.mov");
    ::umount(disk.c_str());
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.standardError.find("[Headless] Export failed: Asset writer failed: "), 0U);
    EXPECT_NE(result.standardError.find("No space left on device (error 28)"), std::string::npos)
        << result.standardError;
    EXPECT_EQ(left, std::vector<std::string>{"out.mov"});
    EXPECT_EQ(destination, "the old take");
}

} // namespace
} // namespace flowtide::test
