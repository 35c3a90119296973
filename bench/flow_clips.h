// Footage whose in-between frames are known.
#pragma once

#include "media/media_io.h"
#include "media/video_frame.h"

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace flowtide::bench {

/// A clip that is measured, and by which factors it is thinned.
struct FlowClip {
    std::string name; ///< path below the folder of clips
    std::vector<int> factors;
};
const std::vector<FlowClip>& flowClips();

/// A clip of 1080 rows that moves, for costs.
inline constexpr const char* flowCostClip = "camera/cam_h264_1080p5994_untagged_noaudio.mp4";

/// Evenly spaced 8-bit 4:2:0 frames.
struct FlowFrames {
    std::vector<VideoFrame> frames;
    int duplicates = 0; ///< frames left out because they only repeat the one before
};

/// Up to `most` frames of the clip's first stretch without gaps that has as many, or else of its longest. What repeats
/// the frame before it is left out, so that thinning leaves the truth midway.
FlowFrames flowFrames(const MediaBackend& backend, const std::filesystem::path& path, std::size_t most);

/// Two frames and the one that was recorded midway.
struct FlowTriplet {
    std::string name;
    VideoFrame first;
    VideoFrame middle;
    VideoFrame second;
};
/// All below `folder`/interp whose name contains `part`, by name.
std::vector<FlowTriplet> flowTriplets(const std::filesystem::path& folder, const std::string& part);

/// Packed 8-bit 4:2:0 planes as frames of one size; what is no whole frame is left out.
std::vector<VideoFrame> framesOfBytes(const std::string& bytes, int width, int height);
/// The frame's planes, packed.
std::string packed(const VideoFrame& frame);

} // namespace flowtide::bench
