// Our export beside the ffmpeg tool: same input, number of output frames, encoder, preset, bitrate and threads, in
// turn in one run.
#include "bench/flow_methods.h"
#include "bench/peer_process.h"
#include "bench/scratch_folder.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

namespace {

namespace bench = flowtide::bench;
using flowtide::bench::median;
using flowtide::bench::ProcessCost;
using flowtide::bench::runProcess;

constexpr const char* usage = R"(Usage: bench_export [--clip CLIP] [--only TEXT]
  --clip  a 1080p clip
  --only  the rows whose names contain TEXT, such as "in-between"
)";

constexpr int repetitions = 3;
constexpr int inputFrames = 150;
// In-between frames cost the peer most of a second each.
constexpr int slowInputFrames = 40;
constexpr int slowOutputFrames = 4 * slowInputFrames;

struct Options {
    std::string clip = FLOWTIDE_BENCH_CLIP;
    std::string only;

    bool wants(const std::string& row) const { return row.find(only) != std::string::npos; }
};

/// False when the arguments make no sense.
bool parse(const std::vector<std::string>& arguments, Options& options) {
    for (std::size_t i = 0; i + 1 < arguments.size(); i += 2) {
        if (arguments[i] == "--clip")
            options.clip = arguments[i + 1];
        else if (arguments[i] == "--only")
            options.only = arguments[i + 1];
        else
            return false;
    }
    return arguments.size() % 2 == 0;
}

/// The bitrate that an export chose, from its log.
std::string chosenBitRate(const std::string& log) {
    const std::string label = "[Export] Video bitrate: ";
    const auto start = log.find(label);
    if (start == std::string::npos) return {};
    const auto digits = start + label.size();
    return log.substr(digits, log.find("bps", digits) - digits);
}

bool makeInput(const std::string& clip, const std::string& encoder, int frames, const std::string& path) {
    std::vector<std::string> words{"ffmpeg", "-y"};
    if (clip.empty())
        words.insert(words.end(), {"-f", "lavfi", "-i", "testsrc2=s=1920x1080:r=30"});
    else
        words.insert(words.end(), {"-stream_loop", "-1", "-r", "30", "-i", clip});
    words.insert(words.end(), {"-an", "-c:v", encoder, "-preset", "fast", "-b:v", "8M", "-pix_fmt", "yuv420p",
                               "-frames:v", std::to_string(frames)});
    if (encoder == "libx265") words.insert(words.end(), {"-tag:v", "hvc1"});
    words.push_back(path);
    return runProcess(words).succeeded;
}

double middle(const std::vector<ProcessCost>& costs, double ProcessCost::*field) {
    std::vector<double> values;
    for (const auto& cost : costs)
        values.push_back(cost.*field);
    return median(values);
}

void printRow(const char* name, const std::vector<ProcessCost>& ours, const std::vector<ProcessCost>& peers) {
    const double wall = middle(ours, &ProcessCost::wallSeconds);
    const double cpu = middle(ours, &ProcessCost::cpuSeconds);
    const double peerWall = middle(peers, &ProcessCost::wallSeconds);
    const double peerCpu = middle(peers, &ProcessCost::cpuSeconds);
    std::printf("%-22s %8.2f %8.2f %6.3f   %8.2f %8.2f %6.3f   %6.0f %6.0f\n", name, wall, peerWall, wall / peerWall,
                cpu, peerCpu, cpu / peerCpu, middle(ours, &ProcessCost::peakMegabytes),
                middle(peers, &ProcessCost::peakMegabytes));
    std::fflush(stdout);
}

/// How well our runs kept the cores busy. On a machine that does something else, wall time says little about that.
void printUse(const std::vector<ProcessCost>& ours) {
    const unsigned cores = std::max(std::thread::hardware_concurrency(), 1U);
    std::vector<double> shares;
    std::vector<double> taken;
    for (const auto& cost : ours) {
        const double available = cost.wallSeconds * cores;
        shares.push_back(available / cost.cpuSeconds);
        taken.push_back(100 * std::max(available - cost.cpuSeconds - cost.idleSeconds, 0.0) / available);
    }
    std::printf(
        "    our wall time over CPU time by %u cores: %.2f (at most 1.15 wanted); other programs took %.0f %% of "
        "the cores meanwhile\n",
        cores, median(shares), median(taken));
}

/// Frames in a movie.
int frameCount(const std::string& path) {
    return std::atoi(runProcess({"ffprobe", "-v", "error", "-select_streams", "v:0", "-count_packets", "-show_entries",
                                 "stream=nb_read_packets", "-of", "csv=p=0", path})
                         .output.c_str());
}

