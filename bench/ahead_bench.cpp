// How long the preview takes to follow the user: from the last edit of a burst until the new curve plays, and from
// coming to rest until the in-between frame of the export is there. On a 1080p clip, with the engines of the window.
#include "bench/player_clips.h"
#include "tests/support/engine_stage.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <string>
#include <vector>

namespace {

using namespace flowtide;

constexpr double clipSeconds = 6;
constexpr double goalMilliseconds = 250; ///< of coming to rest
constexpr int rounds = 25;

void print(const char* what, std::vector<double> seconds) {
    std::sort(seconds.begin(), seconds.end());
    const auto at = [&](double share) {
        return seconds[static_cast<std::size_t>(share * static_cast<double>(seconds.size() - 1) + 0.5)] * 1000;
    };
    std::printf("  %-34s p50 %6.0f ms, p95 %6.0f ms\n", what, at(0.5), at(0.95));
}

SpeedKeyframe point(double time, double speed) {
    return {Uuid::random(), time, speed, SpeedKeyframeRole::curve};
}

bool measure(const std::string& path) {
    test::EngineStage stage;
    auto& model = *stage.model;
    model.importClip(path);
    if (!stage.runUntil([&] { return model.clip() && model.binding().projectSaveMessage() == "Saved"; })) return false;
    const auto curve = [](double speed) {
        return SpeedKeyframes{point(0, 1), point(1, speed), point(clipSeconds - 1, speed), point(clipSeconds, 1)};
    };
    // Places that a generator of small numbers spreads over the slow part.
    const auto place = [](int round) { return 0.1 + 0.8 * (round * 37 % rounds) / rounds; };

    std::vector<double> edits, rests;
    for (int round = 0; round < rounds; ++round) {
        model.scrub(place(round));
        model.beginCurveEdit();
        for (int step = 0; step < 10; ++step)
            model.replaceKeyframes(curve(0.2 + 0.001 * (10 * round + step)));
        model.endCurveEdit();
        const double start = stage.loop.now();
        model.startPlayback(1);
        const auto plays = [&] {
            const auto& picture = stage.player.picture();
            return model.transport().isPlaying() && stage.player.rate() != 0 && picture && picture->isDue;
        };
        const auto hasFailed = [&] { return stage.player.status() == PlayerStatus::failed; };
        if (!stage.runUntil([&] { return plays() || hasFailed(); }) || hasFailed()) {
            std::printf("  the player failed at %.3f s: %s\n", model.playheadSeconds(), stage.player.failure().c_str());
            return false;
        }
        edits.push_back(stage.loop.now() - start);
        model.pausePlayback();
    }
    model.setRestPictureSize({1920, 1080});
    for (int round = 0; round < rounds; ++round) {
        model.scrub(place(round));
        const double start = stage.loop.now();
        const double wanted = model.playheadSeconds();
        const double frame = model.clip()->frameDuration.seconds();
        const auto isThere = [&] {
            const auto& picture = model.restFrame().restPicture();
            return picture && picture->sourceTime.value <= wanted && picture->sourceTime.value > wanted - frame;
        };
        if (!stage.runUntil(isThere)) return false;
        rests.push_back(stage.loop.now() - start);
    }
    print("last edit to playing", edits);
    print("at rest to the export's frame", rests);
    return true;
}

} // namespace

int main() {
    const bench::ScratchFolder scratch;
    std::printf("goal of coming to rest: %.0f ms, %.0f of them spent on waiting whether it is one\n", goalMilliseconds,
                RestFrame::restDelaySeconds * 1000);
    for (const auto& clip : {bench::phoneClip(), bench::longGroupClip(), bench::proResClip()}) {
        std::printf("%s\n", clip.name.c_str());
        const std::string path = bench::makePlayedClip(clip, clipSeconds, scratch);
        if (path.empty() || !measure(path)) {
            std::printf("  could not be measured\n");
            return 1;
        }
    }
}
