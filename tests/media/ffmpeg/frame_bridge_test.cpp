// Decoded frames become frames of one layout: untouched where they are in it, else converted as their tags say.
#include "media/ffmpeg/frame_bridge.h"

extern "C" {
#include <libavutil/pixdesc.h>
}

#include <gtest/gtest.h>

#include <cmath>

namespace flowtide::test {
namespace {

using ffmpeg::FrameImporter;
using ffmpeg::FramePtr;

/// A frame of one colour; `samples` fills the planes, or one pixel's bytes in packed formats.
FramePtr flatFrame(AVPixelFormat format, int width, int height, const std::vector<std::uint8_t>& samples) {
    FramePtr frame = ffmpeg::makeFrame();
    frame->format = format;
    frame->width = width;
    frame->height = height;
    if (av_frame_get_buffer(frame.get(), 0) < 0) throw std::bad_alloc();
    const AVPixFmtDescriptor& descriptor = *av_pix_fmt_desc_get(format);
    const bool packed = (descriptor.flags & AV_PIX_FMT_FLAG_PLANAR) == 0;
    for (std::size_t plane = 0; plane < (packed ? 1 : samples.size()); ++plane) {
        const int rows = plane == 0 ? height : AV_CEIL_RSHIFT(height, descriptor.log2_chroma_h);
        for (int i = 0; i < frame->linesize[plane] * rows; ++i) {
            const auto column = static_cast<std::size_t>(i % frame->linesize[plane]);
            frame->data[plane][i] = samples[packed ? column % samples.size() : plane];
        }
    }
    return frame;
}

int sample(const VideoFrame& frame, std::size_t plane, int x, int y) {
    return frame.planes[plane].data[y * frame.planes[plane].stride + x];
}

TEST(FrameImporter, RGBBecomesBT709InEverySize) {
    struct Color {
        double red, green, blue;
    };
    const Color colors[] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 1, 1}, {0, 0, 0}, {0.6, 0.2, 0.4}};
    for (const auto& [width, height] : {std::pair{64, 48}, {64, 640}})
        for (const bool fullRange : {false, true})
            for (const Color& color : colors) {
                const auto code = [](double value) { return static_cast<std::uint8_t>(std::lround(255 * value)); };
                FrameImporter importer({ChromaSubsampling::yuv420, 8, fullRange}, width, height);
                const VideoFrame frame = importer.import(
                    flatFrame(AV_PIX_FMT_RGB24, width, height, {code(color.red), code(color.green), code(color.blue)}));
                const double luma = 0.2126 * color.red + 0.7152 * color.green + 0.0722 * color.blue;
                const double chromaScale = fullRange ? 255 : 224;
                EXPECT_NEAR(sample(frame, 0, 5, 5), fullRange ? 255 * luma : 16 + 219 * luma, 1.01);
                EXPECT_NEAR(sample(frame, 1, 5, 5), 128 + chromaScale * (color.blue - luma) / 1.8556, 1.51);
                EXPECT_NEAR(sample(frame, 2, 5, 5), 128 + chromaScale * (color.red - luma) / 1.5748, 1.51);
            }
}

TEST(FrameImporter, ChromaLiesOnTheLeft) {
    // Half red, half blue: a chroma sample on column 8 lies half a pixel behind the edge, that on column 6 one and a
    // half before it.
    constexpr int edge = 8;
    FramePtr rgb = flatFrame(AV_PIX_FMT_RGB24, 32, 16, {255, 0, 0});
    FramePtr yuv = flatFrame(AV_PIX_FMT_YUV444P, 32, 16, {63, 102, 240});
    FramePtr centered = flatFrame(AV_PIX_FMT_YUV422P, 32, 16, {63, 102, 240});
    centered->chroma_location = AVCHROMA_LOC_CENTER;
    for (int y = 0; y < 16; ++y) {
        for (int x = edge; x < 32; ++x) {
            const std::uint8_t blue[] = {0, 0, 255};
            std::copy(blue, blue + 3, rgb->data[0] + y * rgb->linesize[0] + 3 * x);
            yuv->data[1][y * yuv->linesize[1] + x] = 240;
        }
        for (int x = edge / 2; x < 16; ++x)
            centered->data[1][y * centered->linesize[1] + x] = 240;
    }
    for (FramePtr* frame : {&rgb, &yuv, &centered}) {
        FrameImporter importer({}, 32, 16);
        const VideoFrame imported = importer.import(std::move(*frame));
        EXPECT_LE(std::abs(sample(imported, 1, 3, 4) - 102), 12) << "before the edge";
        EXPECT_GE(std::abs(sample(imported, 1, 4, 4) - 240), 15) << "on it";
        EXPECT_LE(std::abs(sample(imported, 1, 6, 4) - 240), 4) << "behind it";
    }
}

