// Reads clips and triplets for the benchmark of in-between frames.
#include "bench/flow_clips.h"

#include "bench/peer_process.h"
#include "bench/picture_quality.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <optional>

namespace flowtide::bench {

namespace {

// A frame that differs from its predecessor by less than this share of the clip's median difference repeats it. In
// slow passages of the clips the share stays above a fifth; duplicates lie below a thirtieth.
constexpr double duplicateShare = 0.1;
// Cameras' timestamps stray by a few percent; a missing frame doubles the interval.
constexpr double intervalTolerance = 0.2;

/// Mean absolute luma difference.
double difference(const VideoFrame& a, const VideoFrame& b) {
    long sum = 0;
    for (int y = 0; y < a.height; ++y) {
        const std::uint8_t* p = lumaRow(a, y);
        const std::uint8_t* q = lumaRow(b, y);
        int row = 0;
        for (int x = 0; x < a.width; ++x)
            row += std::abs(p[x] - q[x]);
        sum += row;
    }
    return static_cast<double>(sum) / a.width / a.height;
}

std::vector<VideoFrame> evenStretch(VideoReader& reader, std::size_t most) {
    std::vector<VideoFrame> longest;
    std::vector<VideoFrame> current;
    double last = 0;
    double interval = 0;
    while (current.size() < most) {
        auto next = reader.next();
        if (!next) break;
        const double step = next->time.value - last;
        if (current.size() >= 2 && std::abs(step - interval) > intervalTolerance * interval) {
            // The frame after the gap may start a new stretch.
            if (current.size() > longest.size()) longest.swap(current);
            current.clear();
        }
        if (current.size() == 1) interval = step;
        last = next->time.value;
        current.push_back(std::move(next->frame));
    }
    return current.size() >= longest.size() ? current : longest;
}

std::size_t packedSize(int width, int height) {
    std::size_t size = 0;
    for (std::size_t plane = 0; plane < 3; ++plane)
        size += static_cast<std::size_t>(planeWidth({}, width, plane)) *
                static_cast<std::size_t>(planeHeight({}, height, plane));
    return size;
}

std::optional<VideoFrame> picture(const std::filesystem::path& path) {
    int width = 0;
    int height = 0;
    const auto size = runProcess({"ffprobe", "-v", "error", "-select_streams", "v:0", "-show_entries",
                                  "stream=width,height", "-of", "csv=p=0", path.string()});
    if (std::sscanf(size.output.c_str(), "%d,%d", &width, &height) != 2) return std::nullopt;
    const auto raw = runProcess(
        {"ffmpeg", "-i", path.string(), "-frames:v", "1", "-pix_fmt", "yuv420p", "-f", "rawvideo", "pipe:1"});
    const auto frames = framesOfBytes(raw.output, width, height);
    return frames.empty() ? std::nullopt : std::optional(frames.front());
}

} // namespace

const std::vector<FlowClip>& flowClips() {
    static const std::vector<FlowClip> clips{
        {"camera/diabolo_h264_1536x848_240fps_untagged_noaudio.mp4", {2, 4, 8}},
        {"camera/diabolo_h264_1080p_80fps_untagged_noaudio.mp4", {2, 4}},
        {"camera/beamwalk_h264_1088x1920_60fps_untagged_noaudio.mp4", {2, 4}},
        {flowCostClip, {2, 4}},
        {"camera/iphone5_h264_1080p30_aac_1s.mov", {2, 4}},
        {"camera/iphone_hevc10_hlg_1080p30_rot_vfr_editlist.mp4", {2, 4}},
        {"camera/bee_h264_720p_ntsc_aac_4s.mp4", {2, 4}},
        {"camera/butterfly_h264_720p_ntsc_aac_7s.mp4", {2, 4}},
        {"camera/traffic_h264_720p25_aac_23s.mp4", {2, 4}},
        {"camera/sam2_footballjuggle_h264_720p24_noaudio.mp4", {2, 4}},
        {"camera/phone_h264_720p_rot_untagged_3gp5brand_aac.mp4", {2, 4}},
        {"camera/sam2_bedroom_jump_h264_540p30_partialtags_noaudio.mp4", {2, 4}},
        {"camera/gopro_h264_480p_ntsc_full_tmcd_gpmd_12s.mp4", {2, 4}},
        {"camera/marathon_h264_720x400_ntsc_untagged_noaudio.mp4", {2, 4}},
        {"camera/pixel_h264_360p30_aac_17s.mp4", {2, 4}},
        {"camera/iphone6_h264_ntsc_rot_aac_mebx_4s.mov", {2, 4}},
        {"camera/android_h264_270x480_vfr_untagged_aac.mp4", {2, 4}},
        {"camera/pixel_h264_240p60_full_aac_5s.mp4", {2, 4}},
        {"track/ball1_105f.mp4", {2, 4}},
        {"track/crossing_360x240_120f.mp4", {2, 4}},
        {"track/david_320x240_471f.mp4", {2, 4}},
        {"track/tld_car_320x240_945f.mp4", {2, 4}},
        {"track/tld_jumping_352x288_313f.mp4", {2, 4}},
    };
    return clips;
}

FlowFrames flowFrames(const MediaBackend& backend, const std::filesystem::path& path, std::size_t most) {
    const ImportedClip clip = ImportedClip::load(backend, path);
    PixelLayout layout; // 8-bit 4:2:0 for all: the peer's own format
    layout.fullRange = clip.videoIsFullRange();
    const auto reader = backend.openVideo(clip, layout, {0, clip.duration});
    // Pulldown repeats up to every fourth frame.
    auto frames = evenStretch(*reader, most + most / 4 + 1);

    std::vector<double> differences;
    for (std::size_t i = 1; i < frames.size(); ++i)
        differences.push_back(difference(frames[i - 1], frames[i]));
    const double least = duplicateShare * median(differences);
    FlowFrames result;
    for (std::size_t i = 0; i < frames.size() && result.frames.size() < most; ++i) {
        if (i > 0 && differences[i - 1] < least)
            ++result.duplicates;
        else
            result.frames.push_back(std::move(frames[i]));
    }
    return result;
}

std::vector<FlowTriplet> flowTriplets(const std::filesystem::path& folder, const std::string& part) {
    std::vector<FlowTriplet> triplets;
    if (!std::filesystem::is_directory(folder / "interp")) return triplets;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder / "interp")) {
        if (entry.path().filename() != "mid.png") continue;
        const auto place = entry.path().parent_path();
        const std::string name = std::filesystem::relative(place, folder).string();
        if (name.find(part) == std::string::npos) continue;
        const auto first = picture(place / "a.png");
        const auto middle = picture(place / "mid.png");
        const auto second = picture(place / "b.png");
        if (first && middle && second) triplets.push_back({name, *first, *middle, *second});
    }
    std::sort(triplets.begin(), triplets.end(), [](const auto& a, const auto& b) { return a.name < b.name; });
    return triplets;
}

