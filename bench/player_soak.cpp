// Uses a player at random for as long as it is told to, for the sanitizers to watch: seeks, rates, loops, changes of
// media, players that end in the middle of it. Fails on memory beyond the budget and on threads that are left behind.
#include "bench/live_player.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <optional>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace {

namespace bench = flowtide::bench;
using namespace flowtide;

constexpr const char* usage = R"(Usage: player_soak SECONDS CLIP...
  SECONDS  how long to play
  CLIP     clips to play; the proxy of CLIP is CLIP.proxy.mov, where there is such a file
)";

constexpr std::size_t cacheBytes = 96U << 20U;
// The frame at the playhead is kept whatever its size; another one is on its way out.
constexpr std::size_t largestFrameBytes = 40U << 20U;

std::size_t threadCount() {
    const std::filesystem::directory_iterator tasks("/proc/self/task");
    return static_cast<std::size_t>(std::distance(begin(tasks), end(tasks)));
}

class Soak {
public:
    explicit Soak(std::vector<std::string> clips)
        : clips_(std::move(clips)) {}

    bool run(double seconds) {
        std::thread([] {}).join(); // with the first one a sanitizer starts its own
        const std::size_t threads = threadCount();
        {
            const SteadyClock clock;
            const double end = clock.seconds() + seconds;
            while (clock.seconds() < end && isInsideBudget_)
                live(std::min(end, clock.seconds() + 5 + static_cast<double>(random_() % 20)));
        }
        const std::size_t left = threadCount();
        std::printf("%ld actions, %ld pictures, %ld failures reported; most cached %zu of %zu bytes; threads %zu, at "
                    "first %zu\n",
                    actions_, pictures_, failures_, mostCached_, cacheBytes, left, threads);
        return isInsideBudget_ && left <= threads;
    }

private:
    double share() { return static_cast<double>(random_() % 10'001) / 10'000; }

    /// One player's life.
    void live(double end) {
        bench::LivePlayer live(cacheBytes);
        PreviewPlayer& player = *live.player;
        player.onPicture = [&] { ++pictures_; };
        player.onStatus = [&] { failures_ += player.status() == PlayerStatus::failed ? 1 : 0; };
        player.onEnd = [&] { // loop
            const double rate = player.requestedRate();
            player.seek({share() * player.duration().value});
            player.play(rate == 0 ? 1 : rate);
        };
        change(live);
        while (live.clock.seconds() < end) {
            act(live);
            live.refreshFor(share() < 0.8 ? 0.02 : 0.5 * share());
            mostCached_ = std::max(mostCached_, player.cachedBytes());
            isInsideBudget_ = isInsideBudget_ && player.cachedBytes() <= cacheBytes + largestFrameBytes;
        }
    }

    void act(bench::LivePlayer& live) {
        PreviewPlayer& player = *live.player;
        ++actions_;
        switch (random_() % 12) {
        case 0:
            player.play(std::vector<double>{1, 2, 4, 8, 0.25, -0.5, -1, -2, -8}[random_() % 9]);
            break;
        case 1:
            player.pause();
            break;
        case 2:
            if (share() < 0.3) change(live);
            break;
        case 3:
            if (share() < 0.05) player.setItem(nullptr);
            break;
        default:
            player.seek({share() * player.duration().value}, [this](bool) { ++finished_; });
        }
    }

    /// Another clip, or the same one with another curve.
    void change(bench::LivePlayer& live) {
        const std::string& path = clips_[random_() % clips_.size()];
        const std::string proxy = path + ".proxy.mov";
        try {
            const bool hasProxy = share() < 0.5 && std::filesystem::exists(proxy);
            auto item = std::make_shared<PlaybackItem>(
                *bench::plainItem(*live.backend, path, hasProxy ? proxy : "", share() < 0.7));
            retime(*item);
            live.player->setItem(item);
        } catch (const std::exception& error) {
            std::fprintf(stderr, "%s: %s\n", path.c_str(), error.what());
        }
    }

    /// Cuts the clip into stretches of different speeds.
    void retime(PlaybackItem& item) {
        const std::int64_t length = item.media.asset.video.front().sourceEnd.ticks;
        const std::int64_t step = std::max<std::int64_t>(length / 40, 1);
        CompositionTrack track;
        std::vector<TimeMap::Entry> entries{{0, 0}};
        CompositionTime output;
        for (std::int64_t start = 0; start < length; start += step) {
            const CompositionTime end{std::min(start + step, length)};
            const double speed = 0.25 + 4 * share();
            const auto ticks = static_cast<std::int64_t>(static_cast<double>(end.ticks - start) / speed) + 1;
            const CompositionTime next{output.ticks + ticks};
            track.push_back({0, {start}, end, output, next});
            entries.push_back({end.seconds(), next.seconds()});
            output = next;
        }
        item.media.timeMap = TimeMap(std::move(entries), {0, CompositionTime{length}.seconds()}, output.seconds());
        item.media.asset.video = std::move(track);
    }

    std::vector<std::string> clips_;
    std::mt19937 random_{20};
    long actions_ = 0;
    long pictures_ = 0;
    long finished_ = 0;
    long failures_ = 0;
    std::size_t mostCached_ = 0;
    bool isInsideBudget_ = true;
};

} // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    const double seconds = arguments.size() > 1 ? std::atof(arguments[0].c_str()) : 0;
    if (!(seconds > 0)) {
        std::fputs(usage, stderr);
        return 1;
    }
    return Soak({arguments.begin() + 1, arguments.end()}).run(seconds) ? 0 : 1;
}
