// Dragging through a clip: 540 seeks at 60 a second, back and forth. The limits are the display's: a request shown
// within one refresh with a proxy; without one a moving picture, and the exact frame soon after the hand rests.
#include "bench/live_player.h"
#include "bench/peer_process.h"
#include "bench/player_clips.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numbers>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace {

namespace bench = flowtide::bench;

constexpr double clipSeconds = 20;
constexpr int seekCount = 540;
constexpr int seeksPerSweep = 360; // there and back in six seconds
constexpr double longestGapMilliseconds = 50;
constexpr double longestSettleMilliseconds = 700;
constexpr double proxyLimitMilliseconds = 5;

struct Scrub {
    std::vector<double> milliseconds; ///< from each request that was shown to its picture
    int shown = 0;                    ///< requests whose frame was shown before the next one
    double longestGap = 0;            ///< milliseconds without another picture while the one asked for is missing
    double settle = 0;                ///< milliseconds from the last request to the exact frame; of the source itself
    bool exact = false;               ///< that frame is the one asked for
};

double percentile(std::vector<double> values, double share) {
    if (values.empty()) return 0;
    std::ranges::sort(values);
    return values[static_cast<std::size_t>(share * static_cast<double>(values.size() - 1))];
}

std::int64_t frameAt(double seconds) {
    return static_cast<std::int64_t>(std::floor(seconds * bench::playedFrameRate + 1e-4));
}

Scrub scrub(const std::string& clip, const std::string& proxy) {
    bench::LivePlayer live;
    auto& player = *live.player;
    player.setItem(bench::plainItem(*live.backend, clip, proxy, false));
    live.refreshUntil(10, [&] { return player.picture() && player.picture()->isExact; });

    Scrub result;
    double asked = 0;
    double askedAt = 0;
    double shown = player.picture()->fileTime;
    std::optional<double> missingSince;
    const auto look = [&] {
        const double now = live.clock.seconds();
        const bool changed = std::exchange(shown, player.picture()->fileTime) != player.picture()->fileTime;
        if (missingSince) result.longestGap = std::max(result.longestGap, 1000 * (now - *missingSince));
        if (frameAt(shown) == frameAt(asked))
            missingSince.reset();
        else if (changed || !missingSince)
            missingSince = now;
    };
    player.onPicture = look;
    const double begin = live.clock.seconds();
    for (int i = 0; i < seekCount; ++i) {
        const double phase = 2 * std::numbers::pi * (i + 1) / seeksPerSweep;
        asked = (clipSeconds - 0.1) * (0.5 - 0.5 * std::cos(phase));
        askedAt = live.clock.seconds();
        player.seek({asked}, [&](bool finished) {
            if (!finished) return;
            result.milliseconds.push_back(1000 * (live.clock.seconds() - askedAt));
            ++result.shown;
        });
        look();
        live.loop.runUntil(live.clock, begin + (i + 1) * bench::refreshSeconds);
        player.update();
    }
    const double rested = askedAt;
    const bool settled = live.refreshUntil(10, [&] { return player.picture()->isExact; });
    result.settle = 1000 * (live.clock.seconds() - rested);
    result.exact = settled && frameAt(player.picture()->fileTime) == frameAt(asked);
    return result;
}

bool measure(const bench::PlayedClip& kind, const bench::ScratchFolder& scratch, bool withProxy) {
    const std::string clip = bench::makePlayedClip(kind, clipSeconds, scratch);
    const std::string proxy = withProxy && !clip.empty() ? bench::makeProxy(clip, scratch) : "";
    if (clip.empty() || (withProxy && proxy.empty())) {
        std::fprintf(stderr, "ffmpeg could not make %s\n", kind.name.c_str());
        return false;
    }
    for (const bool proxied : {false, true}) {
        if (proxied && !withProxy) continue;
        const Scrub result = scrub(clip, proxied ? proxy : "");
        std::printf("%-24s %-6s %5.1f %%  %7.2f %7.2f   %7.1f %8.1f  %s\n", kind.name.c_str(), proxied ? "proxy" : "",
                    100.0 * result.shown / seekCount, percentile(result.milliseconds, 0.5),
                    percentile(result.milliseconds, 0.95), result.longestGap, result.settle,
                    result.exact ? "exact" : "NOT EXACT");
        std::fflush(stdout);
    }
    return true;
}

} // namespace

int main() {
    const bench::ScratchFolder scratch;
    std::printf("%d seeks at 60 a second through %.0f s of 1080p%d; wanted: with a proxy 100 %% shown, p95 under %.0f "
                "ms; without, a picture every %.0f ms and the exact frame within %.0f ms\n",
                seekCount, clipSeconds, bench::playedFrameRate, proxyLimitMilliseconds, longestGapMilliseconds,
                longestSettleMilliseconds);
    std::printf("%-24s %-6s %7s  %7s %7s   %7s %8s\n", "", "", "shown", "p50 ms", "p95 ms", "gap ms", "settle");
    const bool made = measure(bench::longGroupClip(), scratch, true) && measure(bench::proResClip(), scratch, false) &&
                      measure(bench::hevcClip(), scratch, true);
    return made ? 0 : 1;
}
