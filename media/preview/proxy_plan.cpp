// Sizes, rates and formats of proxies.
#include "media/preview/proxy_plan.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace flowtide {

namespace {

constexpr double largestWidth = 1280;
constexpr double largestHeight = 720;
constexpr std::int64_t smallestSide = 2;

constexpr std::int64_t videoBitRate = 10'000'000; // bits per second
constexpr std::int64_t audioBitRate = 160'000;
constexpr double usualSampleRate = 48'000;

// The rates that AAC has, ISO/IEC 14496-3, table 1.18.
constexpr std::array aacSampleRates{96'000, 88'200, 64'000, 48'000, 44'100, 32'000, 24'000,
                                    22'050, 16'000, 12'000, 11'025, 8'000,  7'350};

double scaleOf(const ImportedClip& clip) {
    const auto width = static_cast<double>(std::max<std::int64_t>(clip.width, 1));
    const auto height = static_cast<double>(std::max<std::int64_t>(clip.height, 1));
    return std::min({largestWidth / width, largestHeight / height, 1.0});
}

std::int64_t scaledSide(std::int64_t side, double scale) {
    return std::max<std::int64_t>(std::llround(static_cast<double>(side) * scale), smallestSide);
}

/// 4:2:0 needs even sides.
std::int64_t evenSide(std::int64_t side) {
    return side - side % 2;
}

/// The matrix moves the turned picture back into view, by as many pixels as it is wide or high.
DisplayMatrix scaledMatrix(const ImportedClip& clip) {
    constexpr std::size_t xTranslation = 6;
    constexpr std::size_t yTranslation = 7;
    DisplayMatrix matrix = clip.video.displayMatrix;
    const double widthRatio = static_cast<double>(evenSide(scaledSide(clip.width, scaleOf(clip)))) /
                              static_cast<double>(std::max<std::int64_t>(clip.width, 1));
    const double heightRatio = static_cast<double>(evenSide(scaledSide(clip.height, scaleOf(clip)))) /
                               static_cast<double>(std::max<std::int64_t>(clip.height, 1));
    // A proxy is never larger than its source, so the products fit.
    matrix[xTranslation] = static_cast<std::int32_t>(std::lround(matrix[xTranslation] * std::min(widthRatio, 1.0)));
    matrix[yTranslation] = static_cast<std::int32_t>(std::lround(matrix[yTranslation] * std::min(heightRatio, 1.0)));
    return matrix;
}

double aacRate(double sampleRate) {
    const bool exists =
        std::find(aacSampleRates.begin(), aacSampleRates.end(), std::lround(sampleRate)) != aacSampleRates.end();
    return exists ? sampleRate : usualSampleRate;
}

} // namespace

OutputSize proxySize(const ImportedClip& clip) {
    const double scale = scaleOf(clip);
    return {scaledSide(clip.width, scale), scaledSide(clip.height, scale)};
}

ProxyPlan planProxy(const ImportedClip& clip) {
    const double scale = scaleOf(clip);
    ProxyPlan plan;
    plan.source = clip;
    plan.source.video.encodedWidth = evenSide(scaledSide(clip.encodedWidth(), scale));
    plan.source.video.encodedHeight = evenSide(scaledSide(clip.encodedHeight(), scale));

    VideoSettings& video = plan.video;
    video.purpose = EncodingPurpose::scrubbing;
    video.codec = VideoCodec::h264;
    video.width = static_cast<int>(plan.source.encodedWidth());
    video.height = static_cast<int>(plan.source.encodedHeight());
    video.frameDuration = clip.frameDuration;
    video.timeBase = clip.video.timeBase;
    video.layout = {ChromaSubsampling::yuv420, 8, clip.videoIsFullRange()};
    video.color = clip.videoColorProperties();
    video.averageBitRate = videoBitRate;
    video.expectedDuration = clip.duration;
    video.displayMatrix = scaledMatrix(clip);

    plan.metadata = clip.metadata;
    plan.metadata.tags.clear();
    if (clip.audio) {
        AudioSettings& audio = plan.audio.emplace();
        audio.format = aac;
        audio.sampleRate = aacRate(clip.audio->sampleRate);
        audio.channels = static_cast<int>(clip.audio->channelCount);
        audio.channelLayout = clip.audio->channelLayout;
        audio.bitRate = audioBitRate;
        plan.source.audio->sampleRate = audio.sampleRate;
    }
    return plan;
}

} // namespace flowtide
