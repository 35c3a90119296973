// Whatever an export does not keep is told once, and nothing else is.
#include "media/export/export_settings.h"
#include "media/export/export_warnings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

namespace flowtide::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Kind = UncarriedStream::Kind;

ImportedClip clipAs(FourCC codec, std::int64_t depth, ChromaSubsampling chroma, FourCC sound) {
    ImportedClip clip;
    clip.video.codec = codec;
    clip.videoCodecType = videoCodecType(codec);
    clip.video.bitDepth = depth;
    clip.video.chroma = chroma;
    clip.audio.emplace();
    clip.audio->formatID = sound;
    clip.audio->sampleRate = 48'000;
    clip.audio->channelCount = 2;
    return clip;
}

std::vector<std::string> warnings(const ImportedClip& clip) {
    return exportWarnings(clip, videoSettings(clip, outputCodec(clip), {64, 48}, 1),
                          clip.audio ? std::optional(audioSettings(clip, clip.fileType)) : std::nullopt);
}

TEST(ExportWarnings, WhatIsKeptIsNotMentioned) {
    EXPECT_THAT(warnings(clipAs(fourCC("avc1"), 8, ChromaSubsampling::yuv420, aac)), IsEmpty());
    EXPECT_THAT(warnings(clipAs(fourCC("apch"), 10, ChromaSubsampling::yuv422, linearPCM)), IsEmpty());
    EXPECT_THAT(warnings(clipAs(fourCC("ap4h"), 12, ChromaSubsampling::yuv444, linearPCM)), IsEmpty());
    ImportedClip grey = clipAs(fourCC("avc1"), 8, ChromaSubsampling::yuv420, fourCC(".mp3"));
    grey.video.chroma.reset();
    EXPECT_THAT(warnings(grey), IsEmpty());
}

TEST(ExportWarnings, EachLossHasItsSentence) {
    const struct {
        std::function<void(ImportedClip&)> change;
        const char* sentence;
    } cases[] = {
        {[](auto& c) { c.video.chroma = ChromaSubsampling::yuv422; }, "the source's 4:2:2 chroma is written as 4:2:0."},
        {[](auto& c) { c.video.chroma = ChromaSubsampling::yuv444; }, "the source's 4:4:4 chroma is written as 4:2:0."},
        {[](auto& c) {
             c.video.chroma = ChromaSubsampling::yuv444;
             c.video.isRGB = true;
         },
         "the source's RGB pictures are written as YCbCr 4:2:0."},
        {[](auto& c) { c.video.isInterlaced = true; },
         "the source is interlaced; its fields are written together as progressive frames."},
        {[](auto& c) { c.video.hasAlpha = true; }, "the source's alpha channel is not kept; the export is opaque."},
        {[](auto& c) { c.video.hasHDR10Plus = true; }, "the source's HDR10+ metadata is not carried into the export."},
        {[](auto& c) { c.video.hasDolbyVision = true; },
         "the source's Dolby Vision metadata is not carried into the export."},
        {[](auto& c) { c.audio->isLosslesslyCompressed = true; }, "the source's lossless sound is written as AAC."},
        {[](auto& c) {
             c.audio->formatID = linearPCM;
             c.fileType = FileType::mpeg4;
         },
         "the source's lossless sound is written as AAC."},
        {[](auto& c) {
             c.videoCodecType.reset();
             c.video.codec = fourCC("jpeg");
         },
         "Motion JPEG (jpeg) cannot be source-matched; an HEVC / H.265 fallback is required and may still fail if "
         "AVFoundation cannot decode the source."},
        {[](auto& c) {
             c.uncarriedStreams = {{Kind::sound, aac}};
         },
         "the source's further sound track is not carried into the export."},
        {[](auto& c) {
             c.uncarriedStreams = {{Kind::timecode, {}}};
         },
         "the source's timecode track is not carried into the export."},
        {[](auto& c) {
             c.uncarriedStreams = {{Kind::chapters, {}}};
         },
         "the source's chapters are not carried into the export."},
        {[](auto& c) {
             c.uncarriedStreams = {{Kind::coverPicture, {}}};
         },
         "the source's cover picture is not carried into the export."},
    };
    for (const auto& [change, sentence] : cases) {
        ImportedClip clip = clipAs(fourCC("avc1"), 8, ChromaSubsampling::yuv420, aac);
        change(clip);
        EXPECT_THAT(warnings(clip), ElementsAre(sentence));
    }
}

TEST(ExportWarnings, StreamsOfAKindShareASentence) {
    ImportedClip clip = clipAs(fourCC("avc1"), 8, ChromaSubsampling::yuv420, aac);
    clip.uncarriedStreams = {{Kind::data, {}}, {Kind::sound, aac},    {Kind::subtitles, {}}, {Kind::sound, aac},
                             {Kind::data, {}}, {Kind::subtitles, {}}, {Kind::video, {}},     {Kind::data, {}}};
    EXPECT_THAT(warnings(clip), ElementsAre("the source's further video track is not carried into the export.",
                                            "the source's 2 further sound tracks are not carried into the export.",
                                            "the source's 2 subtitle tracks are not carried into the export.",
                                            "the source's 3 data tracks are not carried into the export."));
}

} // namespace
} // namespace flowtide::test
