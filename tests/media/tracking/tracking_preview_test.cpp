// The pictures that show where the tracker is.
#include "media/tracking/tracking_preview.h"
#include "tests/support/clip_maker.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>

namespace flowtide::tracking {
namespace {

TEST(TrackingPreviewTest, ShowsTheClipsColorsInItsProportions) {
    ImportedClip clip;
    clip.video.encodedWidth = clip.width = 1280;
    clip.video.encodedHeight = clip.height = 720;
    VideoFrame frame = test::numberedFrame({}, 1280, 720, 0);
    constexpr std::array<int, 3> red{81, 90, 240}; // of BT.601 and near it in BT.709
    for (std::size_t plane = 0; plane < 3; ++plane)
        for (int y = 0; y < planeHeight({}, 720, plane); ++y)
            std::memset(const_cast<std::uint8_t*>(frame.planes[plane].data) + y * frame.planes[plane].stride,
                        red[plane], static_cast<std::size_t>(planeWidth({}, 1280, plane)));
    const DisplayFrame shown = TrackingPreview(clip).draw(*SubjectPictureMaker({}).make(frame));
    EXPECT_EQ(shown.width, 640);
    EXPECT_EQ(shown.height, 360);
    const std::uint32_t pixel = shown.pixels[180 * shown.stride / 4 + 320];
    EXPECT_GT(pixel >> 16 & 0xff, 200U);
    EXPECT_LT(pixel >> 8 & 0xff, 50U);
    EXPECT_LT(pixel & 0xff, 50U);
}

} // namespace
} // namespace flowtide::tracking
