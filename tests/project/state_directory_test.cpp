// Which folder is the state folder, and the move from its former names.
#include "project/project_store.h"
#include "project/state_directory.h"
#include "tests/project/files/refusal.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <map>

namespace flowtide::test {
namespace {

namespace fs = std::filesystem;

Environment environmentOf(const std::map<std::string, std::string>& variables) {
    return [variables](const char* name) -> std::optional<std::string> {
        const auto found = variables.find(name);
        return found == variables.end() ? std::nullopt : std::optional(found->second);
    };
}

TEST(StateDirectory, Precedence) {
    const TemporaryFolder folder;
    const std::string home = (folder / "home").string();
    const std::string data = (folder / "data").string();
    const std::string chosen = (folder / "chosen").string();
    EXPECT_EQ(stateDirectory(environmentOf({{"HOME", home}, {"XDG_DATA_HOME", data}, {"FLOWTIDE_STATE_DIR", chosen}})),
              chosen);
    EXPECT_TRUE(folder.names().empty()) << "the default folder is left alone";
    EXPECT_EQ(stateDirectory(environmentOf({{"FLOWTIDE_STATE_DIR", "relative"}})), fs::current_path() / "relative");

    const fs::path inHome = fs::path(home) / ".local/share/Loftwell Video";
    const fs::path inData = fs::path(data) / "Loftwell Video";
    EXPECT_EQ(stateDirectory(environmentOf({{"HOME", home}, {"XDG_DATA_HOME", data}, {"FLOWTIDE_STATE_DIR", ""}})),
              inData);
    EXPECT_EQ(stateDirectory(environmentOf({{"HOME", home}})), inHome);
    EXPECT_EQ(stateDirectory(environmentOf({{"HOME", home}, {"XDG_DATA_HOME", "relative"}})), inHome);
    for (const fs::path& path : {inHome, inData}) {
        struct stat status {};
        ASSERT_EQ(::stat(path.c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 07777U, 0700U);
    }
    EXPECT_EQ(ProjectStore(folder / "given").directory(), folder / "given");

    writeFile(folder / "file", "");
    // A window opens all the same; the first save says what is wrong.
    const fs::path unusable = stateDirectory(environmentOf({{"HOME", (folder / "file").string()}}));
    EXPECT_EQ(unusable, folder / "file/.local/share/Loftwell Video");
    EXPECT_TRUE(ProjectStore(unusable).recent().empty());
}

TEST(StateDirectory, FormerFoldersMoveIn) {
    const TemporaryFolder folder;
    const auto write = [&](const char* path, const char* content) {
        fs::create_directories((folder / path).parent_path());
        writeFile(folder / path, content);
    };
    write("Flowtide/a.flowtide", "newer");
    write("Flowtide/.DS_Store", "x");
    write("Flowtide/sub/b", "b");
    write("Flowtide Studio/a.flowtide", "older");
    write("Flowtide Studio/c.flowtide", "c");
    write("Loftwell Video/c.flowtide", "own");
    const fs::path target = defaultDirectory(environmentOf({{"XDG_DATA_HOME", folder.path().string()}}));
    EXPECT_EQ(readFile(target / "a.flowtide"), "newer");
    EXPECT_EQ(readFile(target / "sub/b"), "b");
    EXPECT_EQ(readFile(target / "c.flowtide"), "own");
    EXPECT_FALSE(fs::exists(target / ".DS_Store"));
    EXPECT_EQ(readFile(folder / "Flowtide Studio/a.flowtide"), "older");
    EXPECT_EQ(readFile(folder / "Flowtide Studio/c.flowtide"), "c");
    EXPECT_EQ(readFile(folder / "Flowtide/.DS_Store"), "x");
    EXPECT_FALSE(fs::exists(folder / "Flowtide/a.flowtide"));
}

} // namespace
} // namespace flowtide::test
