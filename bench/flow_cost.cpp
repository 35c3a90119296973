// CPU time by the number of frames made of a pair, and peak memory of child processes.
#include "bench/flow_cost.h"

#include "bench/flow_clips.h"
#include "bench/flow_methods.h"
#include "bench/peer_process.h"
#include "bench/scratch_folder.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>

namespace flowtide::bench {

namespace {

constexpr int measuredPairs = 6;
constexpr int runs = 3;
constexpr std::array<int, 3> phaseCounts{1, 3, 7};
constexpr const char* probeWord = "--memory-probe";

/// Costs of a pair by the number of frames made of it, in milliseconds.
struct Slope {
    std::array<double, phaseCounts.size()> perPair{};

    double first() const { return perPair[0]; }
    /// Each further frame: the slope of the straight line that fits best.
    double further() const {
        double meanCount = 0;
        double meanCost = 0;
        for (std::size_t i = 0; i < phaseCounts.size(); ++i) {
            meanCount += phaseCounts[i] / static_cast<double>(phaseCounts.size());
            meanCost += perPair[i] / static_cast<double>(phaseCounts.size());
        }
        double above = 0;
        double below = 0;
        for (std::size_t i = 0; i < phaseCounts.size(); ++i) {
            above += (phaseCounts[i] - meanCount) * (perPair[i] - meanCost);
            below += (phaseCounts[i] - meanCount) * (phaseCounts[i] - meanCount);
        }
        return above / below;
    }
};

double wallSeconds() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

void printSlope(const char* name, const Slope& slope) {
    std::printf("    %-24s %10.1f %13.1f", name, slope.first(), slope.further());
    for (std::size_t i = 0; i < phaseCounts.size(); ++i)
        std::printf(" %9.1f", slope.perPair[i]);
    std::printf("\n");
}

void printRatio(const char* name, const Slope& ours, const Slope& peer) {
    std::printf("    %-24s %10.3f %13.3f", name, ours.first() / peer.first(), ours.further() / peer.further());
    for (std::size_t i = 0; i < phaseCounts.size(); ++i)
        std::printf(" %9.3f", ours.perPair[i] / peer.perPair[i]);
    std::printf("\n");
}

Slope ourSlope(const std::vector<VideoFrame>& kept, Slope& wall) {
    Slope slope;
    for (std::size_t i = 0; i < phaseCounts.size(); ++i) {
        const int count = phaseCounts[i];
        std::vector<double> cpuTimes;
        std::vector<double> wallTimes;
        for (int run = 0; run < runs; ++run) {
            // What is done once for all pairs cancels in the difference of a longer and a shorter run.
            const double start = wallSeconds();
            const double shorter = ourFrames({kept, 1, count + 1}).cpuSeconds * count;
            const double between = wallSeconds();
            const double longer = ourFrames({kept, measuredPairs + 1, count + 1}).cpuSeconds * count;
            cpuTimes.push_back((longer * (measuredPairs + 1) - shorter) * 1000 / measuredPairs);
            wallTimes.push_back((wallSeconds() - between - (between - start)) * 1000 / measuredPairs);
        }
        slope.perPair[i] = median(cpuTimes);
        wall.perPair[i] = median(wallTimes);
    }
    return slope;
}

Slope peerSlope(const std::vector<VideoFrame>& kept, const std::string& mode, double& megabytes) {
    Slope slope;
    for (std::size_t i = 0; i < phaseCounts.size(); ++i) {
        const PeerRun run = minterpolated({kept, measuredPairs + 1, phaseCounts[i] + 1}, mode);
        slope.perPair[i] = run.made.cpuSeconds * phaseCounts[i] * 1000;
        megabytes = std::max(megabytes, run.megabytes);
    }
    return slope;
}

/// The peak of the program itself when it holds the frames of a file and makes frames of them by a method.
double probedMegabytes(const std::string& method, const std::string& file, int width, int height) {
    return std::atof(
        runProcess({"/proc/self/exe", probeWord, method, file, std::to_string(width), std::to_string(height)})
            .output.c_str());
}

} // namespace

void printFlowCosts(const MediaBackend& backend, const std::filesystem::path& folder) {
    const auto path = folder / flowCostClip;
    if (!std::filesystem::exists(path)) return;
    // Every second frame, and one pair before those measured, from which ours may keep what the pairs share.
    std::vector<VideoFrame> kept;
    {
        const auto decoded = flowFrames(backend, path, 2 * (measuredPairs + 3));
        for (std::size_t i = 0; i < decoded.frames.size(); i += 2)
            kept.push_back(decoded.frames[i]);
    }
    if (kept.size() < measuredPairs + 3) return;
    const int width = kept[0].width;
    const int height = kept[0].height;

    Slope wall;
    const Slope ours = ourSlope(kept, wall);
    double bestMegabytes = 0;
    double fastMegabytes = 0;
    const Slope best = peerSlope(kept, bestPeerMode, bestMegabytes);
    const Slope fast = peerSlope(kept, fastPeerMode, fastMegabytes);
    std::printf("\ncosts at %dx%d (%s), milliseconds a pair\n", width, height, flowCostClip);
    std::printf("    %-24s %10s %13s %9s %9s %9s\n", "", "first one", "each further", "1 frame", "3 frames",
                "7 frames");
    printSlope("ours, CPU", ours);
    printSlope("ours, wall", wall);
    printSlope("minterpolate, CPU", best);
    printRatio("ours over minterpolate", ours, best);
    printSlope("its defaults, CPU", fast);
    printRatio("ours over its defaults", ours, fast);

    const ScratchFolder scratch;
    const std::string file = scratch / "frames.yuv";
    {
        std::ofstream out(file, std::ios::binary);
        for (const auto& frame : kept)
            out << packed(frame);
    }
    const double idle = probedMegabytes("repeat", file, width, height);
    std::printf("  peak memory above that of the frames themselves, MB: ours %.0f, minterpolate %.0f (defaults %.0f), "
                "blend %.0f, repeat 0\n",
                probedMegabytes("ours", file, width, height) - idle, bestMegabytes, fastMegabytes,
                probedMegabytes("blend", file, width, height) - idle);
    std::fflush(stdout);
}

std::optional<int> runAsMemoryProbe(const std::vector<std::string>& arguments) {
    if (arguments.size() != 5 || arguments[0] != probeWord) return std::nullopt;
    const std::string& method = arguments[1];
    const int width = std::stoi(arguments[3]);
    const int height = std::stoi(arguments[4]);
    // One frame at a time into memory that stays taken, so that reading leaves none that the method could use unseen.
    std::string bytes(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 3 / 2, '\0');
    std::vector<VideoFrame> kept;
    for (std::ifstream file(arguments[2], std::ios::binary);
         file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));)
        kept.push_back(framesOfBytes(bytes, width, height).front());
    if (kept.size() < 3) return 1;
    const FlowTask task{kept, static_cast<int>(kept.size()) - 2, 2};
    if (method == "ours") eachOfOurFrames(task, [](const VideoFrame&) {});
    if (method == "blend")
        for (std::size_t i = 0; i + 2 < kept.size(); ++i)
            blend(kept[i], kept[i + 1], 0.5);
    std::printf("%f\n", peakMegabytes());
    return 0;
}

} // namespace flowtide::bench
