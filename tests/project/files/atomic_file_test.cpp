// A save that fails or dies at any operation leaves every project and the list whole, old or new; processes that save
// at the same time lose nothing.
#include "project/files/atomic_file.h"
#include "project/project_json.h"
#include "project/project_store.h"
#include "tests/project/files/faulty_operations.h"
#include "tests/project/files/refusal.h"
#include "tests/project/random_project.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

namespace flowtide::test {
namespace {

namespace fs = std::filesystem;
using Fault = FaultyOperations::Fault;

/// Leaves it to statusOf() to collect the child.
bool isRunning(pid_t child) {
    siginfo_t ended{};
    EXPECT_EQ(::waitid(P_PID, static_cast<id_t>(child), &ended, WEXITED | WNOHANG | WNOWAIT), 0);
    return ended.si_pid == 0;
}

/// One save into a folder, with what the folder held before and what it is to hold then.
struct Scenario {
    std::string name;
    std::vector<FlowtideProject> before;
    FlowtideProject saved;
};

std::vector<Scenario> scenarios() {
    RandomProjects random(8);
    const FlowtideProject first = random.project();
    const FlowtideProject second = random.project();
    FlowtideProject changed = random.project();
    changed.id = first.id;
    return {{"the first save", {}, first}, {"a new project", {first}, second}, {"a change", {first, second}, changed}};
}

class FaultySave {
public:
    explicit FaultySave(const Scenario& scenario)
        : scenario_(scenario)
        , folder_(temporary_ / "state") {
        FaultyOperations operations;
        for (const FlowtideProject& project : scenario.before)
            ProjectStore(folder_, operations).save(project);
        before_ = recentIDsAndDates();
    }

    const fs::path& folder() const { return folder_; }

    /// Everything loads and is either as it was or as it is to be.
    void expectWhole(bool succeeded) {
        const ProjectStore store(folder_);
        bool sawSaved = false;
        for (const FlowtideProject& project : scenario_.before) {
            const FlowtideProject found = ProjectStore::load(store.projectFile(project.id));
            if (project.id == scenario_.saved.id && found == scenario_.saved) {
                sawSaved = true;
                continue;
            }
            EXPECT_EQ(found, project);
        }
        if (!sawSaved && fs::exists(store.projectFile(scenario_.saved.id))) {
            const FlowtideProject found = ProjectStore::load(store.projectFile(scenario_.saved.id));
            sawSaved = found == scenario_.saved;
            EXPECT_TRUE(sawSaved || !scenario_.before.empty());
        }
        const auto now = recentIDsAndDates();
        if (now != before_) expectNewIndex(now);
        if (succeeded) {
            EXPECT_TRUE(sawSaved);
            expectNewIndex(now);
        }
    }

    /// The next save finds nothing in its way and leaves nothing behind.
    void expectRecovery() {
        FaultyOperations operations;
        ProjectStore(folder_, operations).save(scenario_.saved);
        expectWhole(true);
        for (const auto& entry : fs::directory_iterator(folder_)) {
            const std::string name = entry.path().filename().string();
            EXPECT_TRUE(name == ".lock" || name == "recent-projects.json" || name.ends_with(".flowtide")) << name;
        }
    }

private:
    using Index = std::vector<std::pair<Uuid, ReferenceDate>>;

    Index recentIDsAndDates() const {
        // The store takes a torn list for an empty one.
        const fs::path file = folder_ / "recent-projects.json";
        if (fs::exists(file)) decodeRecentProjects(readFile(file));
        Index result;
        for (const RecentProject& entry : ProjectStore(folder_).recent())
            result.emplace_back(entry.id, entry.savedAt);
        return result;
    }

    void expectNewIndex(const Index& index) const {
        Index expected = before_;
        const auto same = std::find_if(expected.begin(), expected.end(),
                                       [&](const auto& entry) { return entry.first == scenario_.saved.id; });
        if (same != expected.end())
            same->second = scenario_.saved.savedAt;
        else
            expected.insert(expected.begin(), {scenario_.saved.id, scenario_.saved.savedAt});
        EXPECT_EQ(index, expected);
    }

