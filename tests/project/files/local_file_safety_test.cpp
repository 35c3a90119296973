// What is read and what is refused, files that must not be taken for a clip, and destinations that are the source
// under another name.
#include "project/files/local_file_safety.h"
#include "tests/project/files/refusal.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace flowtide::test {
namespace {

std::string readingRefused(const std::filesystem::path& path, std::size_t limit) {
    return refusal([&] { LocalFileSafety::read(path, limit); });
}

const std::string notOpened = "The file could not be opened. Choose a regular file, not a symbolic link.";
const std::string notRegular = "The file is not a regular file or exceeds the supported size.";

TEST(LocalFileSafety, ReadsUpToTheLimit) {
    const TemporaryFolder folder;
    for (const std::size_t size : {0U, 1U, 65'535U, 65'536U, 65'537U, 200'000U}) {
        std::string bytes;
        for (std::size_t i = 0; i < size; ++i)
            bytes += static_cast<char>(i * 31 / 7);
        writeFile(folder / "file", bytes);
        EXPECT_EQ(LocalFileSafety::read(folder / "file", size), bytes);
        EXPECT_EQ(LocalFileSafety::read(Url::ofFile(folder / "file"), size), bytes);
        if (size > 0) {
            EXPECT_EQ(readingRefused(folder / "file", size - 1), notRegular);
        }
    }
}

TEST(LocalFileSafety, OnlyFilesAmongURLs) {
    const TemporaryFolder folder;
    writeFile(folder / "clip #1.mov", "x");
    const Url file = Url::ofFile(folder / "clip #1.mov");
    const Url web{"https://example.org/clip.mov"};
    const auto refusals = [](const Url& source, const Url& destination) {
        return std::vector{refusal([&] { LocalFileSafety::read(source, 1); }),
                           refusal([&] { LocalFileSafety::requireRegularFile(source); }),
                           refusal([&] { LocalFileSafety::requireDistinct(source, destination); })};
    };
    EXPECT_EQ(refusals(file, Url::ofFile(folder / "new.mov")), (std::vector<std::string>(3)));
    EXPECT_EQ(refusals(web, file),
              (std::vector<std::string>{"Choose a file on your Mac.", "Choose a video file on your Mac.",
                                        "Choose a destination on your Mac."}));
    EXPECT_EQ(refusals(file, web)[2], "Choose a destination on your Mac.");
    EXPECT_EQ(refusals(file, file)[2],
              "Choose a different output file. Loftwell Video keeps your original video unchanged.");
}

TEST(LocalFileSafety, SpecialFilesAreRefusedWithoutBlocking) {
    const TemporaryFolder folder;
    writeFile(folder / "file", "x");
    std::filesystem::create_symlink("file", folder / "link");
    std::filesystem::create_directory_symlink(".", folder / "here");
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_EQ(readingRefused(folder / "link", 10), notOpened);
    EXPECT_EQ(readingRefused(folder / "missing", 10), notOpened);
    EXPECT_EQ(readingRefused("", 10), notOpened);
    for (const std::filesystem::path& path : {folder / "pipe", folder.path(), std::filesystem::path("/dev/zero")})
        EXPECT_EQ(readingRefused(path, 10), notRegular) << path;
    EXPECT_EQ(LocalFileSafety::read(folder / "here/file", 10), "x") << "a linked folder on the way is fine";
}

TEST(LocalFileSafety, FilesWithoutPermission) {
    const TemporaryFolder folder;
    writeFile(folder / "secret", "x");
    std::filesystem::permissions(folder.path(), std::filesystem::perms(0755));
    std::filesystem::permissions(folder / "secret", std::filesystem::perms::none);
    // Root reads everything; somebody else does not.
    const pid_t child = ::fork();
    if (child == 0) {
        if (::geteuid() == 0 && ::setuid(65534) != 0) ::_exit(2);
        ::_exit(readingRefused(folder / "secret", 10) == notOpened ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
}

// Files of the kernel's own say that they are empty and go on; to a reader that is a file that grew.
TEST(LocalFileSafety, FilesThatGrowWhileRead) {
    ASSERT_EQ(std::filesystem::file_size("/proc/self/maps"), 0U);
    EXPECT_EQ(readingRefused("/proc/self/maps", 100), "The file is too large.");
    EXPECT_GT(LocalFileSafety::read("/proc/self/maps", 1 << 24).size(), 100U);
    // An offset of 0 is mapped nowhere, so that reading it fails.
    EXPECT_EQ(readingRefused("/proc/self/mem", 100), "The file could not be read.");
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
