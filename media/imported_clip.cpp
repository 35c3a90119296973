// The rules by which a file's track descriptions become the probe record, or are refused.
#include "media/imported_clip.h"

#include "core/output_size.h"
#include "media/flowtide_error.h"
#include "media/media_io.h"
#include "project/local_file_safety.h"

#include <algorithm>
#include <cctype>
#include <cmath>

namespace flowtide {

namespace {

constexpr double longestDurationSeconds = 31'536'000; // one year
constexpr double highestFrameRate = 1000;
constexpr double defaultFrameRate = 30;
constexpr std::int64_t largestSide = 32'768;
constexpr double highestSampleRate = 768'000;
constexpr std::int64_t mostChannels = 64;

// A track's own sample interval stands only while it tells the same rate as the track does, by the tolerance with
// which exports are compared with their source; otherwise every export of the clip would miss one or the other.
constexpr double frameRateTolerance = 0.01;

AffineTransform affineTransform(const DisplayMatrix& matrix) {
    const auto entry = [&](std::size_t i) { return static_cast<double>(matrix[i]) / 65536.0; };
    return {entry(0), entry(1), entry(3), entry(4), entry(6), entry(7)};
}

std::int64_t roundedSide(double side) {
    return std::llround(std::min(std::abs(side), 1e9));
}

void requireValidVideo(const ImportedClip& clip) {
    const auto sideIsValid = [](std::int64_t side) { return side >= 1 && side <= largestSide; };
    const bool durationIsValid =
        std::isnormal(clip.duration) && clip.duration > 0 && clip.duration <= longestDurationSeconds;
    const bool rateIsValid = std::isfinite(clip.frameRate) && clip.frameRate <= highestFrameRate;
    if (!durationIsValid || !rateIsValid || !sideIsValid(clip.width) || !sideIsValid(clip.height) ||
        !sideIsValid(clip.encodedWidth) || !sideIsValid(clip.encodedHeight))
        throw FlowtideError::writerFailed("This clip has unsupported or invalid video dimensions or timing.");
}

void requireValidAudio(const ImportedClip& clip) {
    const double rate = clip.audioSampleRate.value_or(0);
    const std::int64_t channels = clip.audioChannelCount.value_or(0);
    if (!std::isfinite(rate) || rate < 1 || rate > highestSampleRate || channels < 1 || channels > mostChannels)
        throw FlowtideError::writerFailed("This clip has unsupported or invalid audio properties.");
}

} // namespace

std::string fourCCString(FourCC code) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) {
        const auto byte = static_cast<unsigned char>((code >> shift) & 0xFF);
        text += std::isprint(byte) ? static_cast<char>(byte) : '.';
    }
    return text;
}

std::optional<VideoCodec> videoCodecType(FourCC code) {
    switch (code) {
    case fourCC("hvc1"):
        return VideoCodec::hevc;
    case fourCC("avc1"):
        return VideoCodec::h264;
    case fourCC("ap4h"):
        return VideoCodec::proRes4444;
    case fourCC("apch"):
        return VideoCodec::proRes422HQ;
    case fourCC("apcn"):
        return VideoCodec::proRes422;
    case fourCC("apcs"):
        return VideoCodec::proRes422LT;
    case fourCC("apco"):
        return VideoCodec::proRes422Proxy;
    default:
        return std::nullopt;
    }
}

bool isProRes(VideoCodec codec) {
    return codec != VideoCodec::hevc && codec != VideoCodec::h264;
}

std::string codecLabel(VideoCodec codec) {
    switch (codec) {
    case VideoCodec::h264:
        return "H.264";
    case VideoCodec::proRes4444:
        return "Apple ProRes 4444";
    case VideoCodec::proRes422HQ:
        return "Apple ProRes 422 HQ";
    case VideoCodec::proRes422:
        return "Apple ProRes 422";
    case VideoCodec::proRes422LT:
        return "Apple ProRes 422 LT";
    case VideoCodec::proRes422Proxy:
        return "Apple ProRes 422 Proxy";
    case VideoCodec::hevc:
        break;
    }
    return "HEVC / H.265";
}

FileType fileTypeForPath(const std::filesystem::path& path) {
    std::string extension = path.extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (extension == ".mp4") return FileType::mpeg4;
    if (extension == ".m4v") return FileType::appleM4V;
    return FileType::quickTimeMovie;
}

std::string_view fileTypeName(FileType type) {
    switch (type) {
    case FileType::mpeg4:
        return "MPEG-4";
    case FileType::appleM4V:
        return "Apple M4V";
    case FileType::quickTimeMovie:
        break;
    }
    return "QuickTime movie";
}

bool AffineTransform::isIdentity() const {
    constexpr double tolerance = 1e-6;
    const auto near = [](double value, double wanted) { return std::abs(value - wanted) <= tolerance; };
    return near(a, 1) && near(b, 0) && near(c, 0) && near(d, 1) && near(tx, 0) && near(ty, 0);
}

ImportedClip ImportedClip::load(const MediaBackend& backend, const std::filesystem::path& path) {
    LocalFileSafety::requireRegularFile(path);
    ProbedMedia media = backend.probe(path);
    if (!media.hasVideo) throw FlowtideError::noVideoTrack();

    ImportedClip clip = std::move(media.clip);
    clip.url = path;
    clip.fileType = fileTypeForPath(path);
    if (!(clip.frameRate > 0)) clip.frameRate = defaultFrameRate;
    clip.preferredTransform = affineTransform(clip.displayMatrix);
    const auto& transform = clip.preferredTransform;
    const auto encodedWidth = static_cast<double>(clip.encodedWidth);
    const auto encodedHeight = static_cast<double>(clip.encodedHeight);
    clip.width = roundedSide(encodedWidth * transform.a + encodedHeight * transform.c);
    clip.height = roundedSide(encodedWidth * transform.b + encodedHeight * transform.d);
    requireValidVideo(clip);
    if (clip.hasAudio) requireValidAudio(clip);

    clip.frameDuration = nominalFrameDuration(clip.frameRate);
    if (const auto interval = media.constantSampleInterval;
        interval && interval->numerator > 0 &&
        std::abs(1.0 / interval->seconds() - clip.frameRate) <= frameRateTolerance)
        clip.frameDuration = *interval;
    if (clip.videoCodecFourCC) clip.videoCodecType = flowtide::videoCodecType(*clip.videoCodecFourCC);
    return clip;
}

ImportedClip ImportedClip::previewSized() const {
    constexpr double previewWidth = 1280;
    constexpr double previewHeight = 720;
    const double scale =
        std::min({previewWidth / static_cast<double>(width), previewHeight / static_cast<double>(height), 1.0});
    ImportedClip clip = *this;
    if (scale >= 1) return clip;
    for (std::int64_t* side : {&clip.width, &clip.height, &clip.encodedWidth, &clip.encodedHeight})
        *side = OutputSize::capped(scale, static_cast<double>(*side));
    return clip;
}

std::string ImportedClip::videoCodecDisplayName() const {
    if (!videoCodecFourCC) return "Unknown video codec";
    if (videoCodecType) return codecLabel(*videoCodecType);
    switch (*videoCodecFourCC) {
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
        return "Video codec " + fourCCString(*videoCodecFourCC);
    }
}

} // namespace flowtide
