// A player on a virtual clock with scripted media, and the thread that owns it.
#pragma once

#include "core/curve_engine.h"
#include "media/player/preview_player.h"
#include "tests/support/scripted_media.h"
#include "tests/support/virtual_clock.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

namespace flowtide::test {

/// Calls brought to a test's thread.
class Mailbox {
public:
    void post(std::function<void()> call) {
        {
            const std::scoped_lock guard(lock_);
            calls_.push_back(std::move(call));
        }
        changed_.notify_all();
    }
    /// Waits, on another thread, until every call has been run or nobody will run them any more.
    void waitUntilEmpty() {
        std::unique_lock guard(lock_);
        changed_.wait(guard, [this] { return (calls_.empty() && !isRunning_) || isClosed_; });
    }
    void close() {
        {
            const std::scoped_lock guard(lock_);
            isClosed_ = true;
        }
        changed_.notify_all();
    }
    /// Runs calls until a condition holds. False when it never does: nothing has come for half a minute.
    bool runUntil(const std::function<bool()>& holds) {
        while (!holds()) {
            std::function<void()> call;
            {
                std::unique_lock guard(lock_);
                if (!changed_.wait_for(guard, std::chrono::seconds(30), [this] { return !calls_.empty(); }))
                    return false;
                call = std::move(calls_.front());
                calls_.pop_front();
                isRunning_ = true;
            }
            call();
            {
                const std::scoped_lock guard(lock_);
                isRunning_ = false;
            }
            changed_.notify_all();
        }
        return true;
    }

private:
    std::mutex lock_; ///< guards everything below
    std::condition_variable changed_;
    std::deque<std::function<void()>> calls_;
    bool isRunning_ = false;
    bool isClosed_ = false;
};

/// 25 frames a second, 48 × 32 pixels; proxies are 32 × 32, so that a picture tells where it comes from.
inline std::shared_ptr<const ImportedClip> stageClip(double duration, int width = 48) {
    auto clip = std::make_shared<ImportedClip>();
    clip->duration = duration;
    clip->frameRate = 25;
    clip->frameDuration = {1, 25};
    clip->video.encodedWidth = width;
    clip->video.encodedHeight = 32;
    return clip;
}

constexpr double stageFrameSeconds = 1.0 / 25;

/// The frame of a clip that is shown at a source time.
inline std::int64_t frameAt(double sourceTime, std::int64_t count) {
    return std::clamp<std::int64_t>(static_cast<std::int64_t>(std::floor(sourceTime / stageFrameSeconds + 1e-4)), 0,
                                    count - 1);
}

/// Source time as output time, or stretched by a constant factor.
inline PlaybackItem stageItem(double duration, double stretch = 1) {
    PlaybackItem item;
    item.media.asset.media.push_back({"clip.mov", 0, stageClip(duration)});
    const auto ticks = *CompositionTime::nearest(duration);
    const auto outputTicks = *CompositionTime::nearest(duration * stretch);
    item.media.asset.video.push_back({0, {}, ticks, {}, outputTicks});
    item.media.timeMap = TimeMap({{0, 0}, {duration, duration * stretch}}, {0, duration}, duration * stretch);
    return item;
}

inline CompositionMedium stageProxy(double duration) {
    return {"proxy.mov", 0, stageClip(duration, 32)};
}

struct PlayerStage {
    explicit PlayerStage(PlaybackScript playback = {}, AudioOutputFactory openAudio = {},
                         std::size_t cacheBytes = 384U << 20U)
        : backend(scriptOf(std::move(playback)))
        , player(std::make_unique<PreviewPlayer>(
              PlayerPlatform{&backend, &clock, [this](std::function<void()> call) { mailbox.post(std::move(call)); },
                             std::move(openAudio), cacheBytes})) {}

    ~PlayerStage() { mailbox.close(); }
    PlayerStage(const PlayerStage&) = delete;
    PlayerStage& operator=(const PlayerStage&) = delete;

    static MediaScript scriptOf(PlaybackScript playback) {
        MediaScript script;
        script.playback = std::move(playback);
        return script;
    }

    void setItem(PlaybackItem item) { player->setItem(std::make_shared<const PlaybackItem>(std::move(item))); }
    /// The number in the picture; -1 without one.
    std::int64_t number() const { return player->picture() ? numberOf(player->picture()->frame).value_or(-1) : -1; }
    bool showsDueFrame() const {
        return player->picture() && player->picture()->isDue &&
               std::abs(player->picture()->time.value - player->currentTime().value) < 1e-9;
    }
    bool waitForDueFrame() {
        return mailbox.runUntil([this] { return showsDueFrame() || player->status() == PlayerStatus::failed; });
    }
    bool seekAndWait(double time) {
        std::optional<bool> result;
        player->seek({time}, [&](bool finished) { result = finished; });
        return mailbox.runUntil([&] { return result.has_value(); }) && *result;
    }
    /// Starts play and runs until it moves.
    bool playAndWait(double rate) {
        player->play(rate);
        return mailbox.runUntil([this] { return player->rate() != 0; });
    }
    /// A refresh of the display, some time later.
    void tick(double seconds = 1.0 / 60) {
        clock.advance(seconds);
        player->update();
    }

    VirtualClock clock;
    Mailbox mailbox;
    ScriptedBackend backend;
    std::unique_ptr<PreviewPlayer> player;
};

} // namespace flowtide::test
