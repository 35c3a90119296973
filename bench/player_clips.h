// The clips on which players are measured, made with ffmpeg.
#pragma once

#include "bench/scratch_folder.h"

#include <string>
#include <vector>

namespace flowtide::bench {

/// Frames a second of every made clip.
constexpr int playedFrameRate = 30;

struct PlayedClip {
    std::string name;
    std::vector<std::string> encoder; ///< ffmpeg's arguments
};

/// 1080p H.264 at 20 Mb/s, a key frame every 250 frames.
PlayedClip longGroupClip();
/// The same as phones write it, a key frame every second.
PlayedClip phoneClip();
PlayedClip proResClip();
/// 1080p in 10 bits, a key frame every 250 frames.
PlayedClip hevcClip();
/// What a proxy is like: 720p, every frame a key frame, quick to decode.
PlayedClip proxyClip();

/// Encodes `seconds` of a real clip, looped, or of a test picture where that is missing, with a tone. The path, or an
/// empty string when ffmpeg could not do it.
std::string makePlayedClip(const PlayedClip& clip, double seconds, const ScratchFolder& scratch);
/// The same from a file made before.
std::string makeProxy(const std::string& path, const ScratchFolder& scratch);

} // namespace flowtide::bench
