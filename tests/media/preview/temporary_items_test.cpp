// Whose temporary things go, and when: at the end of their process, or after its death, and nobody else's ever.
#include "media/preview/preview_cache_files.h"
#include "media/preview/temporary_file.h"
#include "media/preview/temporary_items.h"
#include "tests/project/files/faulty_operations.h"
#include "tests/support/environment.h"
#include "tests/support/temporary_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <regex>

namespace flowtide {
namespace {

namespace fs = std::filesystem;
using Kind = TemporaryItems::Kind;
using test::TemporaryFolder;
using testing::ElementsAre;
using testing::IsEmpty;

mode_t modeOf(const fs::path& path) {
    struct stat status {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
    return status.st_mode & 0777;
}

/// Runs something in a process that then dies without any clean-up.
void inDyingProcess(const std::function<void()>& work) {
    const pid_t child = ::fork();
    if (child == 0) {
        work();
        ::_exit(0);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
}

TEST(TemporaryItems, NamesAreTheirKindsAndEveryThingGoesAtTheEnd) {
    const TemporaryFolder folder;
    const std::string uuid = "[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}";
    {
        TemporaryItems items(folder.path());
        EXPECT_THAT(folder.names(), IsEmpty());
        for (const auto& [kind, pattern] : std::vector<std::pair<Kind, std::string>>{
                 {Kind::proxy, "FlowtideProxy-" + uuid + "\\.mov"},
                 {Kind::previewAudio, "LoftwellPreviewAudio-" + uuid + "\\.caf"},
                 {Kind::previewFolder, "FlowtidePreviews-" + uuid},
             }) {
            const fs::path path = items.add(kind);
            EXPECT_EQ(path.parent_path(), folder.path());
            EXPECT_TRUE(std::regex_match(path.filename().string(), std::regex(pattern))) << path;
            EXPECT_FALSE(fs::exists(path));
        }
        TemporaryFile file(items, Kind::proxy);
        file.write(std::vector<std::uint8_t>{1, 2, 3});
        file.keep();
        EXPECT_EQ(modeOf(file.path()), 0600U);
        EXPECT_EQ(folder.names().size(), 2U); // the record and the file
    }
    EXPECT_THAT(folder.names(), IsEmpty());
}

TEST(TemporaryItems, AFileThatIsNotKeptGoesAtOnce) {
    const TemporaryFolder folder;
    TemporaryItems items(folder.path());
    const fs::path path = TemporaryFile(items, Kind::previewAudio).path();
    EXPECT_FALSE(fs::exists(path));
}

TEST(TemporaryItems, ADeadProcessesThingsGoAtTheNextStartAndALiveOnesStay) {
    const TemporaryFolder folder;
    TemporaryItems living(folder.path());
    TemporaryFile kept(living, Kind::proxy);
    const auto livingNames = folder.names();
    inDyingProcess([&] {
        TemporaryItems items(folder.path());
        TemporaryFile proxy(items, Kind::proxy);
        proxy.write(std::vector<std::uint8_t>{1});
        TemporaryFile sound(items, Kind::previewAudio);
        const PreviewCacheFiles cache(items);
        test::writeFile(cache.url(Uuid::random()), "movie");
        test::writeFile(cache.directory() / ".movie-export-x.mov", "half a movie");
        ::_exit(0);
    });
    EXPECT_EQ(folder.names().size(), livingNames.size() + 4);
    const TemporaryItems next(folder.path());
    EXPECT_EQ(folder.names(), livingNames);
}

TEST(TemporaryItems, WhatWasReleasedIsSomebodyElses) {
    const TemporaryFolder folder;
    fs::path released;
    {
        TemporaryItems items(folder.path());
        TemporaryFile file(items, Kind::proxy);
        file.keep();
        released = file.path();
        items.release(released);
    }
    EXPECT_THAT(folder.names(), ElementsAre(released.filename().string()));
    inDyingProcess([&] {
        TemporaryItems items(folder.path());
        TemporaryFile file(items, Kind::proxy);
        file.keep();
        items.release(file.path());
        ::_exit(0);
    });
    const TemporaryItems next(folder.path());
    EXPECT_EQ(folder.names().size(), 2U) << "both proxies and no record";
}

/// A record as a dead process leaves it.
void leaveRecord(const TemporaryFolder& folder, const std::string& text) {
    test::writeFile(folder.path() / (".Flowtide-temporary-" + Uuid::random().text() + ".list"), text);
}

TEST(TemporaryItems, ARecordRemovesNothingButWhatWeName) {
    const TemporaryFolder folder;
    const std::string uuid = Uuid::random().text();
    const std::string proxy = "FlowtideProxy-" + uuid + ".mov";
    fs::create_directory(folder / "other");
    const std::string inOther = "other/" + proxy;
    const std::string lower = "FlowtideProxy-3f2504e0-4f89-41d3-9a0c-0305e82c3301.mov";
    for (const auto& name : {inOther, lower, std::string("FlowtideProxy-x.mov"), std::string("precious.mov"),
                             "LoftwellPreviewAudio-" + uuid + ".mov", "FlowtidePreviews-" + uuid + ".mov"})
        test::writeFile(folder.path() / name, "precious");
    test::writeFile(folder.path() / "target", "precious");
    const std::string link = "FlowtidePreviews-" + Uuid::random().text();
    fs::create_symlink(folder / "other", folder.path() / link);
    const std::string linkedFile = "FlowtideProxy-" + Uuid::random().text() + ".mov";
    fs::create_symlink(folder / "target", folder.path() / linkedFile);
    const std::string pipe = "FlowtideProxy-" + Uuid::random().text() + ".mov";
    ASSERT_EQ(::mkfifo((folder.path() / pipe).c_str(), 0600), 0);
    const auto before = folder.names();

    std::string lines;
    for (const std::string& name :
         {inOther, "../" + folder.path().filename().string() + "/precious.mov", lower,
          std::string("FlowtideProxy-x.mov"), std::string("precious.mov"), "LoftwellPreviewAudio-" + uuid + ".mov",
          "FlowtidePreviews-" + uuid + ".mov", link, linkedFile, pipe, std::string(), std::string("FlowtideProxy-.mov"),
          std::string("FlowtideProxy-mov")})
        lines += "+" + name + "\n";
    leaveRecord(folder, lines + proxy + "\n*" + proxy + "\n+" + proxy); // the last line was cut off
    test::writeFile(folder.path() / proxy, "precious");
    const TemporaryItems next(folder.path());
    EXPECT_THAT(folder.names(), testing::IsSupersetOf(before));
    EXPECT_TRUE(fs::exists(folder.path() / proxy));
    EXPECT_TRUE(fs::exists(folder.path() / inOther));
}

/// Records look as if somebody else had made them.
class ForeignRecords : public test::FaultyOperations {
public:
    using FaultyOperations::status;
    int status(const fs::path& path, struct stat& result) override {
        const int returned = FaultyOperations::status(path, result);
        if (path.extension() == ".list") ++result.st_uid;
        return returned;
    }
};

TEST(TemporaryItems, SomebodyElsesRecordRemovesNothing) {
    const TemporaryFolder folder;
    const std::string proxy = "FlowtideProxy-" + Uuid::random().text() + ".mov";
    test::writeFile(folder.path() / proxy, "precious");
    leaveRecord(folder, "+" + proxy + "\n");
    const auto before = folder.names();
    ForeignRecords operations;
    const TemporaryItems next(folder.path(), operations);
    EXPECT_EQ(folder.names(), before);
}

TEST(TemporaryItems, AFolderWithMoreThanFilesStays) {
    const TemporaryFolder folder;
    const std::string name = "FlowtidePreviews-" + Uuid::random().text();
    fs::create_directories(folder.path() / name / "deeper");
    test::writeFile(folder.path() / name / "deeper" / "precious", "precious");
    fs::create_symlink("deeper", folder.path() / name / "link");
    leaveRecord(folder, "+" + name + "\n");
    const TemporaryItems next(folder.path());
    EXPECT_TRUE(fs::exists(folder.path() / name / "deeper" / "precious"));
}

TEST(TemporaryItems, NothingIsMadeThatCouldNotBeRecorded) {
    const TemporaryFolder folder;
    for (const char* call : {"createFile", "writeAt"}) {
        test::FaultyOperations operations;
        operations.failing = {call, ENOSPC};
        TemporaryItems items(folder.path(), operations);
        EXPECT_THROW(TemporaryFile(items, Kind::proxy), std::system_error) << call;
        EXPECT_THROW(PreviewCacheFiles{items}, std::system_error) << call;
    }
    EXPECT_THAT(folder.names(), IsEmpty());
}

TEST(TemporaryItems, TheFolderIsTheEnvironmentsOrTmp) {
    const test::RestoredVariable restored("TMPDIR");
    ::setenv("TMPDIR", "/somewhere/else", 1);
    EXPECT_EQ(temporaryFolder(), "/somewhere/else");
    ::setenv("TMPDIR", "here", 1);
    EXPECT_EQ(temporaryFolder(), fs::current_path() / "here");
    ::setenv("TMPDIR", "", 1);
    EXPECT_EQ(temporaryFolder(), "/tmp");
    ::unsetenv("TMPDIR");
    EXPECT_EQ(temporaryFolder(), "/tmp");
}

TEST(PreviewCacheFiles, IsOnePrivateFolderWithOneFileAPreview) {
    const TemporaryFolder folder;
    TemporaryItems items(folder.path() / "not" / "there");
    fs::path directory;
    {
        PreviewCacheFiles cache(items);
        directory = cache.directory();
        EXPECT_EQ(modeOf(directory), 0700U);
        const Uuid first = Uuid::random();
        const Uuid second = Uuid::random();
        EXPECT_EQ(cache.url(first), directory / (first.text() + ".mov"));
        test::writeFile(cache.url(first), "1");
        test::writeFile(cache.url(second), "2");
        cache.remove(first);
        EXPECT_FALSE(fs::exists(cache.url(first)));
        EXPECT_TRUE(fs::exists(cache.url(second)));
        cache.remove(first);
    }
    EXPECT_FALSE(fs::exists(directory));
}

} // namespace
} // namespace flowtide
