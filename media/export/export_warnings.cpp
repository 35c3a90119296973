// The comparison of a source with the settings of its export.
#include "media/export/export_warnings.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace flowtide {

namespace {

std::string_view ratioName(ChromaSubsampling chroma) {
    switch (chroma) {
    case ChromaSubsampling::yuv444:
        return "4:4:4";
    case ChromaSubsampling::yuv422:
        return "4:2:2";
    case ChromaSubsampling::yuv420:
        break;
    }
    return "4:2:0";
}

/// Chroma samples in four pixels of two rows.
int chromaSamples(ChromaSubsampling chroma) {
    return chroma == ChromaSubsampling::yuv444 ? 8 : chroma == ChromaSubsampling::yuv422 ? 4 : 2;
}

void warnOfPictures(const VideoTrack& track, PixelLayout layout, std::vector<std::string>& warnings) {
    if (track.hasAlpha) warnings.emplace_back("the source's alpha channel is not kept; the export is opaque.");
    if (track.isRGB)
        warnings.push_back(fmt::format("the source's RGB pictures are written as YCbCr {}.", ratioName(layout.chroma)));
    else if (track.chroma && chromaSamples(*track.chroma) > chromaSamples(layout.chroma))
        warnings.push_back(fmt::format("the source's {} chroma is written as {}.", ratioName(*track.chroma),
                                       ratioName(layout.chroma)));
    if (track.isInterlaced)
        warnings.emplace_back("the source is interlaced; its fields are written together as progressive frames.");
    if (track.hasHDR10Plus) warnings.emplace_back("the source's HDR10+ metadata is not carried into the export.");
    if (track.hasDolbyVision)
        warnings.emplace_back("the source's Dolby Vision metadata is not carried into the export.");
}

void warnOfStreams(const std::vector<UncarriedStream>& streams, std::vector<std::string>& warnings) {
    using Kind = UncarriedStream::Kind;
    struct Name {
        Kind kind;
        const char* one;
        const char* several;
    };
    constexpr std::array names{Name{Kind::video, "further video track", "further video tracks"},
                               Name{Kind::sound, "further sound track", "further sound tracks"},
                               Name{Kind::subtitles, "subtitle track", "subtitle tracks"},
                               Name{Kind::timecode, "timecode track", "timecode tracks"},
                               Name{Kind::coverPicture, "cover picture", "cover pictures"},
                               Name{Kind::data, "data track", "data tracks"}};
    const auto countOf = [&](Kind kind) { return std::ranges::count(streams, kind, &UncarriedStream::kind); };
    for (const auto& [kind, one, several] : names)
        if (const auto count = countOf(kind); count == 1)
            warnings.push_back(fmt::format("the source's {} is not carried into the export.", one));
        else if (count > 1)
            warnings.push_back(fmt::format("the source's {} {} are not carried into the export.", count, several));
    if (countOf(Kind::chapters) > 0) warnings.emplace_back("the source's chapters are not carried into the export.");
}

} // namespace

std::vector<std::string> exportWarnings(const ImportedClip& source, const VideoSettings& video,
                                        const std::optional<AudioSettings>& audio) {
    std::vector<std::string> warnings;
    if (!source.videoCodecType)
        warnings.push_back(fmt::format("{} cannot be source-matched; an HEVC / H.265 fallback is required and may "
                                       "still fail if AVFoundation cannot decode the source.",
                                       source.videoCodecDisplayName()));
    warnOfPictures(source.video, video.layout, warnings);
    const bool isLossless =
        source.audio && (source.audio->isLosslesslyCompressed || source.audio->formatID == linearPCM);
    if (isLossless && audio && audio->format == aac)
        warnings.emplace_back("the source's lossless sound is written as AAC.");
    warnOfStreams(source.uncarriedStreams, warnings);
    return warnings;
}

} // namespace flowtide
