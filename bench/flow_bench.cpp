// Our in-between frames beside ffmpeg's minterpolate, a linear blend and repeated frames, on clips that are thinned so
// that the true frames are known. Usage: bench_flow [folder of clips] [pairs a clip]
#include "bench/peer_process.h"
#include "bench/picture_quality.h"
#include "media/ffmpeg/ffmpeg_backend.h"
#include "media/flow/optical_flow_interpolator.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>

namespace {

using namespace flowtide;
using bench::Quality;

constexpr int defaultPairs = 8;

double cpuSeconds() {
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

/// The sums of one method's figures.
struct Tally {
    Quality quality;
    double cpu = 0;
    int frames = 0;

    void add(const Quality& one, double seconds) {
        quality.psnr += one.psnr;
        quality.ssim += one.ssim;
        quality.worstBlocks += one.worstBlocks;
        cpu += seconds;
        ++frames;
    }
    void add(const Tally& other) {
        const int count = std::max(other.frames, 1);
        quality.psnr += other.quality.psnr / count;
        quality.ssim += other.quality.ssim / count;
        quality.worstBlocks += other.quality.worstBlocks / count;
        cpu += other.cpu / count;
        ++frames;
    }
    void print(const char* name) const {
        const int count = std::max(frames, 1);
        std::printf("    %-14s %7.2f dB %7.4f %7.2f dB %8.3f s\n", name, quality.psnr / count, quality.ssim / count,
                    quality.worstBlocks / count, cpu / count);
    }
};

using Tallies = std::map<std::string, Tally>;

std::vector<VideoFrame> decoded(const MediaBackend& backend, const std::filesystem::path& path, std::size_t most) {
    const ImportedClip clip = ImportedClip::load(backend, path);
    PixelLayout layout; // 8-bit 4:2:0 for all: the peer's own format
    layout.fullRange = clip.videoIsFullRange;
    const auto reader = backend.openVideo(clip, layout, {0, clip.duration});
    std::vector<VideoFrame> frames;
    while (frames.size() < most) {
        auto frame = reader->next();
        if (!frame) break;
        frames.push_back(std::move(frame->frame));
    }
    return frames;
}

void writeRaw(std::ofstream& file, const VideoFrame& frame) {
    for (std::size_t plane = 0; plane < 3; ++plane)
        for (int row = 0; row < planeHeight(frame.layout, frame.height, plane); ++row)
            file.write(reinterpret_cast<const char*>(frame.planes[plane].data + row * frame.planes[plane].stride),
                       planeWidth(frame.layout, frame.width, plane));
}

/// The frames that minterpolate makes of every `step`th frame; luma alone is kept hold of.
std::vector<VideoFrame> peerFrames(const std::vector<VideoFrame>& frames, int step, double& cpu) {
    const auto folder = std::filesystem::temp_directory_path() / ("flowtide-bench-" + std::to_string(::getpid()));
    std::filesystem::create_directories(folder);
    const int width = frames.front().width;
    const int height = frames.front().height;
    {
        std::ofstream file(folder / "in.yuv", std::ios::binary);
        for (std::size_t i = 0; i < frames.size(); i += static_cast<std::size_t>(step))
            writeRaw(file, frames[i]);
        // The filter holds back its last frames; two more copies of the end push them out.
        for (int copy = 0; copy < 2; ++copy)
            writeRaw(file,
                     frames[(frames.size() - 1) / static_cast<std::size_t>(step) * static_cast<std::size_t>(step)]);
    }
    const std::string size = std::to_string(width) + "x" + std::to_string(height);
    const auto cost = bench::runProcess({"ffmpeg", "-y", "-f", "rawvideo", "-pix_fmt", "yuv420p", "-s", size, "-r",
                                         "10", "-i", folder / "in.yuv", "-vf",
                                         "minterpolate=fps=" + std::to_string(10 * step) +
                                             ":mi_mode=mci:mc_mode=aobmc:me_mode=bidir:vsbmc=1:"
                                             "scd=none,format=yuv420p",
                                         "-f", "rawvideo", folder / "out.yuv"});
    cpu = cost.cpuSeconds;
    std::ifstream file(folder / "out.yuv", std::ios::binary);
    std::vector<VideoFrame> result;
    const auto bytes = static_cast<std::size_t>(width) * static_cast<std::size_t>(height) +
                       2 * static_cast<std::size_t>((width + 1) / 2) * static_cast<std::size_t>((height + 1) / 2);
    for (;;) {
        auto luma = std::make_shared<std::vector<std::uint8_t>>(bytes);
        if (!file.read(reinterpret_cast<char*>(luma->data()), static_cast<std::streamsize>(bytes))) break;
        VideoFrame frame;
        frame.width = width;
        frame.height = height;
        frame.planes[0] = {luma->data(), width};
        frame.owner = luma;
        result.push_back(frame);
    }
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
    return result;
}

VideoFrame blend(const VideoFrame& a, const VideoFrame& b, double share) {
    auto luma = std::make_shared<std::vector<std::uint8_t>>();
    for (int y = 0; y < a.height; ++y)
        for (int x = 0; x < a.width; ++x) {
            const double one = a.planes[0].data[y * a.planes[0].stride + x];
            const double other = b.planes[0].data[y * b.planes[0].stride + x];
            luma->push_back(static_cast<std::uint8_t>(one + share * (other - one) + 0.5));
        }
    VideoFrame frame;
    frame.width = a.width;
    frame.height = a.height;
    frame.planes[0] = {luma->data(), a.width};
    frame.owner = luma;
    return frame;
}

Tallies measured(const std::vector<VideoFrame>& frames, int step) {
    Tallies tallies;
    double peerCpu = 0;
    const auto peers = peerFrames(frames, step, peerCpu);
    OpticalFlowInterpolator interpolator(frames[0].width, frames[0].height, frames[0].layout);
    const auto every = static_cast<std::size_t>(step);
    const std::size_t inBetween = (frames.size() - 1) / every * (every - 1);
    // The filter's first frame is the first frame itself.
    for (std::size_t i = 0; i + every < frames.size(); i += every)
        for (std::size_t k = 1; k < every; ++k) {
            const VideoFrame& truth = frames[i + k];
            const double share = static_cast<double>(k) / step;
            const double start = cpuSeconds();
            const VideoFrame own = interpolator.render(
                {{frames[i], {static_cast<double>(i)}}, {frames[i + every], {static_cast<double>(i + every)}}, {}, {}},
                {static_cast<double>(i + k)});
            tallies["ours"].add(bench::quality(own, truth), cpuSeconds() - start);
            tallies["blend"].add(bench::quality(blend(frames[i], frames[i + every], share), truth), 0);
            tallies["repeat"].add(bench::quality(frames[i], truth), 0);
            if (i + k < peers.size())
                tallies["minterpolate"].add(bench::quality(peers[i + k], truth),
                                            peerCpu / static_cast<double>(inBetween));
        }
    return tallies;
}

void print(const std::string& title, const Tallies& tallies) {
    std::printf("%s\n", title.c_str());
    for (const char* method : {"ours", "minterpolate", "blend", "repeat"})
        if (const auto found = tallies.find(method); found != tallies.end()) found->second.print(method);
    std::fflush(stdout);
}

} // namespace

int main(int argc, char** argv) {
    const std::filesystem::path folder = argc > 1 ? argv[1] : FLOWTIDE_CLIPS;
    const int pairs = argc > 2 ? std::atoi(argv[2]) : defaultPairs;
    const char* clips[] = {"camera/diabolo_h264_1536x848_240fps_untagged_noaudio.mp4",
                           "camera/diabolo_h264_1080p_80fps_untagged_noaudio.mp4",
                           "camera/beamwalk_h264_1088x1920_60fps_untagged_noaudio.mp4",
                           "camera/bee_h264_720p_ntsc_aac_4s.mp4",
                           "camera/butterfly_h264_720p_ntsc_aac_7s.mp4",
                           "camera/gopro_h264_480p_ntsc_full_tmcd_gpmd_12s.mp4",
                           "camera/marathon_h264_720x400_ntsc_untagged_noaudio.mp4",
                           "camera/pixel_h264_240p60_full_aac_5s.mp4",
                           "camera/sam2_bedroom_jump_h264_540p30_partialtags_noaudio.mp4",
                           "camera/sam2_footballjuggle_h264_720p24_noaudio.mp4",
                           "camera/traffic_h264_720p25_aac_23s.mp4",
                           "track/ball1_105f.mp4",
                           "track/crossing_360x240_120f.mp4",
                           "track/david_320x240_471f.mp4",
                           "track/tld_jumping_352x288_313f.mp4"};
    const auto backend = makeFFmpegBackend();
    const std::string version = bench::runProcess({"ffmpeg", "-version"}).output;
    std::printf("peer: minterpolate of %s\n", version.substr(0, version.find(" Copyright")).c_str());
    std::printf("%d pairs a clip; luma PSNR, SSIM, PSNR of the worst 1 %% of 16x16 blocks, CPU a frame\n", pairs);
    for (const int step : {2, 4}) {
        Tallies total;
        for (const char* name : clips) {
            if (!std::filesystem::exists(folder / name)) continue;
            const auto frames = decoded(*backend, folder / name, static_cast<std::size_t>(pairs * step + 1));
            if (frames.size() <= static_cast<std::size_t>(step)) continue;
            const Tallies tallies = measured(frames, step);
            print(std::to_string(step) + "x " + name, tallies);
            for (const auto& [method, tally] : tallies)
                total[method].add(tally);
        }
        print(std::to_string(step) + "x, all clips alike", total);
    }
    return 0;
}
