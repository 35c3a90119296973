// The media layer's player as a session's.
#pragma once

#include "editor/transport/session_player.h"

#include <utility>

namespace flowtide {

/// Takes the player's onStatus and onEnd; its pictures remain the window's, and so do its calls of update(). The player
/// must outlive it.
class PreviewPlayerAdapter final : public SessionPlayer {
public:
    explicit PreviewPlayerAdapter(PreviewPlayer& player)
        : player_(player) {
        player_.onStatus = [this] { call(onStatus); };
        player_.onEnd = [this] { call(onEnd); };
    }
    ~PreviewPlayerAdapter() override { player_.onStatus = player_.onEnd = {}; }
    PreviewPlayerAdapter(const PreviewPlayerAdapter&) = delete;
    PreviewPlayerAdapter& operator=(const PreviewPlayerAdapter&) = delete;

    /// Called when the player was given something to do: it may be active from now on.
    std::function<void()> onActivity;

    void setItem(std::shared_ptr<const PlaybackItem> item) override {
        player_.setItem(std::move(item));
        call(onActivity);
    }
    void play(double rate) override {
        player_.play(rate);
        call(onActivity);
    }
    void setMuted(bool muted) override { player_.setMuted(muted); }
    double requestedRate() const override { return player_.requestedRate(); }
    double rate() const override { return player_.rate(); }
    OutputSeconds currentTime() override { return player_.currentTime(); }
    void seek(OutputSeconds time, SeekCompletion completion) override {
        player_.seek(time, std::move(completion));
        call(onActivity);
    }
    PlayerStatus status() const override { return player_.status(); }
    std::string failure() const override { return player_.failure(); }

private:
    static void call(const std::function<void()>& callback) {
        if (callback) callback();
    }

    PreviewPlayer& player_;
};

} // namespace flowtide
