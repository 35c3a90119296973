// The small upright copies that are tracked in.
#include "media/tracking/subject_picture.h"
#include "tests/media/tracking/drawn_subject.h"

#include <gtest/gtest.h>

#include <cmath>

namespace flowtide::tracking {
namespace {

SubjectPicture pictureOf(int width, int height, PixelLayout layout = {}, const AffineTransform& transform = {}) {
    const auto picture = SubjectPictureMaker(transform).make(test::numberedFrame(layout, width, height, 5));
    EXPECT_TRUE(picture);
    return picture.value_or(SubjectPicture{});
}

TEST(SubjectPictureTest, IsAtMost640LongAndNeverEnlarged) {
    struct Case {
        int width, height, wantedWidth, wantedHeight;
    };
    for (const auto& [width, height, wantedWidth, wantedHeight] : {Case{1920, 1080, 640, 360},
                                                                   {1088, 1920, 362, 640},
                                                                   {320, 240, 320, 240},
                                                                   {3840, 2160, 640, 360},
                                                                   {101, 75, 102, 76},
                                                                   {640, 4, 640, 4},
                                                                   {16, 4000, 2, 640}}) {
        const SubjectPicture picture = pictureOf(width, height);
        EXPECT_EQ(picture.width(), wantedWidth) << width;
        EXPECT_EQ(picture.height(), wantedHeight) << height;
        EXPECT_EQ(picture.chroma[0].width, wantedWidth / 2);
        EXPECT_EQ(picture.chroma[1].height, wantedHeight / 2);
        for (std::size_t level = 1; level < SubjectPicture::levelCount; ++level) {
            EXPECT_EQ(picture.luma[level].width, std::max(1, picture.luma[level - 1].width / 2));
            EXPECT_EQ(picture.luma[level].height, std::max(1, picture.luma[level - 1].height / 2));
        }
    }
    EXPECT_EQ(pictureOf(1920, 1080, {}, {0, 1, -1, 0, 1080, 0}).width(), 360) << "turned";
}

TEST(SubjectPictureTest, ShowsEveryLayoutUprightInEightBits) {
    // A scene given over the displayed frame; the encoded one is drawn through the transform itself.
    const test::DrawnSubject scene{[](double) { return SubjectBox{0.55, 0.2, 0.3, 0.2}; }};
    const std::vector<double> times{0};
    constexpr double w = 320;
    constexpr double h = 180;
    for (const AffineTransform& transform : {AffineTransform{},
                                             {-1, 0, 0, -1, w, h},
                                             {0, 1, -1, 0, h, 0},
                                             {0, -1, 1, 0, 0, w},
                                             {-1, 0, 0, 1, w, 0},
                                             {1, 0, 0, -1, 0, h},
                                             {0, 1, 1, 0, 0, 0}})
        for (const PixelLayout layout : {PixelLayout{},
                                         {ChromaSubsampling::yuv420, 10, true},
                                         {ChromaSubsampling::yuv422, 10, false},
                                         {ChromaSubsampling::yuv444, 8, false}}) {
            const ImportedClip clip = test::drawnClip(1, {1, 25}, transform);
            const test::SubjectBackend backend(scene, times);
            const auto frame = backend.openVideo(clip, layout, {0, 1}, {})->next();
            const auto picture = SubjectPictureMaker(transform).make(frame->frame);
            ASSERT_TRUE(picture);
            EXPECT_EQ(picture->width(), clip.width);
            EXPECT_EQ(picture->fullRange, layout.fullRange);
            double off = 0;
            for (std::size_t plane = 0; plane < 3; ++plane) {
                const BytePlane& shown = plane == 0 ? picture->luma[0] : picture->chroma[plane - 1];
                for (int y = 0; y < shown.height; ++y)
                    for (int x = 0; x < shown.width; ++x) {
                        const double u = (x + 0.5) / shown.width;
                        const double v = (y + 0.5) / shown.height;
                        const test::Color wanted = scene.at(u, v, 0, test::DrawnSubject::groundAt(u, v));
                        off +=
                            std::abs(shown.data[y * shown.stride + x] - wanted[plane]) / (shown.width * shown.height);
                    }
            }
            EXPECT_LT(off, 3) << transform.a << transform.b << transform.c << transform.d << " "
                              << static_cast<int>(layout.chroma) << " " << layout.bitDepth;
        }
}

TEST(SubjectPictureTest, LevelsAreMeansOfFour) {
    const SubjectPicture picture = pictureOf(200, 100);
    for (std::size_t level = 1; level < SubjectPicture::levelCount; ++level) {
        const BytePlane& fine = picture.luma[level - 1];
        const BytePlane& half = picture.luma[level];
        for (int y = 0; y < half.height; ++y)
            for (int x = 0; x < half.width; ++x) {
                const std::uint8_t* four = fine.data + 2 * y * fine.stride + 2 * x;
                const double mean = (four[0] + four[1] + four[fine.stride] + four[fine.stride + 1]) / 4.0;
                ASSERT_NEAR(half.data[y * half.stride + x], mean, 0.5) << level << ": " << x << ", " << y;
            }
    }
}

} // namespace
} // namespace flowtide::tracking
