// Playing at every rate: how many refreshes of a 60 Hz display show the frame that is due, and what playing costs
// beside mpv.
#include "bench/live_player.h"
#include "bench/peer_process.h"
#include "bench/player_clips.h"

#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

namespace {

namespace bench = flowtide::bench;

constexpr double clipSeconds = 26; // three seconds at rate 8, and a little
constexpr double playSeconds = 3;
constexpr double costSeconds = 10;
constexpr int costRepetitions = 3;

std::int64_t frameAt(double seconds) {
    return static_cast<std::int64_t>(std::floor(seconds * bench::playedFrameRate + 1e-4));
}

/// Percent of the refreshes that showed the frame due.
double share(const std::string& clip, const std::string& proxy, double rate) {
    bench::LivePlayer live;
    auto& player = *live.player;
    player.setItem(bench::plainItem(*live.backend, clip, proxy, true));
    player.seek({rate > 0 ? 0.5 : clipSeconds - 0.5});
    live.refreshUntil(10, [&] { return player.picture() && player.picture()->isExact; });
    player.play(rate);
    live.refreshUntil(1, [&] { return player.rate() != 0; });
    int due = 0;
    int refreshes = 0;
    live.refreshFor(playSeconds, [&] {
        const auto& picture = *player.picture();
        // The picture's time is that of this refresh, not of an earlier one.
        const bool isNow = std::abs(picture.time.value - player.currentTime().value) < std::abs(rate) * 0.005;
        ++refreshes;
        due += isNow && frameAt(picture.fileTime) == frameAt(picture.time.value) ? 1 : 0;
    });
    return 100.0 * due / refreshes;
}

double ownCost(const std::string& clip) {
    const double before = bench::cpuSeconds();
    bench::LivePlayer live;
    live.player->setItem(bench::plainItem(*live.backend, clip, "", true));
    live.player->play(1);
    live.refreshUntil(1, [&] { return live.player->rate() != 0; });
    live.refreshFor(costSeconds);
    return bench::cpuSeconds() - before;
}

void compareCost(const std::string& clip) {
    const auto version = bench::runProcess({"mpv", "--version"});
    if (!version.succeeded) {
        std::printf("mpv is missing: no peer to compare the cost with (setup/packages-bench)\n");
        return;
    }
    std::printf("peer: %s\n", version.output.substr(0, version.output.find(" Copyright")).c_str());
    std::vector<double> ours;
    std::vector<double> peers;
    for (int i = 0; i < costRepetitions; ++i) {
        ours.push_back(ownCost(clip));
        peers.push_back(bench::runProcess({"mpv", "--no-config", "--hwdec=no", "--vo=null", "--ao=null",
                                           "--no-terminal", "--length=" + std::to_string(costSeconds), clip})
                            .cpuSeconds);
    }
    const double own = bench::median(ours);
    const double peer = bench::median(peers);
    std::printf("CPU for %.0f s at rate 1: %.2f s, mpv %.2f s, ratio %.2f (at most 1.1 wanted)\n", costSeconds, own,
                peer, own / peer);
}

} // namespace

int main() {
    const bench::ScratchFolder scratch;
    const std::string clip = bench::makePlayedClip(bench::longGroupClip(), clipSeconds, scratch);
    const std::string proxy = clip.empty() ? "" : bench::makeProxy(clip, scratch);
    if (proxy.empty()) {
        std::fputs("ffmpeg could not make the clips\n", stderr);
        return 1;
    }
    std::printf("refreshes that show the frame due, in %.0f s of 1080p%d H.264 (keyint 250); 100 %% wanted with a "
                "proxy\n",
                playSeconds, bench::playedFrameRate);
    std::printf("%6s %8s %8s\n", "rate", "proxy", "without");
    for (const double rate : {1.0, -1.0, 2.0, -2.0, 4.0, -4.0, 8.0, -8.0}) {
        std::printf("%6.0f %6.1f %% %6.1f %%\n", rate, share(clip, proxy, rate), share(clip, "", rate));
        std::fflush(stdout);
    }
    compareCost(clip);
    return 0;
}
