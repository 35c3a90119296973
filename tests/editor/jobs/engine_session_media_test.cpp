// What a session asks of the engines, on scripted media.
#include "editor/jobs/engine_session_media.h"
#include "tests/support/scripted_media.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

namespace flowtide::test {
namespace {

TEST(EngineSessionMediaTest, AnExportIsCancelledBeforeTheFirstFrameAndBehindTheLast) {
    TemporaryFolder folder;
    writeFile(folder / "in.mov", "source");
    writeFile(folder / "out.mov", "old take");
    bool isCancelled = false;
    for (const bool isBehindTheLast : {false, true}) {
        isCancelled = false;
        MediaScript script;
        script.source = plainProbe();
        script.source.audio = AudioTrack{48'000, 1, "mono", aac, false, 0, {}};
        script.onOpenVideo = [&] { EXPECT_FALSE(isCancelled); };
        if (isBehindTheLast)
            script.probeOfOutput = [&](const ProbedMedia& probe) {
                isCancelled = true; // while it is verified
                return probe;
            };
        else
            script.onOpenAudio = [&] { isCancelled = true; };
        const ScriptedBackend backend(script);
        TemporaryItems items(folder / "temporary");
        EngineSessionMedia media(backend, items, [](std::string_view) {});
        ExportRequest request;
        request.clip = ImportedClip::load(backend, folder / "in.mov");
        request.keyframes = {{Uuid::random(), 0, 1}, {Uuid::random(), 2, 1}};
        request.outputURL = folder / "out.mov";
        try {
            media.exportClip(
                request, [](double) {}, [&] { return isCancelled; });
            ADD_FAILURE() << "not cancelled";
        } catch (const FlowtideError& error) {
            EXPECT_EQ(error.kind(), FlowtideError::Case::exportCancelled) << error.what();
        }
        EXPECT_EQ(readFile(folder / "out.mov"), "old take");
    }
}

} // namespace
} // namespace flowtide::test
