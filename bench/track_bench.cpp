// Follows subjects: in marked footage beside simple peers, or the one in a given box, with pictures to look at.
#include "bench/track_methods.h"
#include "bench/track_sequences.h"
#include "bench/track_strip.h"
#include "core/crop_framing.h"
#include "core/subject_track.h"
#include "media/ffmpeg/ffmpeg_backend.h"
#include "media/tracking/subject_tracking_engine.h"
#include "media/tracking/tracking_messages.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <string>

namespace {

using namespace flowtide;
using namespace flowtide::bench;

struct Method {
    const char* name;
    TrackRun (*run)(const MediaBackend&, const TrackSequence&, bool forwards);
};
constexpr Method methods[] = {{"tracker", runTracker}, {"grey filter", runGreyFilter}, {"box held", runHeldBox}};

void print(const std::string& name, const TrackScore& s) {
    const double jitter = s.jitterCount > 0 ? std::sqrt(s.squaredJitter / s.jitterCount) : 0;
    std::printf("%-30s %7.2f %6.3f %8.1f %6.0f/%-4.0f %6.0f %7.2f %7.2f", name.c_str(), 100 * s.inside / s.visible,
                s.overlap / s.visible, 100 * s.accepted / s.visible, s.falseBoxes, s.absent, s.wrongBoxes,
                s.keyframes / s.seconds, jitter);
    if (s.cpuSeconds > 0) std::printf(" %6.2f", 1000 * s.cpuSeconds / s.frames);
    std::printf("\n");
}

int compare(const std::filesystem::path& clips) {
    const auto backend = makeFFmpegBackend();
    const auto sequences = trackSequences(*backend, clips / "track");
    if (sequences.empty()) {
        std::printf("No marked footage in %s\n", (clips / "track").c_str());
        return 0;
    }
    for (const Method& method : methods) {
        std::printf("%-30s inside%%    AUC accepted%%  absent   wrong   kf/s  jitter     ms\n", method.name);
        TrackScore total;
        for (const bool forwards : {true, false}) {
            TrackScore direction;
            for (const TrackSequence& sequence : sequences) {
                const TrackScore one = score(sequence, method.run(*backend, sequence, forwards));
                print((forwards ? "> " : "< ") + sequence.name, one);
                direction.add(one);
            }
            print(forwards ? "forwards" : "backwards", direction);
            total.add(direction);
        }
        print("total", total);
        std::printf("\n");
    }
    const auto path = clips / "camera/cam_h264_1080p5994_untagged_noaudio.mp4";
    if (std::filesystem::exists(path)) {
        const auto clip = ImportedClip::load(*backend, path);
        const TrackCost cost = trackCost(*backend, clip, {0.4, 0.4, 0.15, 0.25}, clip.duration / 2);
        std::printf("CPU a frame, decoding apart: %.2f ms from 1080p, %.2f ms at 640 (limit 6 ms: %.2f)\n", cost.whole,
                    cost.whole - cost.reduction, cost.whole / 6);
    }
    return 0;
}

int followOne(const char* const* words, const std::string& picture) {
    const auto backend = makeFFmpegBackend();
    const auto clip = ImportedClip::load(*backend, words[0]);
    const auto number = [&](int i) { return std::strtod(words[i], nullptr); };
    const auto width = static_cast<double>(clip.width);
    const auto height = static_cast<double>(clip.height);
    const SubjectBox box{number(1) / width, number(2) / height, number(3) / width, number(4) / height};
    std::vector<tracking::Sighting> sightings;
    SubjectTrackingCallbacks callbacks;
    callbacks.sighted = [&](const tracking::Sighting& sighting) { sightings.push_back(sighting); };
    const SubjectTrackResult result =
        SubjectTrackingEngine(*backend).track(clip, SourceSeconds{number(5)}, box, {0, clip.duration}, callbacks);
    const double crop = widthOverHeight(CropAspectRatio::nineBySixteen) * height / width;
    const SpeedKeyframes keyframes = result.keyframes(crop);

    std::printf("samples\n");
    for (const auto& sample : result.samples)
        std::printf("%9.4f %.4f\n", sample.time, sample.centerX);
    std::printf("ranges\n");
    for (const auto& range : result.trackedRanges(clip.frameDuration.seconds(), {0, clip.duration}))
        std::printf("%9.4f %9.4f%s%s, last frame %.4f\n", range.start, range.end,
                    range.lostBefore ? ", lost before" : "", range.lostAfter ? ", lost after" : "",
                    range.lastFrameTime);
    std::printf("keyframes (seconds:centre of the crop)\n");
    for (const auto& keyframe : keyframes)
        std::printf("%s%.4f:%.4f", &keyframe == keyframes.data() ? "" : ",", keyframe.time, keyframe.speed);
    std::printf("\n%s\n", tracking::finishedMessage(result, keyframes.size(), "Ctrl+Z").c_str());
    writeStrip(picture, *backend, clip, sightings, keyframes, crop);
    std::printf("Pictures: %s\n", picture.c_str());
    return 0;
}

} // namespace

int main(int count, char** words) {
    try {
        if (count == 1) return compare(FLOWTIDE_CLIPS);
        if (count == 7 || count == 8) return followOne(words + 1, count == 8 ? words[7] : "track.ppm");
        std::fprintf(stderr, "usage: ./measure track [CLIP X Y WIDTH HEIGHT SECONDS [STRIP.ppm]]\n"
                             "The box is in pixels of the frame as displayed.\n");
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
    }
    return 1;
}
