// The rules by which a file's track descriptions become the probe record, or are refused.
#include "media/imported_clip.h"

#include "core/output_size.h"
#include "media/flowtide_error.h"
#include "media/media_io.h"
#include "project/files/local_file_safety.h"

#include <algorithm>
#include <cmath>

namespace flowtide {

namespace {

constexpr double longestDurationSeconds = 31'536'000; // one year
constexpr double highestFrameRate = 1000;
constexpr double defaultFrameRate = 30;
constexpr std::int64_t largestSide = 32'768;
constexpr double highestSampleRate = 768'000;
constexpr std::int64_t mostChannels = 64;

std::int64_t roundedSide(double side) {
    return std::llround(std::min(std::abs(side), 1e9));
}

void requireValidVideo(const ImportedClip& clip) {
    const auto sideIsValid = [](std::int64_t side) { return side >= 1 && side <= largestSide; };
    const bool durationIsValid =
        std::isnormal(clip.duration) && clip.duration > 0 && clip.duration <= longestDurationSeconds;
    const bool rateIsValid = std::isfinite(clip.frameRate) && clip.frameRate <= highestFrameRate;
    if (!durationIsValid || !rateIsValid || !sideIsValid(clip.width) || !sideIsValid(clip.height) ||
        !sideIsValid(clip.encodedWidth()) || !sideIsValid(clip.encodedHeight()))
        throw FlowtideError::writerFailed("This clip has unsupported or invalid video dimensions or timing.");
}

void requireValidAudio(const AudioTrack& track) {
    const double rate = track.sampleRate;
    if (!std::isfinite(rate) || rate < 1 || rate > highestSampleRate || track.channelCount < 1 ||
        track.channelCount > mostChannels)
        throw FlowtideError::writerFailed("This clip has unsupported or invalid audio properties.");
}

} // namespace

ImportedClip ImportedClip::load(const MediaBackend& backend, const std::filesystem::path& path) {
    LocalFileSafety::requireRegularFile(path);
    ProbedMedia media = backend.probe(path);
    if (!media.video) throw FlowtideError::noVideoTrack();

    ImportedClip clip;
    clip.url = path;
    clip.duration = media.duration;
    clip.fileType = fileTypeForPath(path);
    clip.video = std::move(*media.video);
    clip.audio = std::move(media.audio);
    clip.uncarriedStreams = std::move(media.uncarriedStreams);
    clip.metadata = std::move(media.metadata);
    clip.frameRate = clip.video.nominalFrameRate > 0 ? clip.video.nominalFrameRate : defaultFrameRate;
    clip.preferredTransform = affineTransform(clip.video.displayMatrix);
    const auto& transform = clip.preferredTransform;
    const auto encodedWidth = static_cast<double>(clip.encodedWidth());
    const auto encodedHeight = static_cast<double>(clip.encodedHeight());
    clip.width = roundedSide(encodedWidth * transform.a + encodedHeight * transform.c);
    clip.height = roundedSide(encodedWidth * transform.b + encodedHeight * transform.d);
    requireValidVideo(clip);
    if (clip.audio) requireValidAudio(*clip.audio);

    clip.frameDuration = nominalFrameDuration(clip.frameRate);
    // The track's own sample interval stands only while it tells the same rate as the track does, as exports are
    // compared with their source by both: otherwise every export of the clip would miss one or the other.
    if (const auto interval = clip.video.constantSampleInterval;
        interval && interval->numerator > 0 &&
        std::abs(1.0 / interval->seconds() - clip.frameRate) <= frameRateTolerance)
        clip.frameDuration = *interval;
    if (clip.video.codec) clip.videoCodecType = flowtide::videoCodecType(*clip.video.codec);
    return clip;
}

ImportedClip ImportedClip::previewSized() const {
    constexpr double previewWidth = 1280;
    constexpr double previewHeight = 720;
    const double scale =
        std::min({previewWidth / static_cast<double>(width), previewHeight / static_cast<double>(height), 1.0});
    ImportedClip clip = *this;
    if (scale >= 1) return clip;
    for (std::int64_t* side : {&clip.width, &clip.height, &clip.video.encodedWidth, &clip.video.encodedHeight})
        *side = OutputSize::capped(scale, static_cast<double>(*side));
    return clip;
}

std::string ImportedClip::videoCodecDisplayName() const {
    if (!video.codec) return "Unknown video codec";
    if (videoCodecType) return codecLabel(*videoCodecType);
    switch (*video.codec) {
    case fourCC("muxa"):
        return "HEVC with alpha";
    case fourCC("av01"):
        return "AV1 (av01)";
    case fourCC("vp09"):
        return "VP9 (vp09)";
    case fourCC("mp4v"):
        return "MPEG-4 Video (mp4v)";
    case fourCC("jpeg"):
        return "Motion JPEG (jpeg)";
    default:
        return "Video codec " + fourCCString(*video.codec);
    }
}

} // namespace flowtide
