// Zoom to the hundredth of a pixel and crop to the pixel, on frames and through whole exports.
#include "core/curve_engine.h"
#include "media/export/export_engine.h"
#include "media/export/temporary_export.h"
#include "media/ffmpeg/ffmpeg_backend.h"
#include "media/flowtide_error.h"
#include "media/frames/crop_zoom_renderer.h"
#include "tests/support/clip_maker.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/zoom_chart.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <random>

namespace flowtide::test {
namespace {

constexpr PixelLayout layouts[] = {
    {ChromaSubsampling::yuv420, 8, false},  {ChromaSubsampling::yuv420, 8, true},
    {ChromaSubsampling::yuv420, 10, false}, {ChromaSubsampling::yuv422, 10, false},
    {ChromaSubsampling::yuv444, 10, false},
};

// Soft enough for chroma, which samples the chart half as often.
constexpr double chromaSoftness = 2.8;

/// RMS distance of the measured edges of a plane from where a zoom must put them.
double edgeError(const ZoomChart& chart, const VideoFrame& frame, std::size_t plane, const PictureRect& rect) {
    const double zoom = frame.width / rect.width;
    double sum = 0;
    int count = 0;
    const int rowStep = plane == 0 ? 1 : 1 << frame.layout.verticalChromaShift();
    for (int row = 3; row + 3 < planeHeight(frame.layout, frame.height, plane); row += 5) {
        const double sourceY = rect.top + (row + 0.5) * rowStep / zoom;
        for (int number = 0; number < 12; ++number) {
            const double expected = (chart.edge(number, sourceY) - rect.left) * zoom;
            if (expected < 12 || expected > frame.width - 12) continue;
            const double error = crossingNear(chart, frame, plane, row, expected) - expected;
            sum += error * error;
            ++count;
        }
    }
    return count > 0 ? std::sqrt(sum / count) : std::nan("");
}

TEST(ZoomScaler, EdgesGlideInEveryPlaneAndLayout) {
    for (const auto& layout : layouts) {
        ZoomChart charts[3];
        charts[1].softness = charts[2].softness = chromaSoftness;
        const VideoFrame sources[] = {charts[0].frame(layout, 641, 361), charts[1].frame(layout, 641, 361)};
        ZoomScaler scaler;
        for (const double zoom : {1.003, 1.1, 1.37, 2.0, 3.9})
            for (const double focalX : {0.0, 0.31, 1.0}) {
                const double hidden = 1 - 1 / zoom;
                const PictureRect rect{focalX * 641 * hidden, 0.7 * 361 * hidden, 641 / zoom, 361 / zoom};
                const VideoFrame luma = scaler.scale(sources[0], rect, 641, 361);
                const VideoFrame chroma = scaler.scale(sources[1], rect, 641, 361);
                for (std::size_t plane = 0; plane < 3; ++plane) {
                    // A twentieth of a pixel of the plane itself.
                    const double bound = plane == 0 ? 0.05 : 0.05 * (1 << layout.horizontalChromaShift());
                    EXPECT_LT(edgeError(charts[plane], plane == 0 ? luma : chroma, plane, rect), bound)
                        << layout.bitDepth << " " << static_cast<int>(layout.chroma) << " ×" << zoom << " " << focalX
                        << " plane " << plane;
                }
            }
    }
}

TEST(ZoomScaler, FlatAreasKeepTheirValueAndScaleOneChangesNothing) {
    for (const auto& layout : layouts) {
        ZoomChart flat;
        for (const double level : {16.0, 60.0, 235.0}) {
            flat.dark = flat.bright = level;
            ZoomScaler scaler;
            const VideoFrame zoomed = scaler.scale(flat.frame(layout, 320, 180), {11.3, 7.7, 201.1, 113.1}, 320, 180);
            for (std::size_t plane = 0; plane < 3; ++plane)
                for (int row = 0; row < planeHeight(layout, 180, plane); row += 7)
                    for (int column = 0; column < planeWidth(layout, 320, plane); column += 3)
                        ASSERT_LT(std::abs(sampleOf(zoomed, plane, column, row) - level), 0.5);
        }
        const ZoomChart chart;
        const VideoFrame source = chart.frame(layout, 320, 180);
        ZoomScaler scaler;
        const VideoFrame same = scaler.scale(source, {0, 0, 320, 180}, 320, 180);
        for (std::size_t plane = 0; plane < 3; ++plane)
            for (int row = 0; row < planeHeight(layout, 180, plane); ++row)
                ASSERT_EQ(
                    std::memcmp(same.planes[plane].data + row * same.planes[plane].stride,
                                source.planes[plane].data + row * source.planes[plane].stride,
                                static_cast<std::size_t>(planeWidth(layout, 320, plane) * layout.bytesPerSample())),
                    0);
    }
}

TEST(CropZoomRenderer, CropViewsShareMemoryAndNeutralFramesPassThrough) {
    FramingPlan plan;
    plan.zooms.resize(2);
    plan.zooms[1].scale = 2;
    const VideoFrame frame = ZoomChart().frame(layouts[0], 320, 180);
    CropZoomRenderer plain(plan);
    EXPECT_EQ(plain.render(frame, {0}, 0).planes[0].data, frame.planes[0].data);
    EXPECT_NE(plain.render(frame, {0}, 1).planes[0].data, frame.planes[0].data);
    const VideoFrame view = croppedView(frame, 10, 100, 180);
    EXPECT_EQ(view.planes[0].data, frame.planes[0].data + 10);
    EXPECT_EQ(view.planes[1].data, frame.planes[1].data + 5);
    EXPECT_EQ(view.width, 100);
}

TEST(CropZoomRenderer, FocalPointsAreMeantAsDisplayed) {
    using ZoomEngine::FocalPoint;
    const auto near = [](FocalPoint got, FocalPoint wanted) {
        return std::abs(got.x - wanted.x) < 1e-9 && std::abs(got.y - wanted.y) < 1e-9;
    };
    const FocalPoint topLeft{0.1, 0.2};
    EXPECT_TRUE(near(encodedFocal(topLeft, {}, 1920, 1080), topLeft));
    // A quarter turn clockwise, as phones store it, with and without the translation that brings it back on screen.
    EXPECT_TRUE(near(encodedFocal(topLeft, {0, 1, -1, 0, 1080, 0}, 1920, 1080), {0.2, 0.9}));
    EXPECT_TRUE(near(encodedFocal(topLeft, {0, 1, -1, 0, 0, 0}, 1920, 1080), {0.2, 0.9}));
    EXPECT_TRUE(near(encodedFocal(topLeft, {0, -1, 1, 0, 0, 1920}, 1920, 1080), {0.8, 0.1}));
    EXPECT_TRUE(near(encodedFocal(topLeft, {-1, 0, 0, -1, 1920, 1080}, 1920, 1080), {0.9, 0.8}));
    // Any other turn and slant: an encoded point's place in the box around the displayed picture leads back to it.
    for (const AffineTransform& t :
         {AffineTransform{0.8, 0.6, -0.6, 0.8, 0, 0}, {-0.5, 0.9, -0.7, -0.4, 30, 70}, {1.1, -0.3, 0.2, 0.9, 0, 0}}) {
        const FocalPoint encoded{0.3, 0.65};
        double left = 1e9, right = -1e9, top = 1e9, bottom = -1e9;
        const auto x = [&](double u, double v) { return t.a * u * 1920 + t.c * v * 1080; };
        const auto y = [&](double u, double v) { return t.b * u * 1920 + t.d * v * 1080; };
        for (const double u : {0.0, 1.0})
            for (const double v : {0.0, 1.0}) {
                left = std::min(left, x(u, v));
                right = std::max(right, x(u, v));
                top = std::min(top, y(u, v));
                bottom = std::max(bottom, y(u, v));
            }
        const FocalPoint displayed{(x(encoded.x, encoded.y) - left) / (right - left),
                                   (y(encoded.x, encoded.y) - top) / (bottom - top)};
        EXPECT_TRUE(near(encodedFocal(displayed, t, 1920, 1080), encoded)) << t.a;
    }
    // The box's corners lie outside a slanted picture; its edge is taken.
    const AffineTransform slanted{0.8, 0.6, -0.6, 0.8, 0, 0};
    const std::pair<FocalPoint, FocalPoint> corners[] = {
        {{1, 0}, {0.64, 0}}, {{0, 1}, {0.36, 1}}, {{1, 1}, {1, 0.64}}, {{0, 0}, {0, 0.36}}};
    for (const auto& [displayed, encoded] : corners)
        EXPECT_TRUE(near(encodedFocal(displayed, slanted, 1000, 1000), encoded)) << encoded.x;
}

class FramingExportTest : public testing::Test {
protected:
    /// A clip that shows one picture in every frame.
    ImportedClip makeStill(const char* name, const VideoFrame& picture, VideoCodec codec, std::int64_t frameCount,
                           const DisplayMatrix& matrix = identityDisplayMatrix) {
        TemporaryExport file(folder_ / name);
        const auto writer = backend_->createMovie(file, fileTypeForPath(name), {});
        VideoSettings video;
        video.codec = codec;
        video.width = picture.width;
        video.height = picture.height;
        video.frameDuration = {1, 25};
        video.layout = picture.layout;
        video.displayMatrix = matrix;
        if (!isProRes(codec)) video.averageBitRate = 30'000'000;
        video.expectedDuration = static_cast<double>(frameCount) / 25;
        writer->addVideo(video);
        writer->start();
        for (std::int64_t i = 0; i < frameCount; ++i)
            writer->appendVideo(picture, i, 1);
        writer->finishVideo();
        writer->finish();
        file.moveIntoPlace();
        return ImportedClip::load(*backend_, folder_ / name);
    }

