// The hidden file: its name, its locks, its end.
#include "media/export/temporary_export.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <regex>

namespace flowtide::test {
namespace {

std::vector<std::uint8_t> bytes(const char* text) {
    return {text, text + std::char_traits<char>::length(text)};
}

TEST(TemporaryExport, IsHiddenBesideTheDestination) {
    const std::string uuid = "[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}";
    const auto matches = [&](const char* destination, const std::string& pattern) {
        return std::regex_match(temporaryExportURL(destination).string(), std::regex(pattern));
    };
    EXPECT_TRUE(matches("/a/b.c/take two.mp4", R"(/a/b\.c/\.take two-export-)" + uuid + R"(\.mp4)"));
    EXPECT_TRUE(matches("/a/take", R"(/a/\.take-export-)" + uuid + R"(\.mov)"));
    EXPECT_TRUE(matches("take.v2.MOV", R"(\./\.take\.v2-export-)" + uuid + R"(\.MOV)"));
}

TEST(TemporaryExport, LeavesNothingUnlessMovedIntoPlace) {
    const TemporaryFolder folder;
    writeFile(folder / "out.mov", "old");
    {
        TemporaryExport file(folder / "out.mov");
        file.write(bytes("new movie"));
        EXPECT_EQ(folder.names().size(), 2U);
    }
    EXPECT_EQ(folder.names(), std::vector<std::string>{"out.mov"});
    EXPECT_EQ(readFile(folder / "out.mov"), "old");
    {
        TemporaryExport file(folder / "out.mov");
        file.write(bytes("xxx movie"));
        file.seek(0);
        file.write(bytes("new"));
        EXPECT_EQ(file.size(), 9);
        file.moveIntoPlace();
    }
    EXPECT_EQ(folder.names(), std::vector<std::string>{"out.mov"});
    EXPECT_EQ(readFile(folder / "out.mov"), "new movie");
}

TEST(TemporaryExport, CleanUpTakesOnlyWhatNoLiveProcessHolds) {
    const TemporaryFolder folder;
    const TemporaryExport live(folder / "out.mov");
    const std::string stale = ".old-export-3F2504E0-4F89-41D3-9A0C-0305E82C3301.mov";
    writeFile(folder.path() / stale, "left by a dead process");
    const char* others[] = {".old-export-3f2504e0-4f89-41d3-9a0c-0305e82c3301.mov", "visible-export-x.mov", ".notes",
                            "x-export-3F2504E0-4F89-41D3-9A0C-0305E82C3301.mov"};
    for (const char* other : others)
        writeFile(folder / other, "somebody's");
    std::filesystem::create_symlink(".notes", folder / ".l-export-3F2504E0-4F89-41D3-9A0C-0305E82C3302.mov");
    removeStaleTemporaryExports(folder / "out.mov");
    EXPECT_FALSE(std::filesystem::exists(folder.path() / stale));
    EXPECT_TRUE(std::filesystem::exists(live.path()));
    for (const char* other : others)
        EXPECT_TRUE(std::filesystem::exists(folder / other)) << other;
    EXPECT_EQ(folder.names().size(), 6U);
}

TEST(TemporaryExport, MissingFolderIsAnError) {
    EXPECT_THROW(TemporaryExport("/nonexistent-folder/out.mov"), std::system_error);
}

} // namespace
} // namespace flowtide::test