/// Runs both in turn; the peer's command gets the bitrate that ours chose. The peer is left out after `peerRuns`.
template <typename PeerCommand>
bool measureInTurn(const char* name, const std::vector<std::string>& own, int peerRuns, const PeerCommand& peerCommand,
                   std::vector<ProcessCost>& ours, std::vector<ProcessCost>& peers) {
    for (int i = 0; i < repetitions; ++i) {
        ours.push_back(runProcess(own));
        if (i < peerRuns) peers.push_back(runProcess(peerCommand(chosenBitRate(ours.back().output))));
        if (!ours.back().succeeded || !peers.back().succeeded) {
            std::fprintf(stderr, "a run failed\n%s\n", ours.back().output.c_str());
            return false;
        }
    }
    printRow(name, ours, peers);
    return true;
}

/// Exports with the picture as it is, or with frames repeated.
bool measureRepeating(const Options& options, const std::string& encoder, const bench::ScratchFolder& scratch) {
    const std::string input = scratch / (encoder + ".mp4");
    for (const std::string speed : {"1", "0.5"}) {
        const std::string name = encoder + " at speed " + speed;
        if (!options.wants(name)) continue;
        if (!std::filesystem::exists(input) && !makeInput(options.clip, encoder, inputFrames, input)) return false;
        std::vector<ProcessCost> ours;
        std::vector<ProcessCost> peers;
        const auto peerCommand = [&](const std::string& bitRate) {
            std::vector<std::string> words{"ffmpeg", "-y", "-i", input};
            if (speed != "1") words.insert(words.end(), {"-vf", "setpts=PTS/" + speed, "-r", "30"});
            words.insert(words.end(), {"-c:v", encoder, "-preset", "fast", "-b:v", bitRate, scratch / "peer.mp4"});
            return words;
        };
        if (!measureInTurn(
                name.c_str(),
                {FLOWTIDE_PROGRAM, "--headless-export", input, scratch / "ours.mp4", "0:" + speed + ",999:" + speed},
                repetitions, peerCommand, ours, peers))
            return false;
    }
    return true;
}

/// Exports at quarter speed with frames in between.
bool measureInBetween(const Options& options, const std::string& encoder, const bench::ScratchFolder& scratch) {
    const std::string name = encoder + " in-between 0.25";
    if (!options.wants(name)) return true;
    const std::string input = scratch / (encoder + "-short.mp4");
    if (!makeInput(options.clip, encoder, slowInputFrames, input)) return false;
    std::vector<ProcessCost> ours;
    std::vector<ProcessCost> peers;
    const auto peerCommand = [&](const std::string& bitRate) {
        // The filter holds back its last pair; copies of the last frame push it out and fill up the length.
        const std::string filter = "setpts=PTS/0.25,tpad=stop_mode=clone:stop=3,minterpolate=fps=30:";
        return std::vector<std::string>{"ffmpeg",
                                        "-y",
                                        "-i",
                                        input,
                                        "-vf",
                                        filter + bench::bestPeerMode + ",format=yuv420p",
                                        "-frames:v",
                                        std::to_string(slowOutputFrames),
                                        "-c:v",
                                        encoder,
                                        "-preset",
                                        "fast",
                                        "-b:v",
                                        bitRate,
                                        scratch / "peer.mp4"};
    };
    // One run of the peer takes a minute and a half; its time hardly varies.
    if (!measureInTurn(name.c_str(),
                       {FLOWTIDE_PROGRAM, "--headless-export", input, scratch / "ours.mp4", "0:0.25,999:0.25",
                        "--interpolation", "optical-flow"},
                       1, peerCommand, ours, peers))
        return false;
    std::printf("    %d frames, ffmpeg %d with minterpolate=%s\n", frameCount(scratch / "ours.mp4"),
                frameCount(scratch / "peer.mp4"), bench::bestPeerMode);
    printUse(ours);
    std::fflush(stdout);
    return true;
}

} // namespace

int main(int argc, char** argv) {
    Options options;
    if (!parse({argv + 1, argv + argc}, options)) {
        std::fputs(usage, stderr);
        return 1;
    }
    const bench::ScratchFolder scratch;
    if (!std::filesystem::exists(options.clip)) options.clip.clear();
    const std::string version = runProcess({"ffmpeg", "-version"}).output;
    std::printf("peer: %s\n", version.substr(0, version.find(" Copyright")).c_str());
    std::printf("input: 1080p30, %d frames from %s; medians of %d, run in turn\n", inputFrames,
                options.clip.empty() ? "testsrc2" : options.clip.c_str(), repetitions);
    std::printf("%-22s %8s %8s %6s   %8s %8s %6s   %6s %6s\n", "", "wall s", "ffmpeg", "ratio", "CPU s", "ffmpeg",
                "ratio", "MB", "ffmpeg");

    for (const std::string encoder : {"libx264", "libx265"})
        if (!measureRepeating(options, encoder, scratch) || !measureInBetween(options, encoder, scratch)) {
            std::fprintf(stderr, "stopped at %s\n", encoder.c_str());
            return 1;
        }
    return 0;
}