    ImportedClip exported(ExportRequest request) {
        request.outputURL = folder_.path() / ("out" + request.clip.url.extension().string());
        log_.clear();
        ExportEngine(*backend_, [this](std::string_view line) {
            log_ += std::string(line) + "\n";
        }).run(request, [](double) {});
        return ImportedClip::load(*backend_, request.outputURL);
    }

    std::vector<VideoFrame> framesOf(const ImportedClip& clip, PixelLayout layout) {
        const auto reader = backend_->openVideo(clip, layout, {0, clip.duration});
        std::vector<VideoFrame> frames;
        while (auto frame = reader->next())
            frames.push_back(frame->frame);
        return frames;
    }

    std::unique_ptr<MediaBackend> backend_ = makeFFmpegBackend();
    TemporaryFolder folder_;
    std::string log_;
};

/// A ruler: columns in pairs of random brightness, so that every even offset has a pattern of its own; chroma likewise.
VideoFrame ruler(PixelLayout layout, int width, int height) {
    std::mt19937 random(11);
    std::vector<double> levels(static_cast<std::size_t>(width / 8 + 1));
    for (double& level : levels)
        level = random() % 2 ? 190 : 60;
    ZoomChart none;
    VideoFrame frame = none.frame(layout, width, height);
    for (std::size_t plane = 0; plane < 3; ++plane) {
        const int step = plane == 0 ? 1 : 1 << layout.horizontalChromaShift();
        for (int row = 0; row < planeHeight(layout, height, plane); ++row)
            for (int column = 0; column < planeWidth(layout, width, plane); ++column) {
                const auto code = static_cast<unsigned>(levels[static_cast<std::size_t>(column * step / 8)]) *
                                  (1U << (layout.bitDepth - 8));
                auto* line = const_cast<std::uint8_t*>(frame.planes[plane].data) + row * frame.planes[plane].stride;
                if (layout.bytesPerSample() == 1) {
                    line[column] = static_cast<std::uint8_t>(code);
                } else {
                    line[2 * column] = static_cast<std::uint8_t>(code & 0xFF);
                    line[2 * column + 1] = static_cast<std::uint8_t>(code >> 8);
                }
            }
    }
    return frame;
}

/// The offset (in the plane's samples) at which a cropped row matches the ruler best.
int matchingOffset(const VideoFrame& whole, const VideoFrame& cropped, std::size_t plane) {
    const int width = planeWidth(cropped.layout, cropped.width, plane);
    const int travel = planeWidth(whole.layout, whole.width, plane) - width;
    const int row = planeHeight(cropped.layout, cropped.height, plane) / 2;
    int best = -1;
    double least = 1e300;
    for (int offset = 0; offset <= travel; ++offset) {
        double sum = 0;
        for (int column = 0; column < width; ++column)
            sum += std::abs(sampleOf(whole, plane, column + offset, row) - sampleOf(cropped, plane, column, row));
        if (sum < least) {
            least = sum;
            best = offset;
        }
    }
    return best;
}

TEST_F(FramingExportTest, CropOffsetsAreTheFormulasToThePixel) {
    const struct {
        const char* name;
        VideoCodec codec;
        PixelLayout layout;
    } sources[] = {{"ruler.mov", VideoCodec::proRes422HQ, layouts[3]}, {"ruler.mp4", VideoCodec::h264, layouts[0]}};
    for (const auto& [name, codec, layout] : sources) {
        const VideoFrame picture = ruler(layout, 640, 360);
        ExportRequest request;
        request.clip = makeStill(name, picture, codec, 60);
        request.keyframes = {{Uuid::random(), 0, 0.5, SpeedKeyframeRole::curve},
                             {Uuid::random(), 2.4, 2, SpeedKeyframeRole::curve}};
        for (const double glide : {0.0, 0.5, 1.0})
            for (const auto& trim : {std::optional<SourceRange>{}, std::optional<SourceRange>{{0.33, 2.01}}}) {
                request.sourceRange = trim;
                VerticalCropSettings crop;
                crop.smoothing = glide;
                for (const auto& [time, center] : {std::pair{0.0, 0.0}, {0.8, 0.9}, {1.4, 0.2}, {2.4, 1.0}})
                    crop.centerKeyframes.push_back({Uuid::random(), time, center, SpeedKeyframeRole::curve});
                request.verticalCrop = crop;
                const ImportedClip output = exported(request);
                ASSERT_EQ(output.width, 202);
                EXPECT_NE(log_.find("[Export] Vertical crop: 202x360\n"), std::string::npos);
                const TimeMap map = CurveEngine::buildTimeMap(request.keyframes, request.clip.duration, trim,
                                                              CurveEngine::exportTimeMapSteps, request.smoothing);
                const auto plan = CropPlan::forSource({640, 360}, crop);
                const auto offsets = plan->cropXBySourceFrame(map, 0.04);
                const auto frames = framesOf(output, layout);
                int moved = 0;
                for (std::size_t i = 0; i < frames.size(); ++i) {
                    const SourceSeconds time = map.sourceTime(OutputSeconds{0.04 * static_cast<double>(i)});
                    const auto expected = static_cast<int>(offsets.offsetAt(time, 0.04));
                    if (glide == 0) {
                        const double drawn = cropCenter(crop.centerKeyframes, time) * 438;
                        EXPECT_NEAR(expected, drawn, 8) << i; // the table's samples lie up to half a frame off
                    }
                    moved = std::max(moved, expected);
                    ASSERT_EQ(matchingOffset(picture, frames[i], 0), expected)
                        << name << " " << glide << " frame " << i;
                    ASSERT_EQ(2 * matchingOffset(picture, frames[i], 1), expected) << "chroma of frame " << i;
                }
                EXPECT_GT(moved, 150);
            }
    }
}

TEST_F(FramingExportTest, ZoomOverTwoSecondsStaysOnItsPath) {
    const ZoomChart chart;
    ExportRequest request;
    request.clip = makeStill("chart.mov", chart.frame(layouts[3], 640, 360), VideoCodec::proRes422HQ, 60);
    ZoomBlock block;
    block.startTime = 0.1;
    block.endTime = 2.1;
    block.amount = 1.8;
    block.rampDuration = 2;
    block.mode = ZoomMode::zoomIn;
    block.focalX = 0.3;
    block.focalY = 1;
    request.zoom = ZoomSettings{{block}};
    const ImportedClip output = exported(request);
    const TimeMap map = CurveEngine::buildTimeMap({}, request.clip.duration, std::nullopt,
                                                  CurveEngine::exportTimeMapSteps, request.smoothing);
    const auto frames = framesOf(output, layouts[3]);
    ASSERT_EQ(frames.size(), 60U);
    double largest = 1;
    for (std::size_t i = 0; i < frames.size(); ++i) {
        const double scale = ZoomEngine::stateAt({0.04 * static_cast<double>(i)}, {block}, map).scale;
        largest = std::max(largest, scale);
        const double hidden = 1 - 1 / scale;
        const PictureRect rect{0.3 * 640 * hidden, 360 * hidden, 640 / scale, 360 / scale};
        EXPECT_LT(edgeError(chart, frames[i], 0, rect), 0.05) << "frame " << i << " at ×" << scale;
        EXPECT_LT(edgeError(chart, frames[i], 1, rect), 0.1) << "chroma of frame " << i << " at ×" << scale;
    }
    EXPECT_GT(largest, 1.79);
}

TEST_F(FramingExportTest, CropAndZoomTogetherWithOddSizesAndCorners) {
    const ZoomChart chart;
    ExportRequest request;
    request.clip = makeStill("odd.mov", chart.frame(layouts[3], 853, 481), VideoCodec::proRes422, 12);
    ASSERT_EQ(request.clip.encodedWidth(), 853);
    VerticalCropSettings crop;
    crop.aspectRatio = 0.8;
    crop.smoothing = 0;
    crop.centerKeyframes = {{Uuid::random(), 0, 1, SpeedKeyframeRole::curve}};
    request.verticalCrop = crop;
    for (const double corner : {0.0, 1.0}) {
        ZoomBlock block;
        block.endTime = 0.48;
        block.amount = 4;
        block.mode = ZoomMode::constant;
        block.focalX = block.focalY = corner;
        request.zoom = ZoomSettings{{block}};
        const ImportedClip output = exported(request);
        EXPECT_EQ(output.width, 384);
        EXPECT_EQ(output.height, 480);
        const PictureRect rect{468 + corner * 384 * 0.75, corner * 480 * 0.75, 96, 120};
        EXPECT_LT(edgeError(chart, framesOf(output, layouts[3]).front(), 0, rect), 0.05) << corner;
    }
}

TEST_F(FramingExportTest, RotatedAndPortraitSources) {
    const ZoomChart chart;
    const DisplayMatrix quarterTurn{0, 65536, 0, -65536, 0, 0, 360 << 16, 0, 1 << 30};
    ExportRequest request;
    request.clip = makeStill("rotated.mp4", chart.frame(layouts[0], 640, 360), VideoCodec::h264, 8, quarterTurn);
    request.verticalCrop = VerticalCropSettings{};
    try {
        exported(request);
        FAIL();
    } catch (const FlowtideError& error) {
        EXPECT_STREQ(error.what(),
                     "Composition failed: Vertical crop export currently requires an unrotated source clip.");
    }
    request.verticalCrop.reset();
    ZoomBlock block;
    block.endTime = 1;
    block.amount = 2;
    block.mode = ZoomMode::constant;
    block.focalX = 1; // the displayed right edge is the encoded top edge
    block.focalY = 0;
    request.zoom = ZoomSettings{{block}};
    const ImportedClip output = exported(request);
    EXPECT_EQ(output.width, 360);
    EXPECT_LT(edgeError(chart, framesOf(output, layouts[0]).front(), 0, {0, 0, 320, 180}), 0.1);

    request = {};
    request.clip = makeStill("portrait.mp4", chart.frame(layouts[0], 180, 320), VideoCodec::h264, 8);
    request.verticalCrop = VerticalCropSettings{};
    EXPECT_EQ(exported(request).width, 180);
    EXPECT_NE(log_.find("[Export] Vertical crop skipped — source (180x320) is not wider than the crop frame\n"),
              std::string::npos);
}

} // namespace
} // namespace flowtide::test
