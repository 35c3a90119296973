// Memory of rendered frames: aligned, never shared by two frames, and used again.
#include "media/frames/frame_pool.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <optional>

namespace flowtide::test {
namespace {

TEST(FramePool, FramesAreAlignedApartAndReused) {
    constexpr PixelLayout layouts[] = {{ChromaSubsampling::yuv420, 8, false},
                                       {ChromaSubsampling::yuv422, 10, false},
                                       {ChromaSubsampling::yuv444, 10, true}};
    for (const auto& layout : layouts)
        for (const auto& size : {std::pair{1, 1}, {63, 37}, {64, 2}, {321, 181}}) {
            const int width = size.first; // clang captures no structured binding
            const int height = size.second;
            FramePool pool(layout, width, height);
            const auto fill = [&](const WritableFrame& frame, int value) {
                for (std::size_t plane = 0; plane < 3; ++plane)
                    for (int row = 0; row < planeHeight(layout, height, plane); ++row)
                        std::memset(frame.planes[plane] + row * frame.frame.planes[plane].stride, value,
                                    planeRowBytes(layout, width, plane));
            };
            const auto holds = [&](const WritableFrame& frame, int value) {
                for (std::size_t plane = 0; plane < 3; ++plane)
                    for (int row = 0; row < planeHeight(layout, height, plane); ++row)
                        for (std::size_t i = 0; i < planeRowBytes(layout, width, plane); ++i)
                            if (frame.planes[plane][row * frame.frame.planes[plane].stride +
                                                    static_cast<std::ptrdiff_t>(i)] != value)
                                return false;
                return true;
            };
            WritableFrame first = pool.take();
            const WritableFrame second = pool.take();
            for (const auto& plane : first.frame.planes) {
                EXPECT_EQ(reinterpret_cast<std::uintptr_t>(plane.data) % 64, 0U);
                EXPECT_EQ(plane.stride % 64, 0);
            }
            fill(first, 1);
            fill(second, 2);
            EXPECT_TRUE(holds(first, 1)) << width;
            const std::uint8_t* memory = first.planes[0];
            VideoFrame share = first.frame;
            first = {};
            EXPECT_NE(pool.take().planes[0], memory); // still shared
            share = {};
            EXPECT_EQ(pool.take().planes[0], memory);
            EXPECT_TRUE(holds(second, 2)) << width;
        }
}

TEST(FramePool, FramesMayOutliveIt) {
    std::optional<FramePool> pool(std::in_place, PixelLayout{}, 32, 16);
    const WritableFrame frame = pool->take();
    pool.reset();
    std::memset(frame.planes[0], 7, 32);
    EXPECT_EQ(frame.planes[0][31], 7);
}

} // namespace
} // namespace flowtide::test
