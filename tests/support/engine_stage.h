// An editor session on the real engines, a real main loop and a real player, heard by nobody.
#pragma once

#include "editor/flowtide_view_model.h"
#include "editor/jobs/engine_session_media.h"
#include "editor/loop_scheduler.h"
#include "editor/transport/preview_player_adapter.h"
#include "media/ffmpeg/ffmpeg_backend.h"
#include "media/player/playback_clock.h"
#include "media/preview/temporary_items.h"
#include "tests/support/temporary_folder.h"

#include <functional>
#include <memory>
#include <string_view>
#include <utility>

namespace flowtide::test {

class EngineStage {
public:
    static constexpr double longestWaitSeconds = 300;

    EngineStage() { restart(); }

    /// The session ends, and another begins on what it has stored.
    void restart() {
        model.reset();
        model = std::make_unique<FlowtideViewModel>(SessionEnvironment{
            loop, adapter_, media_, std::make_shared<ProjectStore>(folder / "state"), [] { return 30.0; }});
    }

    /// Runs the loop until something holds; false when it does not in time.
    bool runUntil(const std::function<bool()>& holds) {
        bool isLate = false;
        const auto deadline = loop.after(longestWaitSeconds, [&] { isLate = true; });
        loop.run([&] { return isLate || holds(); });
        loop.cancel(deadline);
        return holds();
    }

    // In the order in which they are used by what follows; the loop's end waits for the jobs in the background.
    TemporaryFolder folder;
    std::unique_ptr<MediaBackend> backend = makeFFmpegBackend();
    TemporaryItems items{folder.path()};
    SteadyClock clock;
    LoopScheduler loop;
    PreviewPlayer player{
        {backend.get(), &clock, [this](std::function<void()> call) { loop.post(std::move(call)); }, {}}};

private:
    PreviewPlayerAdapter adapter_{player};
    std::shared_ptr<EngineSessionMedia> media_ =
        std::make_shared<EngineSessionMedia>(*backend, items, [](std::string_view) {});
    Timer refreshes_{loop, loop.every(1.0 / 60, [this] { player.update(); })};

public:
    std::unique_ptr<FlowtideViewModel> model;
};

} // namespace flowtide::test
