// The ways to make in-between frames that are measured against each other.
#pragma once

#include "media/video_frame.h"

#include <functional>
#include <span>
#include <string>
#include <vector>

namespace flowtide::bench {

/// What a method gets: kept frames and how many frames are wanted of each pair.
struct FlowTask {
    std::span<const VideoFrame> kept; ///< 8-bit 4:2:0, evenly spaced
    int pairs = 0;                    ///< the first `pairs` pairs of `kept` are filled; frames after them are context
    int step = 2;                     ///< step − 1 frames for each pair, evenly spaced
};

/// What a method made: pairs × (step − 1) frames in order of time, of which luma is filled for certain.
struct InBetweens {
    std::vector<VideoFrame> frames;
    double cpuSeconds = 0; ///< for each frame
};

InBetweens ourFrames(const FlowTask& task);
/// The same frames, handed over one by one, so that whoever takes them decides what is kept.
void eachOfOurFrames(const FlowTask& task, const std::function<void(VideoFrame)>& take);
InBetweens blendedFrames(const FlowTask& task);
InBetweens repeatedFrames(const FlowTask& task);

/// minterpolate's arguments after the frame rate. Of 21 combinations of its options tried on three clips, and the best
/// four of those on all of them, the first makes the frames with the highest mean PSNR and the defaults those with the
/// highest PSNR for their time. Detecting scene changes makes worse ones.
inline constexpr const char* bestPeerMode = "mi_mode=mci:mc_mode=aobmc:me_mode=bidir:mb_size=8:scd=none";
inline constexpr const char* fastPeerMode = "mi_mode=mci:scd=none";

/// FFmpeg's minterpolate. Costs are the process's, less those of the same command that only repeats frames.
struct PeerRun {
    InBetweens made;
    double megabytes = 0; ///< peak, above that of the command that only repeats
};
PeerRun minterpolated(const FlowTask& task, const std::string& mode);

/// Blends luma alone.
VideoFrame blend(const VideoFrame& first, const VideoFrame& second, double share);

} // namespace flowtide::bench
