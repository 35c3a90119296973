// What it costs to turn a decoded frame into display pixels, beside ffmpeg's scale with interpolated chroma (SDR) and
// zscale with tonemap (wide gamut and HDR) on the same frame.
#include "bench/peer_process.h"
#include "bench/scratch_folder.h"
#include "media/frames/display_frame.h"
#include "media/frames/frame_pool.h"

#include <cmath>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <random>
#include <string>
#include <vector>

namespace {

using namespace flowtide;
using bench::cpuSeconds;
using bench::median;
using bench::runProcess;

struct Kind {
    const char* name;
    int bitDepth;
    ColorProperties tags;
    bool isHdr;
};

const Kind kinds[] = {
    {"SDR BT.709, 8 bit", 8, {"bt709", "bt709", "bt709"}, false},
    {"SDR BT.709, 10 bit", 10, {"bt709", "bt709", "bt709"}, false},
    {"SDR BT.2020, 10 bit", 10, {"bt2020", "bt2020-10", "bt2020nc"}, false},
    {"PQ, 10 bit", 10, {"bt2020", "smpte2084", "bt2020nc"}, true},
    {"HLG, 10 bit", 10, {"bt2020", "arib-std-b67", "bt2020nc"}, true},
};

struct Size {
    int width, height;
};
const struct {
    Size source, target;
} scalings[] = {
    {{1920, 1080}, {1920, 1080}},
    {{1920, 1080}, {1280, 720}},
    {{3840, 2160}, {1920, 1080}},
};

/// Smooth waves with a little grain, over the whole range of codes.
VideoFrame picture(int bitDepth, Size size) {
    FramePool pool({ChromaSubsampling::yuv420, bitDepth, false}, size.width, size.height);
    const WritableFrame frame = pool.take();
    std::mt19937 random(7);
    for (std::size_t plane = 0; plane < 3; ++plane)
        for (int row = 0; row < planeHeight(frame.frame.layout, size.height, plane); ++row)
            for (int column = 0; column < planeWidth(frame.frame.layout, size.width, plane); ++column) {
                const double wave = std::sin(0.011 * column + 0.5 * static_cast<double>(plane)) * std::cos(0.017 * row);
                const double reach = plane == 0 ? 105 : 60;
                const double value = 128 + reach * wave + static_cast<double>(random() % 5) - 2;
                const auto code = static_cast<std::uint16_t>(std::lround(std::ldexp(value, bitDepth - 8)));
                std::uint8_t* line = frame.planes[plane] + row * frame.frame.planes[plane].stride;
                if (bitDepth == 8)
                    line[column] = static_cast<std::uint8_t>(code);
                else
                    std::memcpy(line + 2 * column, &code, sizeof code);
            }
    return frame.frame;
}

void writeRaw(const VideoFrame& frame, const std::string& path) {
    std::ofstream file(path, std::ios::binary);
    for (std::size_t plane = 0; plane < 3; ++plane)
        for (int row = 0; row < planeHeight(frame.layout, frame.height, plane); ++row)
            file.write(reinterpret_cast<const char*>(frame.planes[plane].data + row * frame.planes[plane].stride),
                       static_cast<std::streamsize>(planeRowBytes(frame.layout, frame.width, plane)));
}

std::string text(Size size) {
    return std::to_string(size.width) + "x" + std::to_string(size.height);
}

/// CPU milliseconds a frame of ffmpeg's filters on a still.
double peerCost(const Kind& kind, const std::string& path, Size source, Size target) {
    constexpr int frames = 40;
    const auto run = [&](const std::string& filters) {
        std::vector<double> costs;
        for (int i = 0; i < 3; ++i)
            costs.push_back(runProcess({"ffmpeg", "-y", "-filter_threads", "1", "-f", "rawvideo", "-pix_fmt",
                                        kind.bitDepth == 8 ? "yuv420p" : "yuv420p10le", "-s", text(source), "-i", path,
                                        "-vf", "loop=loop=" + std::to_string(frames) + ":size=1" + filters, "-frames:v",
                                        std::to_string(frames), "-f", "null", "-"})
                                .cpuSeconds);
        return median(costs);
    };
    const std::string size = "=w=" + std::to_string(target.width) + ":h=" + std::to_string(target.height);
    const std::string in = ":min=2020_ncl:pin=2020:rin=limited:tin=";
    std::string filters =
        ",scale" + size + ":flags=bicubic+full_chroma_int+full_chroma_inp:in_color_matrix=bt709:in_range=tv";
    if (kind.isHdr)
        filters = ",zscale" + size + in + (kind.tags.transferFunction == "smpte2084" ? "smpte2084" : "arib-std-b67") +
                  ":t=linear:npl=203:f=bicubic:p=709:m=gbr,format=gbrpf32le,tonemap=hable," +
                  "zscale=tin=linear:pin=709:min=gbr:t=709:m=gbr";
    else if (kind.tags.primaries == "bt2020")
        filters = ",zscale" + size + in + "2020_10:p=709:t=709:m=gbr:r=full:f=bicubic,format=gbrp";
    return (run(filters + ",format=bgra") - run("")) / frames * 1000;
}

} // namespace

int main(int argc, char** argv) {
    const bool withPeer = argc < 2 || std::string(argv[1]) != "alone"; // to measure ourselves only
    const std::string version = runProcess({"ffmpeg", "-version"}).output;
    std::printf("peer: scale, zscale, tonemap of %s, one thread\n",
                version.substr(0, version.find(" Copyright")).c_str());
    std::printf("%-22s %-24s %10s %10s %8s\n", "CPU ms a frame", "", "ours", "peer", "ratio");
    const bench::ScratchFolder scratch;
    for (const Kind& kind : kinds)
        for (const auto& [source, target] : scalings) {
            const VideoFrame frame = picture(kind.bitDepth, source);
            DisplayConverter converter;
            const PictureColor color{kind.tags, {}, {}};
            std::vector<double> costs;
            for (int i = 0; i < 21; ++i) {
                const double start = cpuSeconds();
                static_cast<void>(converter.convert(frame, color, {}, {target.width, target.height}));
                costs.push_back(cpuSeconds() - start);
            }
            const double ours = median(costs) * 1000;
            const std::string path = scratch / "still.yuv";
            writeRaw(frame, path);
            const double peer = withPeer ? peerCost(kind, path, source, target) : std::nan("");
            std::printf("%-22s %-24s %10.2f %10.2f %8.3f\n", kind.name, (text(source) + " -> " + text(target)).c_str(),
                        ours, peer, ours / peer);
            std::fflush(stdout);
        }
}
