// Waits until a player can show a time.
#pragma once

#include "editor/scheduler.h"
#include "editor/transport/session_player.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace flowtide {

/// One preparation at a time: first the player becomes ready, then it goes to the time. Main thread only.
class PlayerPreparation {
public:
    static constexpr double timeoutSeconds = 10; ///< for all of it

    /// Told the sentence of a failure, or nothing once the picture is there; not when the preparation is cancelled.
    using Done = std::function<void(const std::optional<std::string>& failure)>;

    PlayerPreparation(Scheduler& scheduler, SessionPlayer& player)
        : scheduler_(scheduler)
        , player_(player) {}

    /// Begins, in place of one that is under way. May be done at once.
    void preparePlayer(OutputSeconds time, Done done);
    void cancel();
    /// The player's status has changed.
    void statusChanged();

private:
    struct Task {
        OutputSeconds time;
        Done done;
        bool isSeeking = false;
    };
    void waitUntilPlayerIsReady();
    void seek();
    void finish(const std::optional<std::string>& failure);

    Scheduler& scheduler_;
    SessionPlayer& player_;
    std::shared_ptr<Task> task_; ///< null when none is under way; seeks look whether it still is
    Timer timeout_;
};

} // namespace flowtide
