// What hidden files are called and whom they are open to, that only the file which was written gets into place, and
// that cleaning up takes abandoned ones alone.
#include "project/files/hidden_file.h"
#include "tests/project/files/faulty_operations.h"
#include "tests/project/files/refusal.h"
#include "tests/support/temporary_folder.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <optional>

namespace flowtide::test {
namespace {

namespace fs = std::filesystem;
using Access = HiddenFile::Access;

constexpr const char* uuid = "3F2504E0-4F89-41D3-9A0C-0305E82C3301";

std::function<fs::path()> newPaths(const fs::path& destination) {
    return [=] { return HiddenName{"take", "-test-", ".mov"}.newPathBeside(destination); };
}

void writeText(HiddenFile& file, std::string_view text) {
    file.writeAt(0, std::as_bytes(std::span(text)));
}

mode_t modeOf(const fs::path& path) {
    struct stat status {};
    EXPECT_EQ(::lstat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777U;
}

TEST(HiddenName, TheStemGivesWay) {
    const std::string umlaut = "\xC3\xBC";
    const std::string clapper = "\xF0\x9F\x8E\xAC";
    const auto times = [](int count, const std::string& text) {
        std::string result;
        while (count-- > 0)
            result += text;
        return result;
    };
    // 255 bytes less the dot, the marker, the UUID and the extension leave 206.
    const std::vector<std::pair<std::string, std::string>> table{
        {"", ""},
        {"take.v2", "take.v2"},
        {times(206, "n"), times(206, "n")},
        {times(207, "n"), times(206, "n")},
        {times(103, umlaut), times(103, umlaut)},
        {"x" + times(103, umlaut), "x" + times(102, umlaut)},
        {times(52, clapper), times(51, clapper)},
        {"xxx" + times(51, clapper), "xxx" + times(50, clapper)},
    };
    for (const auto& [stem, kept] : table) {
        const fs::path path = HiddenName{stem, "-export-", ".mov"}.newPathBeside("/folder/destination");
        EXPECT_EQ(path.parent_path(), "/folder");
        const auto name = HiddenName::parse(path.filename().string(), "-export-");
        ASSERT_TRUE(name) << path;
        EXPECT_EQ(name->stem, kept);
        EXPECT_EQ(name->extension, ".mov");
    }
    EXPECT_TRUE(HiddenName::fits(std::string(210, 'e'), "-export-"));
    EXPECT_FALSE(HiddenName::fits(std::string(211, 'e'), "-export-"));
    EXPECT_EQ(HiddenName({"x", "-export-", std::string(210, 'e')}).newPathBeside("d").filename().string().size(), 255U);
}

TEST(HiddenName, OtherNamesAreNone) {
    const std::string id = uuid;
    for (const std::string& name :
         std::vector<std::string>{"saving-" + id, ".saving" + id, ".saving-" + id.substr(1), ".saving-" + id + "0",
                                  ".saving-3f2504e0-4f89-41d3-9a0c-0305e82c3301", "." + id, id, ""})
        EXPECT_FALSE(HiddenName::parse(name, "saving-")) << name;
    EXPECT_EQ(HiddenName::parse(".saving-" + id, "saving-")->stem, "");
    EXPECT_EQ(HiddenName::parse(".x.saving-" + id + ".tar.gz", "saving-"), std::nullopt);
}

TEST(HiddenFile, RightsAreTheDestinations) {
    const mode_t before = ::umask(0);
    for (const mode_t mask : {0U, 022U, 077U})
        for (const std::optional<mode_t> old : std::vector<std::optional<mode_t>>{
                 std::nullopt, 0600, 0644, 0664, 0666, 0640, 0604, 0755, 0400, 0444, 0200, 04644})
            for (const Access access : {Access::user, Access::destination}) {
                const TemporaryFolder folder;
                const fs::path destination = folder / "out";
                if (old) {
                    writeFile(destination, "old");
                    ::chmod(destination.c_str(), *old);
                }
                FaultyOperations operations;
                ::umask(mask);
                HiddenFile file(operations, destination, newPaths(destination), access);
                ::umask(0);
                const mode_t newFile = 0666 & ~mask;
                const mode_t expected = access == Access::user ? 0600 : old.value_or(newFile) & 0777;
                EXPECT_EQ(modeOf(file.path()), expected | 0400);
                EXPECT_FALSE(file.moveIntoPlace());
                EXPECT_EQ(modeOf(destination), expected);
            }
    ::umask(before);
}

TEST(HiddenFile, RightsChangedMeanwhileAreKept) {
    const TemporaryFolder folder;
    const fs::path destination = folder / "out";
    writeFile(destination, "old");
    ::chmod(destination.c_str(), 0644);
    HiddenFile file(systemFileOperations(), destination, newPaths(destination), Access::destination);
    ::chmod(destination.c_str(), 0600);
    EXPECT_FALSE(file.moveIntoPlace());
    EXPECT_EQ(modeOf(destination), 0600U);
}

TEST(HiddenFile, ALinkAtTheDestinationGivesNoRights) {
    const TemporaryFolder folder;
    fs::create_symlink("elsewhere", folder / "out");
    const mode_t before = ::umask(022);
    const HiddenFile file(systemFileOperations(), folder / "out", newPaths(folder / "out"), Access::destination);
    ::umask(before);
    EXPECT_EQ(modeOf(file.path()), 0644U);
}

TEST(HiddenFile, WorksInAProcessWithoutStandardInput) {
    const TemporaryFolder folder;
    const int saved = ::dup(STDIN_FILENO);
    ::close(STDIN_FILENO);
    { const HiddenFile given(systemFileOperations(), folder / "out", newPaths(folder / "out"), Access::user); }
    EXPECT_TRUE(folder.names().empty()); // given up, and removed
    {
        HiddenFile file(systemFileOperations(), folder / "out", newPaths(folder / "out"), Access::user); // descriptor 0
        writeText(file, "new");
        EXPECT_FALSE(file.moveIntoPlace());
    }
    EXPECT_EQ(readFile(folder / "out"), "new");
    EXPECT_EQ(::fcntl(STDIN_FILENO, F_GETFD), -1); // closed again
    if (saved >= 0) {
        ::dup2(saved, STDIN_FILENO);
        ::close(saved);
    }
}

TEST(HiddenFile, OnlyTheWrittenFileGetsIntoPlace) {
    const std::vector<std::pair<const char*, std::function<void(const TemporaryFolder&, const fs::path&)>>> table{
        {"removed", [](auto&, const fs::path& hidden) { fs::remove(hidden); }},
        {"replaced",
         [](auto& folder, const fs::path& hidden) {
             writeFile(folder / "other", "other");
             fs::rename(folder / "other", hidden);
         }},
        {"linked",
         [](auto& folder, const fs::path& hidden) {
             fs::rename(hidden, folder / "moved");
             fs::create_symlink("moved", hidden);
         }},
    };
    for (const auto& [name, meddle] : table) {
        const TemporaryFolder folder;
        writeFile(folder / "out", "old");
        {
            HiddenFile file(systemFileOperations(), folder / "out", newPaths(folder / "out"), Access::destination);
            writeText(file, "new");
            meddle(folder, file.path());
            const auto left = folder.names();
            EXPECT_EQ(refusal([&] { static_cast<void>(file.moveIntoPlace()); }),
                      "The temporary file was removed or replaced by another program.")
                << name;
            EXPECT_EQ(folder.names(), left) << name;
        }
        EXPECT_EQ(readFile(folder / "out"), "old") << name;
        // What another program put there is not ours to remove.
        EXPECT_EQ(folder.names().size(), name == std::string("removed") ? 1U : name == std::string("linked") ? 3U : 2U);
    }
}

TEST(HiddenFile, TakenNamesAreLeftAlone) {
    const TemporaryFolder folder;
    writeFile(folder / "file", "somebody's");
    fs::create_symlink("file", folder / "link");
    fs::create_symlink("new", folder / "dangling");
    for (const char* taken : {"file", "link", "dangling"})
        ASSERT_THROW(HiddenFile(
                         systemFileOperations(), folder / "out", [&] { return folder / taken; }, Access::user),
                     std::system_error)
            << taken;
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"dangling", "file", "link"}));
    EXPECT_EQ(readFile(folder / "file"), "somebody's");
}

