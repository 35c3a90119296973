// Proxies beside the ffmpeg tool making the same ones (encoder, settings, size and threads), in turn in one run; and
// what a preview's composition costs to build.
#include "bench/peer_process.h"
#include "bench/scratch_folder.h"
#include "media/ffmpeg/ffmpeg_backend.h"
#include "media/preview/proxy_plan.h"
#include "media/preview/retimed_composition_engine.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace {

using flowtide::ImportedClip;
using flowtide::bench::median;
using flowtide::bench::ProcessCost;
using flowtide::bench::runProcess;
using flowtide::bench::ScratchFolder;

constexpr int repetitions = 3;

// 1080p H.264, 4K H.264 with sound, 1080p 10-bit HEVC with sound.
constexpr const char* clips[] = {"diabolo_h264_1080p_80fps_untagged_noaudio.mp4",
                                 "pixel_h264_4k60_full_rot_aac_18f.mp4",
                                 "iphone_hevc10_hlg_1080p30_rot_vfr_editlist.mp4"};

std::vector<std::string> peerCommand(const ImportedClip& clip, const std::string& output) {
    const auto& video = flowtide::planProxy(clip).video;
    return {
        "ffmpeg",     "-y",
        "-nostdin",   "-noautorotate",
        "-i",         clip.url.string(),
        "-map",       "0:v:0",
        "-map",       "0:a:0?",
        "-vf",        "scale=" + std::to_string(video.width) + ":" + std::to_string(video.height) + ",format=yuv420p",
        "-vsync",     "passthrough",
        "-c:v",       "libx264",
        "-preset",    "superfast",
        "-tune",      "fastdecode",
        "-profile:v", "high",
        "-g",         "1",
        "-slices",    "4",
        "-b:v",       std::to_string(*video.averageBitRate),
        "-c:a",       "aac",
        "-b:a",       "160k",
        output};
}

double middle(const std::vector<ProcessCost>& costs, double ProcessCost::*field) {
    std::vector<double> values;
    for (const auto& cost : costs)
        values.push_back(cost.*field);
    return median(values);
}

bool measureProxy(const std::string& path, const ScratchFolder& scratch) {
    const auto backend = flowtide::makeFFmpegBackend();
    const ImportedClip clip = ImportedClip::load(*backend, path);
    std::vector<ProcessCost> ours;
    std::vector<ProcessCost> peers;
    for (int i = 0; i < repetitions; ++i) {
        ours.push_back(runProcess({FLOWTIDE_PROGRAM, "--headless-proxy", path}));
        peers.push_back(runProcess(peerCommand(clip, scratch / "peer.mov")));
        for (const auto& entry : std::filesystem::directory_iterator(scratch / ""))
            std::filesystem::remove(entry.path());
        if (!ours.back().succeeded || !peers.back().succeeded) {
            std::fprintf(stderr, "a run failed\n%s\n", ours.back().output.c_str());
            return false;
        }
    }
    const double wall = middle(ours, &ProcessCost::wallSeconds);
    const double cpu = middle(ours, &ProcessCost::cpuSeconds);
    const double peerWall = middle(peers, &ProcessCost::wallSeconds);
    const double peerCpu = middle(peers, &ProcessCost::cpuSeconds);
    std::printf("%-48s %7.2f %7.2f %6.3f   %7.2f %7.2f %6.3f   %5.0f %5.0f\n", clip.url.filename().c_str(), wall,
                peerWall, wall / peerWall, cpu, peerCpu, cpu / peerCpu, middle(ours, &ProcessCost::peakMegabytes),
                middle(peers, &ProcessCost::peakMegabytes));
    std::fflush(stdout);
    return true;
}

/// An hour of 60 fps with a point every ten seconds.
void measureComposition() {
    auto clip = std::make_shared<ImportedClip>();
    clip->duration = 3600;
    clip->frameRate = 60;
    clip->video.encodedWidth = 1920;
    clip->video.encodedHeight = 1080;
    flowtide::RetimedCompositionRequest request;
    request.clip = clip;
    for (int i = 0; i < 360; ++i)
        request.keyframes.push_back({{}, 10.0 * i, i % 2 ? 0.25 : 2.0, flowtide::SpeedKeyframeRole::curve});
    std::vector<double> perSegment;
    std::vector<double> perLookup;
    std::size_t segments = 0;
    for (int i = 0; i < repetitions; ++i) {
        using Clock = std::chrono::steady_clock;
        const auto start = Clock::now();
        const auto media = flowtide::RetimedCompositionEngine::build(request);
        const auto built = Clock::now();
        segments = media.asset.video.size();
        double sum = 0;
        constexpr int lookups = 100'000;
        const double duration = media.asset.duration().value;
        for (int n = 0; n < lookups; ++n)
            sum += media.asset.videoAt({duration * n / lookups})->fileSeconds;
        const auto looked = Clock::now();
        if (!(sum > 0)) std::abort(); // keeps the loop
        perSegment.push_back(std::chrono::duration<double, std::micro>(built - start).count() /
                             static_cast<double>(segments));
        perLookup.push_back(std::chrono::duration<double, std::micro>(looked - built).count() / lookups);
    }
    std::printf("composition of %zu segments: %.3f µs a segment (at most 1 wanted), %.3f µs a lookup\n", segments,
                median(perSegment), median(perLookup));
}

} // namespace

int main(int argc, char** argv) {
    try {
        const ScratchFolder scratch;
        ::setenv("TMPDIR", (scratch / "").c_str(), 1);
        measureComposition();
        std::printf("\nproxies, medians of %d runs; at most 1.05 of the peer's time wanted\n", repetitions);
        std::printf("%-48s %7s %7s %6s   %7s %7s %6s   %5s %5s\n", "", "wall s", "ffmpeg", "ratio", "CPU s", "ffmpeg",
                    "ratio", "MB", "ffmpeg");
        if (argc > 1) {
            for (int i = 1; i < argc; ++i)
                if (!measureProxy(argv[i], scratch)) return 1;
            return 0;
        }
        const std::filesystem::path footage(FLOWTIDE_CLIPS);
        if (!std::filesystem::exists(footage)) {
            std::printf("No footage in %s\n", footage.c_str());
            return 0;
        }
        for (const char* clip : clips)
            if (!measureProxy(footage / "camera" / clip, scratch)) return 1;
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
