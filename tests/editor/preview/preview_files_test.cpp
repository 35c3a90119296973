// The files of renders on the disk.
#include "editor/jobs/engine_session_media.h"
#include "tests/project/files/faulty_operations.h"
#include "tests/support/scripted_media.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <atomic>

namespace flowtide::test {
namespace {

TEST(PreviewFiles, OnlyWhatHasSucceededIsLeft) {
    TemporaryFolder folder;
    MediaScript script;
    script.source = plainProbe();
    writeFile(folder / "in.mov", "source");
    const auto files = [&] {
        std::size_t count = 0;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder / "temporary"))
            count += entry.path().extension() == ".mov";
        return count;
    };
    bool isToBeCancelled = false;
    std::atomic<bool> isCancelled = false; // asked on every thread of the render
    script.onAppendVideo = [&](std::int64_t) { isCancelled = isToBeCancelled; };
    const ScriptedBackend backend(script);
    FaultyOperations operations;
    TemporaryItems items(folder / "temporary", operations);
    EngineSessionMedia media(backend, items, [](std::string_view line) { ADD_FAILURE() << line; });
    ExportRequest request;
    request.clip = ImportedClip::load(backend, folder / "in.mov");
    request.keyframes = {{Uuid::random(), 0, 1}, {Uuid::random(), 2, 1}};
    const auto render = [&] {
        return media.renderPreview(
            Uuid::random(), request, [](double) {}, [&] { return isCancelled.load(); });
    };
    operations.failing = {"makeFolder", ENOSPC};
    EXPECT_ANY_THROW(render());
    operations.failing = {};
    const auto file = render(); // the next one tries again
    EXPECT_TRUE(std::filesystem::is_regular_file(file));
    isToBeCancelled = true;
    EXPECT_THROW(render(), FlowtideError);
    EXPECT_EQ(files(), 1U);
    media.removePreview(file);
    EXPECT_EQ(files(), 0U);
}

} // namespace
} // namespace flowtide::test