TEST(HiddenFile, ADestinationThatCannotBeIsFoundAtOnce) {
    const TemporaryFolder folder;
    const auto errorOf = [&](const fs::path& destination) {
        try {
            const HiddenFile file(systemFileOperations(), destination, newPaths(folder / "out"), Access::destination);
        } catch (const std::system_error& error) {
            return error.code().value();
        }
        return 0;
    };
    EXPECT_EQ(errorOf(folder / std::string(255, 'n').c_str()), 0);
    EXPECT_EQ(errorOf(folder / std::string(256, 'n').c_str()), ENAMETOOLONG);
    EXPECT_TRUE(folder.names().empty());
}

// Between its creation and its lock a file looks abandoned.
TEST(HiddenFile, CleanUpsOfOthersCannotTakeAFileThatBegins) {
    const TemporaryFolder folder;
    const fs::path destination = folder / "out";
    const auto cleanUp = [&] {
        removeAbandonedFiles(systemFileOperations(), folder.path(), "-test-", [](const HiddenName&) { return true; });
    };
    // It may be quicker, or hold the lock that it found free.
    for (const bool stillLooking : {false, true}) {
        FaultyOperations operations;
        std::optional<Descriptor> others;
        int locks = 0;
        operations.onCall = [&](const std::string& call) {
            if (call != "tryLock" || locks++ > 0) return;
            FileOperations& system = systemFileOperations();
            if (!stillLooking) return cleanUp();
            others.emplace(system, system.openExisting(folder.path() / folder.names().at(0)));
            ASSERT_EQ(system.tryLock(others->get()), 0);
        };
        HiddenFile file(operations, destination, newPaths(destination), Access::destination);
        EXPECT_EQ(locks, 2);
        others.reset();
        cleanUp();
        EXPECT_EQ(folder.names(), std::vector<std::string>{file.path().filename().string()});
        writeText(file, "new");
        EXPECT_FALSE(file.moveIntoPlace());
        EXPECT_EQ(readFile(destination), "new");
        fs::remove(destination);
    }
}

