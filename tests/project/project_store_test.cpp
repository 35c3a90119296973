// The store's list, its search by fingerprint, relinking, and what it leaves alone.
#include "project/clip_fingerprint.h"
#include "project/project_json.h"
#include "project/project_store.h"
#include "tests/project/files/refusal.h"
#include "tests/project/random_project.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace flowtide::test {
namespace {

namespace fs = std::filesystem;

class ProjectStoreTest : public testing::Test {
protected:
    std::vector<Uuid> recentIDs() const {
        std::vector<Uuid> ids;
        for (const RecentProject& entry : store.recent())
            ids.push_back(entry.id);
        return ids;
    }

    TemporaryFolder folder;
    ProjectStore store{folder / "deep/er/state"};
    RandomProjects random{10};
};

mode_t modeOf(const fs::path& path) {
    struct stat status {};
    EXPECT_EQ(::lstat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777;
}

TEST_F(ProjectStoreTest, FilesAreNamedById) {
    FlowtideProject project = random.project();
    project.id = *Uuid::parse("3f2504e0-4f89-41d3-9a0c-0305e82c3301");
    project.source.url = Url::ofFile("/clips/My clip #1.mov");
    store.save(project);
    const fs::path file = store.directory() / "3F2504E0-4F89-41D3-9A0C-0305E82C3301.flowtide";
    EXPECT_EQ(readFile(file), encodeProject(project));
    EXPECT_EQ(ProjectStore::load(file), project);
    const RecentProject entry{project.id, "My clip #1.mov", Url::ofFile(file), project.source.fingerprint,
                              project.savedAt};
    EXPECT_EQ(store.recent(), RecentProjects{entry});
}

TEST_F(ProjectStoreTest, WhatItCreatesIsPrivateWhateverTheUmask) {
    for (const mode_t mask : {0U, 0022U, 0777U}) {
        const fs::path top = folder / std::to_string(mask).c_str();
        const mode_t before = ::umask(mask);
        const std::string sentence = refusal([&] { ProjectStore(top / "state").save(random.project()); });
        ::umask(before);
        EXPECT_EQ(sentence, "");
        EXPECT_EQ(modeOf(top), 0700U) << mask;
        EXPECT_EQ(modeOf(top / "state"), 0700U) << mask;
        std::size_t files = 0;
        for (const auto& each : fs::directory_iterator(top / "state")) {
            EXPECT_EQ(modeOf(each.path()), 0600U) << each.path();
            ++files;
        }
        EXPECT_EQ(files, 3U) << "project, list, lock";
    }
}

TEST_F(ProjectStoreTest, InvalidProjectsTouchNothing) {
    FlowtideProject project = random.project();
    project.edits.playhead = 2;
    EXPECT_EQ(refusal([&] { store.save(project); }), "The project contains invalid edit values.");
    EXPECT_TRUE(folder.names().empty());
}

TEST_F(ProjectStoreTest, TheListHoldsTheFiftyAddedLast) {
    std::vector<FlowtideProject> projects;
    std::vector<Uuid> expected;
    for (int i = 0; i < 51; ++i) {
        projects.push_back(random.project());
        store.save(projects.back());
        expected.insert(expected.begin(), projects.back().id);
    }
    expected.pop_back();
    EXPECT_EQ(recentIDs(), expected);
    EXPECT_EQ(ProjectStore::load(store.projectFile(projects[0].id)), projects[0]);

    projects[1].savedAt.seconds = 5;
    store.save(projects[1]);
    EXPECT_EQ(recentIDs(), expected);
    EXPECT_EQ(store.recent().back().savedAt.seconds, 5);

    store.removeFromRecent(projects[1].id);
    store.removeFromRecent(Uuid::random());
    expected.pop_back();
    EXPECT_EQ(recentIDs(), expected);
    EXPECT_TRUE(fs::exists(store.projectFile(projects[1].id)));
}

TEST_F(ProjectStoreTest, AnUnreadableListIsEmptyAndRewritten) {
    const FlowtideProject project = random.project();
    EXPECT_TRUE(store.recent().empty());
    store.save(project);
    const fs::path index = store.directory() / "recent-projects.json";
    const std::string good = readFile(index);
    for (const std::string& damaged : {std::string(), std::string("{"), good + "x", good + std::string(1 << 20, ' ')}) {
        writeFile(index, damaged);
        EXPECT_TRUE(store.recent().empty());
        store.save(project);
        EXPECT_EQ(readFile(index), good);
    }
    fs::rename(index, store.directory() / "other");
    fs::create_symlink("other", index);
    EXPECT_TRUE(store.recent().empty());
    store.save(project);
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(index)));

    RecentProjects list = store.recent();
    list.push_back({Uuid::random(), "web", {"https://example.org/a.flowtide"}, "ab", {}});
    writeFile(index, encodeRecentProjects(list));
    EXPECT_EQ(recentIDs(), std::vector<Uuid>{project.id});
}

