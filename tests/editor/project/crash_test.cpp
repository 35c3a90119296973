// A session that is killed in the middle of an edit storm has lost nothing that was stored, and little that was not.
#include "editor/loop_scheduler.h"
#include "tests/support/session_stage.h"

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <random>

namespace flowtide::test {
namespace {

constexpr int edits = 400;

/// What the killed process leaves behind of what it did.
struct Trace {
    std::atomic<int> edited = 0;         ///< how many edits were made
    std::atomic<int> stored = 0;         ///< how many of them the last finished save held
    std::atomic<double> longestSave = 0; ///< seconds
    std::array<std::atomic<double>, edits + 1> times{};
};

/// Notes what saves hold.
class TracingLoop final : public LoopScheduler {
public:
    explicit TracingLoop(Trace& trace)
        : trace_(trace) {}

    void background(BackgroundQueue queue, Task task) override {
        LoopScheduler::background(queue, [this, held = trace_.edited.load(), task = std::move(task)] {
            const double start = now();
            task();
            trace_.stored = held;
            trace_.longestSave = std::max(trace_.longestSave.load(), now() - start);
        });
    }

private:
    Trace& trace_;
};

/// Edits every five milliseconds, a byte into the pipe for each. Edit number n leaves the smoothing at n ÷ `edits`.
[[noreturn]] void storm(Trace& trace, const std::filesystem::path& clip, const std::filesystem::path& state, int pipe) {
    {
        TracingLoop loop(trace);
        ScriptedPlayer player(loop);
        FlowtideViewModel model({loop, player, std::make_shared<ScriptedSessionMedia>(),
                                 std::make_shared<ProjectStore>(state), [] { return 30.0; }});
        model.importClip(clip);
        loop.run([&] { return model.clip() && model.binding().projectSaveMessage() == "Saved"; });
        const auto timer = loop.every(0.005, [&] {
            const int number = trace.edited + 1;
            if (number > edits) return;
            model.setCurveSmoothing(static_cast<double>(number) / edits);
            trace.times.at(static_cast<std::size_t>(number)) = loop.now();
            trace.edited = number;
            if (::write(pipe, "e", 1) != 1) ::_exit(3);
        });
        loop.run([&] { return trace.edited == edits; });
        loop.cancel(timer);
    }
    ::_exit(0); // the loop has let the last save come to its end
}

TEST(SessionCrashTest, KilledAtAnyInstantEveryStoredEditIsThere) {
    // FLOWTIDE_KILLS makes it as thorough as a suite has no time for.
    const char* wanted = std::getenv("FLOWTIDE_KILLS"); // NOLINT(concurrency-mt-unsafe): before any thread
    const int kills = wanted ? std::atoi(wanted) : 4;
    std::mt19937 random(2);
    double longestLag = 0;
    for (int i = 0; i < kills; ++i) {
        const TemporaryFolder folder;
        writeFile(folder / "clip.mov", "clip");
        void* shared = ::mmap(nullptr, sizeof(Trace), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        ASSERT_NE(shared, MAP_FAILED);
        auto* trace = new (shared) Trace;
        std::array<int, 2> ends{};
        ASSERT_EQ(::pipe(ends.data()), 0);
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) storm(*trace, folder / "clip.mov", folder / "state", ends[1]);
        ::close(ends[1]);
        const int last = i == 0 ? edits : 1 + static_cast<int>(random() % edits);
        char byte = 0;
        for (int number = 0; number < last; ++number)
            ASSERT_EQ(::read(ends[0], &byte, 1), 1);
        if (i > 0) ::kill(child, SIGKILL);
        const double killed = LoopScheduler().now();
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        ::close(ends[0]);

        ProjectStore store(folder / "state");
        ASSERT_EQ(store.recent().size(), 1U);
        const FlowtideProject project = ProjectStore::load(store.projectFile(store.recent()[0].id));
        const double found = project.edits.smoothing * edits; // ½ before the first edit
        const bool isUntouched = project.edits.smoothing == 0.5 && trace->stored == 0;
        EXPECT_TRUE(isUntouched || found >= trace->stored - 1e-9) << found << " of " << trace->stored;
        if (i == 0) {
            EXPECT_NEAR(found, edits, 1e-9);
        }
        const auto lost = isUntouched ? std::size_t{1} : static_cast<std::size_t>(std::lround(found)) + 1;
        if (static_cast<int>(lost) <= trace->edited)
            longestLag = std::max(longestLag, killed - trace->times.at(lost) - trace->longestSave);
        ::munmap(shared, sizeof(Trace));
    }
    RecordProperty("oldestLostEditSeconds", std::to_string(longestLag));
    if (wanted) std::printf("the oldest edit that was lost was %.3f s old, the longest save apart\n", longestLag);
}

} // namespace
} // namespace flowtide::test
