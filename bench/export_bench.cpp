// Our export beside the ffmpeg tool: same input, number of output frames, encoder, preset, bitrate and threads, in
// turn in one run. Usage: bench_export [1080p clip]
#include "bench/peer_process.h"

#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

namespace {

using flowtide::bench::median;
using flowtide::bench::ProcessCost;
using flowtide::bench::runProcess;

constexpr int repetitions = 3;
constexpr int inputFrames = 150;

struct Scratch {
    std::filesystem::path folder =
        std::filesystem::temp_directory_path() / ("flowtide-bench-" + std::to_string(::getpid()));
    Scratch() { std::filesystem::create_directories(folder); }
    ~Scratch() {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }
    std::string operator/(const std::string& name) const { return (folder / name).string(); }
};

/// The bitrate that an export chose, from its log.
std::string chosenBitRate(const std::string& log) {
    const std::string label = "[Export] Video bitrate: ";
    const auto start = log.find(label);
    if (start == std::string::npos) return {};
    const auto digits = start + label.size();
    return log.substr(digits, log.find("bps", digits) - digits);
}

bool makeInput(const std::string& clip, const std::string& encoder, const std::string& path) {
    std::vector<std::string> words{"ffmpeg", "-y"};
    if (clip.empty())
        words.insert(words.end(), {"-f", "lavfi", "-i", "testsrc2=s=1920x1080:r=30"});
    else
        words.insert(words.end(), {"-stream_loop", "-1", "-r", "30", "-i", clip});
    words.insert(words.end(), {"-an", "-c:v", encoder, "-preset", "fast", "-b:v", "8M", "-pix_fmt", "yuv420p",
                               "-frames:v", std::to_string(inputFrames)});
    if (encoder == "libx265") words.insert(words.end(), {"-tag:v", "hvc1"});
    words.push_back(path);
    return runProcess(words).succeeded;
}

void printRow(const char* name, const std::vector<ProcessCost>& ours, const std::vector<ProcessCost>& peers) {
    const auto middle = [](const std::vector<ProcessCost>& costs, double ProcessCost::*field) {
        std::vector<double> values;
        for (const auto& cost : costs)
            values.push_back(cost.*field);
        return median(values);
    };
    const double wall = middle(ours, &ProcessCost::wallSeconds);
    const double cpu = middle(ours, &ProcessCost::cpuSeconds);
    const double peerWall = middle(peers, &ProcessCost::wallSeconds);
    const double peerCpu = middle(peers, &ProcessCost::cpuSeconds);
    std::printf("%-22s %8.2f %8.2f %6.3f   %8.2f %8.2f %6.3f   %6.0f %6.0f\n", name, wall, peerWall, wall / peerWall,
                cpu, peerCpu, cpu / peerCpu, middle(ours, &ProcessCost::peakMegabytes),
                middle(peers, &ProcessCost::peakMegabytes));
    std::fflush(stdout);
}

} // namespace

int main(int argc, char** argv) {
    const Scratch scratch;
    std::string clip = argc > 1 ? argv[1] : FLOWTIDE_BENCH_CLIP;
    if (!std::filesystem::exists(clip)) clip.clear();
    const std::string version = runProcess({"ffmpeg", "-version"}).output;
    std::printf("peer: %s\n", version.substr(0, version.find(" Copyright")).c_str());
    std::printf("input: 1080p30, %d frames from %s; medians of %d, run in turn\n", inputFrames,
                clip.empty() ? "testsrc2" : clip.c_str(), repetitions);
    std::printf("%-22s %8s %8s %6s   %8s %8s %6s   %6s %6s\n", "", "wall s", "ffmpeg", "ratio", "CPU s", "ffmpeg",
                "ratio", "MB", "ffmpeg");

    for (const std::string encoder : {"libx264", "libx265"}) {
        const std::string input = scratch / (encoder + ".mp4");
        if (!makeInput(clip, encoder, input)) {
            std::fprintf(stderr, "the input could not be made with %s\n", encoder.c_str());
            return 1;
        }
        for (const std::string speed : {"1", "0.5"}) {
            std::vector<ProcessCost> ours;
            std::vector<ProcessCost> peers;
            for (int i = 0; i < repetitions; ++i) {
                ours.push_back(runProcess({FLOWTIDE_PROGRAM, "--headless-export", input, scratch / "ours.mp4",
                                           "0:" + speed + ",999:" + speed}));
                std::vector<std::string> peer{"ffmpeg", "-y", "-i", input};
                if (speed != "1") peer.insert(peer.end(), {"-vf", "setpts=PTS/" + speed, "-r", "30"});
                peer.insert(peer.end(), {"-c:v", encoder, "-preset", "fast", "-b:v", chosenBitRate(ours.back().output),
                                         scratch / "peer.mp4"});
                peers.push_back(runProcess(peer));
                if (!ours.back().succeeded || !peers.back().succeeded) {
                    std::fprintf(stderr, "a run failed\n%s\n", ours.back().output.c_str());
                    return 1;
                }
            }
            printRow((encoder + " at speed " + speed).c_str(), ours, peers);
        }
    }
    return 0;
}
