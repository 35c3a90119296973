// Files that must not be taken for a clip, and destinations that are the source under another name.
#include "project/local_file_safety.h"
#include "project/project_error.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace flowtide::test {
namespace {

std::string refusal(const std::function<void()>& check) {
    try {
        check();
    } catch (const ProjectError& error) {
        return error.what();
    }
    return {};
}

TEST(LocalFileSafety, OnlyRegularFilesAndLinksToThem) {
    const TemporaryFolder folder;
    writeFile(folder / "clip.mov", "x");
    std::filesystem::create_symlink("clip.mov", folder / "link.mov");
    std::filesystem::create_symlink("gone.mov", folder / "broken.mov");
    ASSERT_EQ(::mkfifo((folder / "pipe.mov").c_str(), 0600), 0);
    const auto check = [&](const std::filesystem::path& path) {
        return refusal([&] { LocalFileSafety::requireRegularFile(path); });
    };
    EXPECT_EQ(check(folder / "clip.mov"), "");
    EXPECT_EQ(check(folder / "link.mov"), "");
    for (const char* name : {"broken.mov", "pipe.mov", "missing.mov", ""})
        EXPECT_EQ(check(folder / name), "Choose a regular video file.") << name;
    EXPECT_EQ(check("/dev/null"), "Choose a regular video file.");
}

TEST(LocalFileSafety, TheSourceUnderAnyName) {
    const TemporaryFolder folder;
    writeFile(folder / "clip.mov", "x");
    writeFile(folder / "other.mov", "x");
    std::filesystem::create_directory(folder / "sub");
    std::filesystem::create_directory_symlink(".", folder / "here");
    std::filesystem::create_symlink("clip.mov", folder / "link.mov");
    std::filesystem::create_hard_link(folder / "clip.mov", folder / "hard.mov");
    const auto check = [&](const char* source, const char* destination) {
        return refusal([&] { LocalFileSafety::requireDistinct(folder / source, folder / destination); });
    };
    const std::string sentence = "Choose a different output file. Loftwell Video keeps your original video unchanged.";
    for (const char* name : {"clip.mov", "sub/../clip.mov", "./clip.mov", "link.mov", "hard.mov", "here/clip.mov"}) {
        EXPECT_EQ(check("clip.mov", name), sentence) << name;
        EXPECT_EQ(check(name, "clip.mov"), sentence) << name;
    }
    for (const char* name : {"other.mov", "new.mov", "no/such/clip.mov", "sub/clip.mov"})
        EXPECT_EQ(check("clip.mov", name), "") << name;
}

} // namespace
} // namespace flowtide::test
