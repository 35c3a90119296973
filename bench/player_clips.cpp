// Encoding with ffmpeg.
#include "bench/player_clips.h"

#include "bench/peer_process.h"

#include <filesystem>

namespace flowtide::bench {

namespace {

bool encode(const std::vector<std::string>& input, const std::vector<std::string>& encoder, const std::string& path) {
    std::vector<std::string> words{"ffmpeg", "-y"};
    words.insert(words.end(), input.begin(), input.end());
    words.insert(words.end(), encoder.begin(), encoder.end());
    words.push_back(path);
    return runProcess(words).succeeded;
}

PlayedClip h264Clip(const std::string& keyInterval) {
    return {"H.264, keyint " + keyInterval,
            {"-vf", "scale=1920:1080,format=yuv420p", "-c:v", "libx264", "-preset", "veryfast", "-b:v", "20M", "-g",
             keyInterval, "-keyint_min", keyInterval, "-sc_threshold", "0"}};
}

} // namespace

PlayedClip longGroupClip() {
    return h264Clip("250");
}

PlayedClip phoneClip() {
    return h264Clip("30");
}

PlayedClip proResClip() {
    return {"ProRes 422", {"-vf", "scale=1920:1080,format=yuv422p10le", "-c:v", "prores_ks", "-profile:v", "2"}};
}

PlayedClip hevcClip() {
    return {"HEVC 10-bit, keyint 250",
            {"-vf", "scale=1920:1080,format=yuv420p10le", "-c:v", "libx265", "-preset", "ultrafast", "-b:v", "10M",
             "-tag:v", "hvc1", "-x265-params", "keyint=250:min-keyint=250:scenecut=0:log-level=none"}};
}

PlayedClip proxyClip() {
    return {"proxy",
            {"-vf", "scale=1280:720,format=yuv420p", "-c:v", "libx264", "-preset", "veryfast", "-tune", "fastdecode",
             "-b:v", "10M", "-g", "1"}};
}

std::string makePlayedClip(const PlayedClip& clip, double seconds, const ScratchFolder& scratch) {
    const std::string source = FLOWTIDE_BENCH_CLIP;
    const std::string rate = std::to_string(playedFrameRate);
    const std::string length = std::to_string(seconds);
    std::vector<std::string> input;
    if (std::filesystem::exists(source))
        input = {"-stream_loop", "-1", "-r", rate, "-i", source};
    else
        input = {"-f", "lavfi", "-i", "testsrc2=s=1920x1080:r=" + rate};
    input.insert(input.end(), {"-f", "lavfi", "-i", "sine=frequency=330:sample_rate=48000", "-map", "0:v", "-map",
                               "1:a", "-c:a", "aac", "-t", length});
    std::string path = scratch / (clip.encoder[3] + ".mov");
    return encode(input, clip.encoder, path) ? path : std::string();
}

std::string makeProxy(const std::string& path, const ScratchFolder& scratch) {
    std::string proxy = scratch / (std::filesystem::path(path).stem().string() + "-proxy.mov");
    return encode({"-i", path, "-an"}, proxyClip().encoder, proxy) ? proxy : std::string();
}

} // namespace flowtide::bench
