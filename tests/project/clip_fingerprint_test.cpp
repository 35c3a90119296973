// The digest of size and three windows, against the same bytes digested by the command-line tool.
#include "project/clip_fingerprint.h"
#include "tests/project/files/refusal.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <array>
#include <cstdio>
#include <memory>

namespace flowtide::test {
namespace {

/// As the system's sha256sum sees the bytes.
std::string digestOf(const TemporaryFolder& folder, const std::string& bytes) {
    writeFile(folder / "digested", bytes);
    const std::string command = "sha256sum < " + (folder / "digested").string();
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(::popen(command.c_str(), "r"), ::pclose);
    std::array<char, 65> line{};
    EXPECT_NE(std::fgets(line.data(), line.size(), pipe.get()), nullptr);
    return line.data();
}

TEST(ClipFingerprint, SizeAndThreeWindows) {
    constexpr std::size_t window = 65'536;
    const TemporaryFolder folder;
    for (const std::size_t size : {std::size_t{0}, std::size_t{1}, std::size_t{10}, window - 1, window, window + 1,
                                   2 * window + 1, 5 * window}) {
        std::string bytes;
        for (std::size_t i = 0; i < size; ++i)
            bytes += static_cast<char>(i * i / 7);
        writeFile(folder / "clip.mov", bytes);
        const std::string fed = std::to_string(size) + bytes.substr(0, window) + bytes.substr(size / 2, window) +
                                bytes.substr(size < window ? 0 : size - window);
        EXPECT_EQ(clipFingerprint(folder / "clip.mov"), digestOf(folder, fed)) << size;
    }
}

TEST(ClipFingerprint, OnlyRegularFiles) {
    const TemporaryFolder folder;
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    for (const std::filesystem::path& path : {folder / "pipe", folder.path(), std::filesystem::path("/dev/zero")})
        EXPECT_EQ(refusal([&] { clipFingerprint(path); }), "Choose a regular video file.") << path;
    EXPECT_EQ(refusal([&] { clipFingerprint(folder / "gone"); }), "No such file or directory (error 2)");
    writeFile(folder / "clip", "abc");
    std::filesystem::create_symlink("clip", folder / "link");
    EXPECT_EQ(clipFingerprint(folder / "link"), clipFingerprint(folder / "clip"));
}

} // namespace
} // namespace flowtide::test
