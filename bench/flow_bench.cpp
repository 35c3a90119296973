// Our in-between frames beside ffmpeg's minterpolate, a linear blend and repeated frames, on clips that are thinned so
// that the true frames are known, and on triplets.
#include "bench/flow_clips.h"
#include "bench/flow_cost.h"
#include "bench/flow_methods.h"
#include "bench/peer_process.h"
#include "bench/picture_quality.h"
#include "media/ffmpeg/ffmpeg_backend.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

namespace {

using namespace flowtide;
using bench::FlowTask;
using bench::InBetweens;
using bench::Quality;

constexpr const char* usage = R"(Usage: bench_flow [--folder FOLDER] [--pairs N] [--only TEXT] [--minterpolate MODE]
  --folder        the folder of clips
  --pairs         pairs of kept frames for each clip and factor, 8
  --only          clips and triplets whose names contain TEXT; "costs" for the costs at 1080p alone
  --minterpolate  the filter's arguments after its frame rate
)";

struct Options {
    std::filesystem::path folder = FLOWTIDE_CLIPS;
    int pairs = 8;
    std::string only;
    std::string peerMode = bench::bestPeerMode;
};

/// False when the arguments make no sense.
bool parse(const std::vector<std::string>& arguments, Options& options) {
    for (std::size_t i = 0; i + 1 < arguments.size(); i += 2) {
        const std::string& value = arguments[i + 1];
        if (arguments[i] == "--folder")
            options.folder = value;
        else if (arguments[i] == "--pairs")
            options.pairs = std::atoi(value.c_str());
        else if (arguments[i] == "--only")
            options.only = value;
        else if (arguments[i] == "--minterpolate")
            options.peerMode = value;
        else
            return false;
    }
    return arguments.size() % 2 == 0 && options.pairs > 0;
}

enum Method { ours, minterpolate, blend, repeat, methodCount };
constexpr std::array<const char*, methodCount> methodNames{"ours", "minterpolate", "blend", "repeat"};

struct Figures {
    Quality quality;
    double cpuSeconds = 0;

    void add(const Figures& other, double share) {
        quality.psnr += share * other.quality.psnr;
        quality.ssim += share * other.quality.ssim;
        quality.worstBlocks += share * other.quality.worstBlocks;
        cpuSeconds += share * other.cpuSeconds;
    }
};
using Row = std::array<Figures, methodCount>;

struct Result {
    std::string name;
    Row row;
};

/// Means over the frames. A frame that was not made counts as black, so that nobody gains by leaving one out.
Figures judged(const InBetweens& made, const std::vector<VideoFrame>& truth) {
    Figures figures;
    figures.cpuSeconds = made.cpuSeconds;
    const double share = 1 / static_cast<double>(truth.size());
    for (std::size_t i = 0; i < std::min(truth.size(), made.frames.size()); ++i)
        figures.add({bench::quality(made.frames[i], truth[i]), 0}, share);
    return figures;
}

Row measured(const FlowTask& task, const std::vector<VideoFrame>& truth, const std::string& peerMode) {
    Row row;
    row[ours] = judged(bench::ourFrames(task), truth);
    row[minterpolate] = judged(bench::minterpolated(task, peerMode).made, truth);
    row[blend] = judged(bench::blendedFrames(task), truth);
    row[repeat] = judged(bench::repeatedFrames(task), truth);
    return row;
}

void print(const std::string& title, const Row& row) {
    std::printf("%s\n", title.c_str());
    for (std::size_t method = 0; method < methodCount; ++method)
        std::printf("    %-14s %7.2f dB %8.4f %7.2f dB %9.4f s\n", methodNames[method], row[method].quality.psnr,
                    row[method].quality.ssim, row[method].quality.worstBlocks, row[method].cpuSeconds);
    std::fflush(stdout);
}