TEST(HiddenFile, CleaningUpTakesAbandonedOnesOfItsOwnKind) {
    const TemporaryFolder folder;
    const auto named = [&](const std::string& stem, const std::string& rest) {
        return folder / ("." + stem + "-test-" + uuid + rest).c_str();
    };
    const HiddenFile held(systemFileOperations(), folder / "out.mov", newPaths(folder / "out.mov"), Access::user);
    EXPECT_EQ(statusOf(startProcess([&] {
                  const HiddenFile left(systemFileOperations(), folder / "out", newPaths(folder / "out"), Access::user);
                  ::_exit(7);
              })),
              7);
    writeFile(named("mine", ".mov"), "abandoned");
    writeFile(named("other", ".mov"), "another's");
    writeFile(named("mine", ".txt"), "another's");
    writeFile(folder / "mine.mov", "another's");
    fs::create_symlink("mine.mov", named("mine.link", ".mov"));
    fs::create_directory(named("mine.folder", ".mov"));
    ASSERT_EQ(::mkfifo(named("mine.pipe", ".mov").c_str(), 0600), 0);
    const std::size_t before = folder.names().size();
    const auto cleanUp = [&](FileOperations& operations) {
        removeAbandonedFiles(operations, folder.path(), "-test-", [](const HiddenName& name) {
            return (name.stem.starts_with("mine") || name.stem == "take") && name.extension == ".mov";
        });
    };
    // Where nothing can be locked or looked at, nothing may be removed.
    for (const std::string failing : {"tryLock", "status", "openExisting"}) {
        FaultyOperations operations;
        operations.failing = {failing, ENOLCK};
        cleanUp(operations);
        EXPECT_EQ(folder.names().size(), before) << failing;
    }
    cleanUp(systemFileOperations());
    EXPECT_FALSE(fs::exists(named("mine", ".mov")));
    EXPECT_TRUE(fs::exists(held.path()));
    EXPECT_EQ(folder.names().size(), before - 2);
    removeAbandonedFiles(systemFileOperations(), folder / "nowhere", "-test-", [](auto&) { return true; });
}

TEST(HiddenFile, WorksWithoutLocks) {
    const TemporaryFolder folder;
    FaultyOperations operations;
    operations.failing = {"tryLock", ENOLCK};
    HiddenFile file(operations, folder / "out", newPaths(folder / "out"), Access::destination);
    writeText(file, "new");
    EXPECT_FALSE(file.moveIntoPlace());
    EXPECT_EQ(readFile(folder / "out"), "new");
}

// Some file systems cannot flush a folder; others can and fail to.
TEST(HiddenFile, TheFoldersFlush) {
    for (const auto& [call, error, reported] :
         {std::tuple{"flush folder", EINVAL, 0}, {"flush folder", EIO, EIO}, {"openFolder", EACCES, EACCES}}) {
        const TemporaryFolder folder;
        FaultyOperations operations;
        operations.failing = {call, error};
        HiddenFile file(operations, folder / "out", newPaths(folder / "out"), Access::destination);
        writeText(file, "new");
        EXPECT_EQ(file.moveIntoPlace().value(), reported) << call;
        EXPECT_EQ(readFile(folder / "out"), "new");
    }
}

} // namespace
} // namespace flowtide::test
