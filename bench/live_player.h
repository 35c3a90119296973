// A player in real time, with a display that refreshes 60 times a second, for benchmarks and the soak.
#pragma once

#include "media/ffmpeg/ffmpeg_backend.h"
#include "media/player/preview_player.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

namespace flowtide::bench {

constexpr double refreshSeconds = 1.0 / 60;

/// The owner's thread of a player: runs what is brought to it.
class OwnerLoop {
public:
    void post(std::function<void()> call) {
        {
            const std::scoped_lock guard(lock_);
            calls_.push_back(std::move(call));
        }
        arrived_.notify_one();
    }
    /// Runs what comes until a moment of the clock.
    void runUntil(const PlaybackClock& clock, double seconds) {
        for (;;) {
            std::function<void()> call;
            {
                std::unique_lock guard(lock_);
                const std::chrono::duration<double> left(seconds - clock.seconds());
                if (left.count() <= 0) return;
                if (!arrived_.wait_for(guard, left, [this] { return !calls_.empty(); })) return;
                call = std::move(calls_.front());
                calls_.pop_front();
            }
            call();
        }
    }

private:
    std::mutex lock_; ///< guards the calls
    std::condition_variable arrived_;
    std::deque<std::function<void()>> calls_;
};

/// A whole clip at its own speed, with its sound where `withSound` says so and a proxy where a path is given.
inline std::shared_ptr<const PlaybackItem> plainItem(const MediaBackend& backend, const std::string& path,
                                                     const std::string& proxy, bool withSound) {
    auto item = std::make_shared<PlaybackItem>();
    const auto clip = std::make_shared<const ImportedClip>(ImportedClip::load(backend, path));
    const auto ticks = CompositionTime::nearest(clip->duration).value_or(CompositionTime{});
    item->media.asset.media.push_back({path, 0, clip});
    item->media.asset.video.push_back({0, {}, ticks, {}, ticks});
    const double duration = ticks.seconds();
    item->media.timeMap = TimeMap({{0, 0}, {duration, duration}}, {0, duration}, duration);
    if (!proxy.empty())
        item->proxy = {proxy, 0, std::make_shared<const ImportedClip>(ImportedClip::load(backend, proxy))};
    if (withSound && clip->hasAudio())
        item->sound = std::make_shared<const AudioData>(AudioDecoding::readAll(backend, *clip, {0, clip->duration}));
    return item;
}

struct LivePlayer {
    explicit LivePlayer(std::size_t cacheBytes = PlayerPlatform{}.cacheBytes)
        : player(std::make_unique<PreviewPlayer>(
              PlayerPlatform{backend.get(),
                             &clock,
                             [this](std::function<void()> call) { loop.post(std::move(call)); },
                             {},
                             cacheBytes})) {}

    /// Refreshes the display for some time, calling `each` after each refresh.
    void refreshFor(double seconds, const std::function<void()>& each = {}) {
        const double begin = clock.seconds();
        const int count = static_cast<int>(seconds / refreshSeconds + 0.5);
        for (int i = 1; i <= count; ++i) {
            loop.runUntil(clock, begin + i * refreshSeconds);
            player->update();
            if (each) each();
        }
    }
    /// Refreshes until a condition holds; false when it does not within `seconds`.
    bool refreshUntil(double seconds, const std::function<bool()>& holds) {
        const double begin = clock.seconds();
        while (!holds()) {
            if (clock.seconds() - begin > seconds) return false;
            loop.runUntil(clock, clock.seconds() + refreshSeconds);
            player->update();
        }
        return true;
    }

    std::unique_ptr<MediaBackend> backend = makeFFmpegBackend();
    SteadyClock clock;
    OwnerLoop loop;
    std::unique_ptr<PreviewPlayer> player;
};

} // namespace flowtide::bench