/// Thins by keeping every `step`th frame; nothing when the clip is too short for a single pair.
bool measureThinned(const std::vector<VideoFrame>& frames, int step, const Options& options, Row& row) {
    std::vector<VideoFrame> kept;
    std::vector<VideoFrame> truth;
    const auto every = static_cast<std::size_t>(step);
    const auto pairs = std::min(static_cast<std::size_t>(options.pairs), (frames.size() - 1) / every);
    if (frames.empty() || pairs == 0) return false;
    for (std::size_t i = 0; i < frames.size() && kept.size() < pairs + 2; ++i) {
        if (i % every == 0)
            kept.push_back(frames[i]);
        else if (i < pairs * every)
            truth.push_back(frames[i]);
    }
    row = measured({kept, static_cast<int>(pairs), step}, truth, options.peerMode);
    return true;
}

Row mean(const std::vector<Result>& results) {
    Row total{};
    for (const auto& result : results)
        for (std::size_t method = 0; method < methodCount; ++method)
            total[method].add(result.row[method], 1 / static_cast<double>(results.size()));
    return total;
}

void printVerdict(const std::string& group, const std::vector<Result>& results) {
    const Row row = mean(results);
    const Quality& own = row[ours].quality;
    const Quality& peer = row[minterpolate].quality;
    std::printf("  %-8s ours over minterpolate: %+.2f dB, SSIM %+.4f, worst blocks %+.2f dB, CPU x %.3f\n",
                group.c_str(), own.psnr - peer.psnr, own.ssim - peer.ssim, own.worstBlocks - peer.worstBlocks,
                row[ours].cpuSeconds / row[minterpolate].cpuSeconds);
    constexpr double tolerated = 0.3; // dB
    for (const auto& result : results)
        for (const auto rival : {minterpolate, blend}) {
            const double behind = result.row[rival].quality.psnr - result.row[ours].quality.psnr;
            if (behind > tolerated)
                std::printf("           behind %s by %.2f dB (%.2f against %.2f): %s\n", methodNames[rival], behind,
                            result.row[ours].quality.psnr, result.row[rival].quality.psnr, result.name.c_str());
        }
}

} // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    if (const auto status = bench::runAsMemoryProbe(arguments)) return *status;
    Options options;
    if (!parse(arguments, options)) {
        std::fputs(usage, stderr);
        return 1;
    }
    const auto backend = makeFFmpegBackend();
    const std::string version = bench::runProcess({"ffmpeg", "-version"}).output;
    std::printf("peer: minterpolate=%s of %s\n", options.peerMode.c_str(),
                version.substr(0, version.find(" Copyright")).c_str());
    std::printf("up to %d pairs a clip; luma PSNR, SSIM, PSNR of the worst 1 %% of 16x16 blocks, CPU a frame\n",
                options.pairs);

    std::map<std::string, std::vector<Result>> groups;
    for (const auto& [name, factors] : bench::flowClips()) {
        if (name.find(options.only) == std::string::npos || !std::filesystem::exists(options.folder / name)) continue;
        // One more pair than is measured, as context for the last.
        const int most = (options.pairs + 1) * *std::max_element(factors.begin(), factors.end()) + 1;
        const auto clip = bench::flowFrames(*backend, options.folder / name, static_cast<std::size_t>(most));
        for (const int step : factors) {
            Result result{name, {}};
            if (!measureThinned(clip.frames, step, options, result.row)) continue;
            const std::string group = std::to_string(step) + "x";
            print(group + " " + name +
                      (clip.duplicates > 0 ? ", " + std::to_string(clip.duplicates) + " repeated dropped" : ""),
                  result.row);
            groups[group].push_back(std::move(result));
        }
    }
    for (const auto& triplet : bench::flowTriplets(options.folder, options.only)) {
        const std::vector<VideoFrame> kept{triplet.first, triplet.second};
        Result result{triplet.name, measured({kept, 1, 2}, {triplet.middle}, options.peerMode)};
        print("triplet " + triplet.name, result.row);
        groups["triplets"].push_back(std::move(result));
    }

    std::printf("\n");
    for (const auto& [group, results] : groups)
        print("mean, " + group + ", " + std::to_string(results.size()) + " alike", mean(results));
    if (options.only.empty() || options.only == "costs") bench::printFlowCosts(*backend, options.folder);
    if (!groups.empty()) std::printf("\nverdict\n");
    for (const auto& [group, results] : groups)
        printVerdict(group, results);
    return 0;
}