std::vector<VideoFrame> framesOfBytes(const std::string& bytes, int width, int height) {
    std::vector<VideoFrame> frames;
    const std::size_t size = packedSize(width, height);
    for (std::size_t offset = 0; size > 0 && offset + size <= bytes.size(); offset += size) {
        const auto copy = std::make_shared<const std::string>(bytes.substr(offset, size));
        const auto* data = reinterpret_cast<const std::uint8_t*>(copy->data());
        VideoFrame frame;
        frame.width = width;
        frame.height = height;
        for (std::size_t plane = 0; plane < 3; ++plane) {
            frame.planes[plane] = {data, planeWidth({}, width, plane)};
            data += frame.planes[plane].stride * planeHeight({}, height, plane);
        }
        frame.owner = copy;
        frames.push_back(std::move(frame));
    }
    return frames;
}

std::string packed(const VideoFrame& frame) {
    std::string bytes;
    bytes.reserve(packedSize(frame.width, frame.height));
    for (std::size_t plane = 0; plane < 3; ++plane)
        for (int row = 0; row < planeHeight(frame.layout, frame.height, plane); ++row)
            bytes.append(reinterpret_cast<const char*>(frame.planes[plane].data + row * frame.planes[plane].stride),
                         static_cast<std::size_t>(planeWidth(frame.layout, frame.width, plane)));
    return bytes;
}

} // namespace flowtide::bench