TEST(FrameImporter, RangesAreKeptOrConvertedAsTheFramesSay) {
    // Video range 16...235 and 16...240 stands for what full range 0...255 does.
    const struct {
        AVPixelFormat format;
        AVColorRange range;
        bool fullRange; ///< of the layout
        std::uint8_t luma, chroma;
        double lumaWanted, chromaWanted;
    } cases[] = {
        {AV_PIX_FMT_YUV422P, AVCOL_RANGE_JPEG, true, 250, 10, 250, 10},
        {AV_PIX_FMT_YUVJ422P, AVCOL_RANGE_UNSPECIFIED, true, 4, 251, 4, 251},
        {AV_PIX_FMT_YUV422P, AVCOL_RANGE_MPEG, false, 235, 16, 235, 16},
        {AV_PIX_FMT_YUV422P, AVCOL_RANGE_UNSPECIFIED, false, 16, 240, 16, 240},
        {AV_PIX_FMT_YUV422P, AVCOL_RANGE_JPEG, false, 250, 60, 16 + 250 * 219 / 255.0, 128 - 68 * 224 / 255.0},
        {AV_PIX_FMT_YUVJ422P, AVCOL_RANGE_JPEG, false, 0, 255, 16, 240},
        {AV_PIX_FMT_YUV422P, AVCOL_RANGE_MPEG, true, 235, 240, 255, 255},
    };
    for (const auto& one : cases) {
        FrameImporter importer({ChromaSubsampling::yuv420, 8, one.fullRange}, 64, 48);
        FramePtr frame = flatFrame(one.format, 64, 48, {one.luma, one.chroma, one.chroma});
        frame->color_range = one.range;
        const VideoFrame converted = importer.import(std::move(frame));
        EXPECT_NEAR(sample(converted, 0, 9, 9), one.lumaWanted, 1.01) << &one - cases;
        EXPECT_NEAR(sample(converted, 1, 9, 9), one.chromaWanted, 1.01) << &one - cases;
    }
}

TEST(FrameImporter, FramesInTheLayoutAreSharedNotCopied) {
    FramePtr frame = flatFrame(AV_PIX_FMT_YUV420P, 64, 48, {1, 2, 3});
    const std::uint8_t* luma = frame->data[0];
    FrameImporter importer({}, 64, 48);
    const VideoFrame imported = importer.import(std::move(frame));
    EXPECT_EQ(imported.planes[0].data, luma);
    EXPECT_EQ(imported.width, 64);
    EXPECT_EQ(imported.height, 48);
    // Another size in the middle of a stream is scaled to the clip's.
    const VideoFrame scaled = importer.import(flatFrame(AV_PIX_FMT_YUV420P, 32, 24, {100, 90, 80}));
    EXPECT_EQ(scaled.width, 64);
    EXPECT_NEAR(sample(scaled, 0, 60, 40), 100, 1);
}

TEST(ColorTags, NamesAndCodesMeanTheSame) {
    const ColorProperties tags{"bt2020", "smpte2084", "bt2020nc"};
    const ffmpeg::ColorCodes codes = ffmpeg::colorCodes(tags);
    EXPECT_EQ(codes.primaries, AVCOL_PRI_BT2020);
    EXPECT_EQ(codes.transfer, AVCOL_TRC_SMPTE2084);
    EXPECT_EQ(codes.matrix, AVCOL_SPC_BT2020_NCL);
    EXPECT_EQ(ffmpeg::colorProperties(codes), tags);
    EXPECT_FALSE(ffmpeg::colorProperties({2, 2, 2})); // unspecified
    EXPECT_FALSE(ffmpeg::colorProperties({0, 0, 0})); // reserved
    EXPECT_FALSE(ffmpeg::colorProperties({AVCOL_PRI_NB, 250, -3}));
    EXPECT_EQ(ffmpeg::colorProperties({1, 2, 2}), (ColorProperties{"bt709", std::nullopt, std::nullopt}));
}

} // namespace
} // namespace flowtide::test