TEST_F(ProjectStoreTest, TheNewestValidProjectOfAClip) {
    EXPECT_FALSE(store.loadFor("wanted"));
    const auto saved = [&](const char* fingerprint, double date) {
        FlowtideProject project = random.project();
        project.source.fingerprint = fingerprint;
        project.savedAt.seconds = date;
        store.save(project);
        return project;
    };
    saved("wanted", 1);
    const FlowtideProject newest = saved("wanted", 3);
    saved("wanted", 2);
    saved("other", 4);
    // Later, yet no valid projects.
    FlowtideProject later = newest;
    later.id = Uuid::random();
    later.savedAt.seconds = 5;
    const std::string text = encodeProject(later);
    writeFile(store.directory() / "torn.flowtide", text.substr(0, text.size() / 2));
    writeFile(store.directory() / "renamed.json", text);
    writeFile(folder / "outside.flowtide", text);
    fs::create_symlink(folder / "outside.flowtide", store.directory() / "link.flowtide");
    ASSERT_EQ(::mkfifo((store.directory() / "pipe.flowtide").c_str(), 0600), 0);
    EXPECT_EQ(store.loadFor("wanted"), newest);

    // Moved out of the folder, found through the list.
    const fs::path moved = folder / "moved.flowtide";
    fs::rename(store.projectFile(newest.id), moved);
    EXPECT_EQ(store.loadFor("wanted")->savedAt.seconds, 2);
    store.repoint(store.directory() / "." / "x" / ".." / store.projectFile(newest.id).filename(), moved);
    EXPECT_EQ(store.loadFor("wanted"), newest);
}

TEST_F(ProjectStoreTest, TheListFollowsAMovedFolder) {
    const FlowtideProject project = random.project();
    store.save(project);
    store.removeFromRecent(Uuid::random());
    const fs::path moved = folder / "moved";
    fs::rename(store.directory(), moved);
    EXPECT_TRUE(store.recent().empty());
    store.removeFromRecent(project.id);
    store.repoint(moved, folder.path());
    EXPECT_FALSE(fs::exists(store.directory())) << "only saving creates the folder";
    const ProjectStore there(moved);
    ASSERT_EQ(there.recent().size(), 1U);
    EXPECT_EQ(there.recent()[0].projectURL, Url::ofFile(there.projectFile(project.id)));
    EXPECT_EQ(there.loadFor(project.source.fingerprint), project);
}

TEST_F(ProjectStoreTest, ChosenFiles) {
    const FlowtideProject project = random.project();
    writeFile(folder / "project", encodeProject(project));
    fs::create_symlink("project", folder / "link");
    EXPECT_EQ(refusal([&] { ProjectStore::load(folder / "project"); }), "");
    EXPECT_EQ(refusal([&] { ProjectStore::load(folder / "link"); }),
              "The file could not be opened. Choose a regular file, not a symbolic link.");
    constexpr std::size_t sixteenMebibytes = 16 << 20;
    std::string text = encodeProject(project);
    text.resize(sixteenMebibytes, ' ');
    writeFile(folder / "project", text);
    EXPECT_EQ(ProjectStore::load(folder / "project"), project);
    for (const std::uintmax_t size : {std::uintmax_t{sixteenMebibytes} + 1, std::uintmax_t{20} << 20}) {
        fs::resize_file(folder / "project", size);
        EXPECT_EQ(refusal([&] { ProjectStore::load(folder / "project"); }),
                  "The file is not a regular file or exceeds the supported size.");
    }
}

TEST_F(ProjectStoreTest, ClipsAreFoundAndRelinkedByContent) {
    const fs::path clip = folder / "clip ü.mov";
    writeFile(clip, std::string(200'000, 'c'));
    FlowtideProject project = random.project();
    project.source.url = Url::ofFile(clip);
    project.source.bookmark = Bookmark{"AAAA"};
    project.source.fingerprint = clipFingerprint(clip);
    EXPECT_EQ(ProjectStore::resolve(project), clip);

    const fs::path moved = folder / "moved.mov";
    fs::rename(clip, moved);
    EXPECT_FALSE(ProjectStore::resolve(project));
    writeFile(clip, std::string(200'000, 'd'));
    EXPECT_FALSE(ProjectStore::resolve(project));
    EXPECT_EQ(refusal([&] { ProjectStore::relink(project, clip); }),
              "This video does not match the project's original clip. Choose the original file to relink it.");
    EXPECT_FALSE(fs::exists(store.directory()));

    const FlowtideProject relinked = ProjectStore::relink(project, moved);
    EXPECT_EQ(relinked.savedAt, project.savedAt);
    EXPECT_EQ(ProjectStore::resolve(relinked), moved);
    EXPECT_FALSE(relinked.source.bookmark);
    EXPECT_FALSE(fs::exists(store.directory()));
}

TEST_F(ProjectStoreTest, TheFileSaysWhetherSomebodyElseHasSaved) {
    FlowtideProject project = random.project();
    project.savedAt.seconds = 1;
    store.save(project);
    project.savedAt.seconds = 2;
    writeFile(store.projectFile(project.id), encodeProject(project)); // and the process ended before the list
    project.savedAt.seconds = 3;
    EXPECT_FALSE(store.saveUnlessChanged(project, ReferenceDate{1}));
    EXPECT_TRUE(store.saveUnlessChanged(project, ReferenceDate{2}));
    writeFile(store.projectFile(project.id), "torn"); // then the list is all there is
    EXPECT_FALSE(store.saveUnlessChanged(project, ReferenceDate{2}));
    EXPECT_TRUE(store.saveUnlessChanged(project, ReferenceDate{3}));
}

TEST_F(ProjectStoreTest, FormerSidecarsGo) {
    FlowtideProject project = random.project();
    project.source.url = Url::ofFile(folder / "clip.mov");
    writeFile(folder / ".clip.mov.flowtide-sidecar", "old");
    writeFile(folder / "clip.mov", "clip");
    store.save(project);
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"clip.mov", "deep"}));
}

} // namespace
} // namespace flowtide::test
