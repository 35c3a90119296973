// Our zoom beside ffmpeg's zoompan on the same still 1080p chart: how far the edges stray from their ideal path, and
// what a frame costs.
#include "bench/peer_process.h"
#include "bench/scratch_folder.h"
#include "core/zoom_engine.h"
#include "media/frames/zoom_scaler.h"
#include "tests/support/zoom_chart.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <string>

namespace {

using namespace flowtide;
using bench::cpuSeconds;
using bench::median;
using bench::runProcess;

constexpr int width = 1920;
constexpr int height = 1080;
constexpr int frameCount = 60; // two seconds
constexpr double amount = 1.5;
constexpr double focalX = 0.3;
constexpr double focalY = 0.6;
constexpr PixelLayout layout{ChromaSubsampling::yuv420, 8, false};

double zoomAt(int frame) {
    return std::pow(amount, static_cast<double>(frame) / (frameCount - 1));
}

PictureRect rectAt(double zoom) {
    const double hidden = 1 - 1 / zoom;
    return {focalX * width * hidden, focalY * height * hidden, width / zoom, height / zoom};
}

/// Sums of squared edge errors, over any number of frames.
struct EdgeErrors {
    double sum = 0;
    double largest = 0;
    int count = 0;

    void add(const test::ZoomChart& chart, const VideoFrame& frame, const PictureRect& rect) {
        const double zoom = frame.width / rect.width;
        for (int row = 20; row < frame.height - 20; row += 40)
            for (int number = 0; number < 16; ++number) {
                const double expected = (chart.edge(number, rect.top + (row + 0.5) / zoom) - rect.left) * zoom;
                if (expected < 20 || expected > frame.width - 20) continue;
                const double error = test::crossingNear(chart, frame, 0, row, expected) - expected;
                if (std::isnan(error)) continue;
                sum += error * error;
                largest = std::max(largest, std::abs(error));
                ++count;
            }
    }
    double rms() const { return count > 0 ? std::sqrt(sum / count) : std::nan(""); }
};

/// Rebuilds a frame from packed planes in a file's bytes.
VideoFrame frameFrom(const std::string& bytes, std::size_t offset) {
    auto copy = std::make_shared<std::string>(bytes.substr(offset, width * height * 3 / 2));
    VideoFrame frame;
    frame.layout = layout;
    frame.width = width;
    frame.height = height;
    const auto* data = reinterpret_cast<const std::uint8_t*>(copy->data());
    frame.planes = {
        VideoFrame::Plane{data, width}, {data + width * height, width / 2}, {data + width * height * 5 / 4, width / 2}};
    frame.owner = copy;
    return frame;
}

} // namespace

int main() {
    const test::ZoomChart chart;
    const VideoFrame still = chart.frame(layout, width, height);

    EdgeErrors ours;
    ZoomScaler scaler;
    std::vector<double> costs;
    for (int frame = 0; frame < frameCount; ++frame) {
        const PictureRect rect = rectAt(zoomAt(frame));
        const double start = cpuSeconds();
        const VideoFrame zoomed = scaler.scale(still, rect, width, height);
        costs.push_back(cpuSeconds() - start);
        ours.add(chart, zoomed, rect);
    }

    const bench::ScratchFolder scratch;
    const std::string stillPath = scratch / "still.yuv";
    const std::string zoomedPath = scratch / "zoomed.yuv";
    {
        std::ofstream file(stillPath, std::ios::binary);
        for (std::size_t plane = 0; plane < 3; ++plane)
            file.write(reinterpret_cast<const char*>(still.planes[plane].data),
                       planeWidth(layout, width, plane) * planeHeight(layout, height, plane));
    }
    const std::string size = std::to_string(width) + "x" + std::to_string(height);
    const std::string zoom = "pow(" + std::to_string(amount) + ",on/" + std::to_string(frameCount - 1) + ")";
    const std::string filter = "zoompan=z='" + zoom + "':x='" + std::to_string(focalX) + "*iw*(1-1/zoom)':y='" +
                               std::to_string(focalY) + "*ih*(1-1/zoom)':d=" + std::to_string(frameCount) +
                               ":s=" + size + ":fps=30";
    const auto peer = [&](const std::string& filterText) {
        return runProcess({"ffmpeg", "-y", "-f", "rawvideo", "-pix_fmt", "yuv420p", "-s", size, "-i", stillPath, "-vf",
                           filterText, "-frames:v", std::to_string(frameCount), "-f", "rawvideo", zoomedPath});
    };
    std::vector<double> peerCosts;
    std::vector<double> idleCosts;
    for (int i = 0; i < 3; ++i) {
        idleCosts.push_back(peer("loop=loop=" + std::to_string(frameCount) + ":size=1").cpuSeconds);
        peerCosts.push_back(peer(filter).cpuSeconds);
    }
    std::ifstream file(zoomedPath, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};

    EdgeErrors peers;
    constexpr std::size_t frameBytes = width * height * 3 / 2;
    for (int frame = 0; frame < frameCount && (static_cast<std::size_t>(frame) + 1) * frameBytes <= bytes.size();
         ++frame)
        peers.add(chart, frameFrom(bytes, static_cast<std::size_t>(frame) * frameBytes), rectAt(zoomAt(frame)));

    const double own = median(costs) * 1000;
    const double theirs = (median(peerCosts) - median(idleCosts)) / frameCount * 1000;
    const std::string version = runProcess({"ffmpeg", "-version"}).output;
    std::printf("peer: zoompan of %s\n", version.substr(0, version.find(" Copyright")).c_str());
    std::printf("1080p, zoom 1 to %.1f over %d frames, focal point %.1f, %.1f\n", amount, frameCount, focalX, focalY);
    std::printf("%-10s %14s %14s %16s\n", "", "edge RMS px", "largest px", "CPU ms a frame");
    std::printf("%-10s %14.4f %14.4f %16.2f\n", "ours", ours.rms(), ours.largest, own);
    std::printf("%-10s %14.4f %14.4f %16.2f\n", "zoompan", peers.rms(), peers.largest, theirs);
    std::printf("%-10s %14.4f %14.4f %16.3f\n", "ratio", ours.rms() / peers.rms(), ours.largest / peers.largest,
                own / theirs);
    return 0;
}
