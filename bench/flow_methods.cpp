// Runs each method; only what makes frames is inside the measured time.
#include "bench/flow_methods.h"

#include "bench/flow_clips.h"
#include "bench/peer_process.h"
#include "bench/picture_quality.h"
#include "bench/scratch_folder.h"
#include "media/flow/optical_flow_interpolator.h"

#include <algorithm>
#include <fstream>
#include <iterator>

namespace flowtide::bench {

namespace {

int wantedFrames(const FlowTask& task) {
    return task.pairs * (task.step - 1);
}

/// Calls `make(pair, k)` for every wanted frame, k = 1...step − 1.
template <typename Make>
void eachWanted(const FlowTask& task, const Make& make) {
    for (std::size_t pair = 0; pair < static_cast<std::size_t>(task.pairs); ++pair)
        for (int k = 1; k < task.step; ++k)
            make(pair, k);
}

template <typename Run>
InBetweens timed(const FlowTask& task, const Run& run) {
    InBetweens result;
    const double start = cpuSeconds();
    run(result.frames);
    result.cpuSeconds = (cpuSeconds() - start) / std::max(wantedFrames(task), 1);
    return result;
}

std::string fileBytes(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace

void eachOfOurFrames(const FlowTask& task, const std::function<void(VideoFrame)>& take) {
    OpticalFlowInterpolator interpolator(task.kept[0].width, task.kept[0].height, task.kept[0].layout);
    const auto timedFrame = [&](std::size_t i) { return TimedFrame{task.kept[i], {static_cast<double>(i)}}; };
    eachWanted(task, [&](std::size_t i, int k) {
        FramePair pair{timedFrame(i), timedFrame(i + 1), {}, {}};
        if (i > 0) pair.before = timedFrame(i - 1);
        if (i + 2 < task.kept.size()) pair.after = timedFrame(i + 2);
        take(interpolator.render(pair, {static_cast<double>(i) + static_cast<double>(k) / task.step}));
    });
}

InBetweens ourFrames(const FlowTask& task) {
    return timed(task, [&](auto& frames) {
        eachOfOurFrames(task, [&](VideoFrame frame) { frames.push_back(std::move(frame)); });
    });
}

VideoFrame blend(const VideoFrame& first, const VideoFrame& second, double share) {
    // Sixteen bits of share are more than the samples have.
    const int weight = static_cast<int>(share * 65536 + 0.5);
    const auto luma = std::make_shared<std::vector<std::uint8_t>>(static_cast<std::size_t>(first.width) *
                                                                  static_cast<std::size_t>(first.height));
    std::uint8_t* out = luma->data();
    for (int y = 0; y < first.height; ++y, out += first.width) {
        const std::uint8_t* p = lumaRow(first, y);
        const std::uint8_t* q = lumaRow(second, y);
        for (int x = 0; x < first.width; ++x)
            out[x] = static_cast<std::uint8_t>((p[x] * 65536 + weight * (q[x] - p[x]) + 32768) >> 16);
    }
    VideoFrame frame;
    frame.width = first.width;
    frame.height = first.height;
    frame.planes[0] = {luma->data(), first.width};
    frame.owner = luma;
    return frame;
}

InBetweens blendedFrames(const FlowTask& task) {
    return timed(task, [&](auto& frames) {
        eachWanted(task, [&](std::size_t i, int k) {
            frames.push_back(blend(task.kept[i], task.kept[i + 1], static_cast<double>(k) / task.step));
        });
    });
}

InBetweens repeatedFrames(const FlowTask& task) {
    return timed(task,
                 [&](auto& frames) { eachWanted(task, [&](std::size_t i, int) { frames.push_back(task.kept[i]); }); });
}

PeerRun minterpolated(const FlowTask& task, const std::string& mode) {
    const ScratchFolder scratch;
    const int width = task.kept[0].width;
    const int height = task.kept[0].height;
    {
        // The filter needs one frame beyond the last pair before it makes that pair's frames: the true next one, or
        // the last one again (which changes nothing in what it makes before it).
        std::ofstream file(scratch / "in.yuv", std::ios::binary);
        for (std::size_t i = 0; i < static_cast<std::size_t>(task.pairs) + 2; ++i)
            file << packed(task.kept[std::min(i, task.kept.size() - 1)]);
    }
    const auto run = [&](const std::string& filter) {
        return runProcess({"ffmpeg", "-y", "-f", "rawvideo", "-pix_fmt", "yuv420p", "-s",
                           std::to_string(width) + "x" + std::to_string(height), "-r", "10", "-i", scratch / "in.yuv",
                           "-vf", filter + ",format=yuv420p", "-f", "rawvideo", scratch / "out.yuv"});
    };
    const std::string rate = std::to_string(10 * task.step);
    const ProcessCost idle = run("fps=" + rate);
    const ProcessCost cost = run("minterpolate=fps=" + rate + ":" + mode);

    PeerRun result;
    result.megabytes = cost.peakMegabytes - idle.peakMegabytes;
    result.made.cpuSeconds = std::max(cost.cpuSeconds - idle.cpuSeconds, 0.0) / std::max(wantedFrames(task), 1);
    // Its first frame is the first input frame itself.
    const auto made = framesOfBytes(fileBytes(scratch / "out.yuv"), width, height);
    for (int i = 0; i < task.pairs * task.step && static_cast<std::size_t>(i) < made.size(); ++i)
        if (i % task.step != 0) result.made.frames.push_back(made[static_cast<std::size_t>(i)]);
    return result;
}

} // namespace flowtide::bench
