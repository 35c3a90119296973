// What the session asks of a player.
#pragma once

#include "core/time.h"
#include "media/player/playback_route.h"
#include "media/player/preview_player.h"

#include <functional>
#include <memory>
#include <string>

namespace flowtide {

/// Plays a composition; all of it, and its callbacks, on the main thread.
class SessionPlayer {
public:
    /// Told whether the picture of the wanted time was reached; not when a later seek or item came first.
    using SeekCompletion = std::function<void(bool finished)>;

    virtual ~SessionPlayer() = default;

    /// Called when status() has changed, and when play has stopped at an end of the output by itself.
    std::function<void()> onStatus;
    std::function<void()> onEnd;

    /// Plays this from now on, at the same output time as far as there is one; play goes on. Nothing: no medium.
    virtual void setItem(std::shared_ptr<const PlaybackItem> item) = 0;

    /// Plays at a rate of -8 to 8; 0 pauses.
    virtual void play(double rate) = 0;
    void pause() { play(0); }
    /// Of all that it plays. Nothing to do for players without sound.
    virtual void setMuted(bool muted) = 0;
    virtual double requestedRate() const = 0;
    /// 0 while play still waits for its first frames, and at the ends.
    virtual double rate() const = 0;

    virtual OutputSeconds currentTime() = 0;
    /// Goes exactly there; the latest seek wins. May complete at once.
    virtual void seek(OutputSeconds time, SeekCompletion completion) = 0;

    virtual PlayerStatus status() const = 0;
    /// The sentence that says why the status is "failed"; may be empty.
    virtual std::string failure() const = 0;
    /// The sentence to show for it.
    std::string failureToShow() const {
        const std::string own = failure();
        return own.empty() ? "Preview player failed while loading." : own;
    }
};

} // namespace flowtide