    TemporaryFolder temporary_;
    Scenario scenario_;
    fs::path folder_;
    Index before_;
};

int operationsOf(const Scenario& scenario) {
    FaultySave save(scenario);
    FaultyOperations operations;
    ProjectStore(save.folder(), operations).save(scenario.saved);
    save.expectWhole(true);
    return operations.count();
}

/// The calls that decide what a power cut leaves.
std::vector<std::string> lastingCalls(const FaultyOperations& operations) {
    std::vector<std::string> result;
    for (const std::string& call : operations.calls())
        if (call == "writeAt" || call == "rename" || call.starts_with("flush") || call == "makeFolder")
            result.push_back(call);
    return result;
}

TEST(AtomicSave, NothingIsRenamedUnflushed) {
    const std::vector<std::string> replacement{"writeAt", "flush file", "rename", "flush folder"};
    for (const Scenario& scenario : scenarios()) {
        FaultySave save(scenario);
        FaultyOperations operations;
        ProjectStore(save.folder(), operations).save(scenario.saved);
        std::vector<std::string> expected;
        if (scenario.before.empty()) expected = {"makeFolder", "flush folder"};
        for (int file = 0; file < 2; ++file) // the project and the list
            expected.insert(expected.end(), replacement.begin(), replacement.end());
        EXPECT_EQ(lastingCalls(operations), expected) << scenario.name;
    }
}

TEST(AtomicSave, EveryOperationFails) {
    for (const Scenario& scenario : scenarios()) {
        const int count = operationsOf(scenario);
        ASSERT_GT(count, 15);
        for (int at = 0; at < count; ++at)
            for (const auto& [fault, error] :
                 {std::pair{Fault::fails, EIO}, {Fault::failsForever, ENOSPC}, {Fault::shortWrite, ENOSPC}}) {
                SCOPED_TRACE(scenario.name + ", operation " + std::to_string(at) + " of " + std::to_string(count));
                FaultySave save(scenario);
                FaultyOperations operations(fault, at, error);
                ProjectStore store(save.folder(), operations);
                const std::string sentence = refusal([&] { store.save(scenario.saved); });
                const bool fits = sentence.empty() || sentence == (error == EIO ? "Input/output error (error 5)"
                                                                                : "No space left on device (error 28)");
                EXPECT_TRUE(fits) << sentence;
                save.expectWhole(sentence.empty());
                save.expectRecovery();
            }
    }
}

TEST(AtomicSave, TheProcessDiesAtEveryOperation) {
    for (const Scenario& scenario : scenarios()) {
        const int count = operationsOf(scenario);
        for (int at = 0; at < count; ++at)
            for (const Fault fault : {Fault::killsBefore, Fault::killsAfter, Fault::killsHalfWritten}) {
                SCOPED_TRACE(scenario.name + ", operation " + std::to_string(at) + " of " + std::to_string(count));
                FaultySave save(scenario);
                EXPECT_EQ(statusOf(startProcess([&] {
                              FaultyOperations operations(fault, at, 0);
                              ProjectStore(save.folder(), operations).save(scenario.saved);
                          })),
                          FaultyOperations::killedStatus);
                save.expectWhole(false);
                save.expectRecovery();
            }
    }
}

TEST(AtomicSave, ProcessesThatSaveTogetherLoseNothing) {
    constexpr std::size_t processes = 2;
    constexpr std::size_t projects = ProjectStore::maximumRecentProjects / processes;
    constexpr std::size_t rounds = 1'000 / projects;
    const TemporaryFolder folder;
    // What a dead process leaves behind keeps nobody waiting.
    EXPECT_EQ(statusOf(startProcess([&] {
                  const FolderLock lock(systemFileOperations(), folder.path());
                  ::_exit(7);
              })),
              7);

    std::vector<std::vector<FlowtideProject>> mine(processes);
    RandomProjects random(9);
    for (auto& list : mine)
        for (std::size_t i = 0; i < projects; ++i)
            list.push_back(random.project());
    std::vector<pid_t> children;
    for (const auto& list : mine)
        children.push_back(startProcess([&] {
            FaultyOperations operations;
            ProjectStore store(folder.path(), operations);
            for (std::size_t round = 0; round < rounds; ++round)
                for (FlowtideProject project : list) {
                    project.savedAt.seconds = static_cast<double>(round);
                    store.save(project);
                }
        }));
    // Meanwhile a reader never sees the list shrink, as a torn one would, and always finds whole projects.
    const ProjectStore store(folder.path());
    std::size_t seen = 0;
    std::size_t turn = 0;
    while (isRunning(children[0])) {
        const RecentProjects list = store.recent();
        ASSERT_GE(list.size(), seen);
        seen = list.size();
        if (list.empty()) continue;
        const RecentProject& entry = list[turn++ % list.size()];
        ASSERT_EQ(ProjectStore::load(*entry.projectURL.filePath()).id, entry.id);
    }
    for (const pid_t child : children)
        EXPECT_EQ(statusOf(child), 0);

    const RecentProjects list = store.recent();
    EXPECT_EQ(list.size(), processes * projects);
    for (const auto& own : mine)
        for (FlowtideProject project : own) {
            project.savedAt.seconds = rounds - 1;
            EXPECT_EQ(ProjectStore::load(store.projectFile(project.id)), project);
            const auto entry = std::find_if(list.begin(), list.end(),
                                            [&](const RecentProject& each) { return each.id == project.id; });
            ASSERT_NE(entry, list.end());
            EXPECT_EQ(entry->savedAt, project.savedAt);
        }
}

} // namespace
} // namespace flowtide::test
