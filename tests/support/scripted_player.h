// A player without media, on a scheduler's clock, that is ready, fails and arrives when a test says so.
#pragma once

#include "editor/scheduler.h"
#include "editor/transport/session_player.h"

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace flowtide::test {

/// Time moves with the rate from the moment play is asked for. Seeks complete at once, unless a test says otherwise.
class ScriptedPlayer final : public SessionPlayer {
public:
    explicit ScriptedPlayer(const Scheduler& scheduler)
        : scheduler_(scheduler) {}

    void setItem(std::shared_ptr<const PlaybackItem> item) override {
        place(currentTime().value);
        items.push_back(std::move(item));
        if (!items.back()) rate_ = 0;
        completeSeek(false);
        if (statusOfItems != status_) setStatus(items.back() ? statusOfItems : PlayerStatus::unknown);
    }
    void play(double rate) override {
        place(currentTime().value);
        rate_ = rate;
    }
    void setMuted(bool muted) override { isMuted = muted; }
    double requestedRate() const override { return rate_; }
    double rate() const override { return isStalled ? 0 : rate_; }
    OutputSeconds currentTime() override {
        position_ += rate() * secondsPerQuestion;
        const double moved = position_ + rate() * (scheduler_.now() - since_);
        return {std::clamp(moved, 0.0, duration())};
    }
    void seek(OutputSeconds time, SeekCompletion completion) override {
        completeSeek(false);
        if (!arrivesLate) moveTo(time.value);
        seeks.push_back(time.value);
        seek_ = std::move(completion);
        if (completesSeeks) completeSeek(true);
    }
    PlayerStatus status() const override { return status_; }
    std::string failure() const override { return failure_; }

    // The script:
    PlayerStatus statusOfItems = PlayerStatus::ready; ///< as soon as they are set
    bool completesSeeks = true;
    bool arrivesLate = false; ///< seeks are without effect
    bool isStalled = false;
    bool isMuted = false;          ///< as it was told
    double secondsPerQuestion = 0; ///< that its clock goes on each time it is asked for the time
    void moveTo(double time) { place(std::clamp(time, 0.0, duration())); }
    void setStatus(PlayerStatus status, std::string failure = {}) {
        status_ = status;
        failure_ = std::move(failure);
        if (onStatus) onStatus();
    }
    void completeSeek(bool finished) {
        if (const auto completion = std::exchange(seek_, {})) completion(finished);
    }
    /// What a refresh of the display notices: play that has come to an end stops by itself.
    void update() {
        const double time = currentTime().value;
        if (rate_ == 0 || (rate_ > 0 ? time < duration() : time > 0)) return;
        play(0);
        if (onEnd) onEnd();
    }

    // What it was asked for:
    std::vector<std::shared_ptr<const PlaybackItem>> items;
    std::vector<double> seeks; ///< output seconds

    const PlaybackItem* item() const { return items.empty() ? nullptr : items.back().get(); }
    double duration() const { return item() ? item()->media.asset.duration().value : 0; }

private:
    void place(double position) {
        position_ = position;
        since_ = scheduler_.now();
    }

    const Scheduler& scheduler_;
    double position_ = 0;
    double since_ = 0;
    double rate_ = 0;
    PlayerStatus status_ = PlayerStatus::unknown;
    std::string failure_;
    SeekCompletion seek_;
};

} // namespace flowtide::test
