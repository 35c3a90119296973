// Luma pyramids, against plain sums.
#include "media/flow/gray_image.h"
#include "tests/media/flow/drawn_scenes.h"
#include "tests/media/flow/kernels/kernel_test.h"

namespace flowtide::flow {
namespace {

using namespace flowtide::test;

/// What halving makes of a pixel: [1 3 3 1] / 8 across and down, with the edges repeated.
template <typename Luma>
double halfAt(Size size, int x, int y, const Luma& luma) {
    constexpr int taps[] = {1, 3, 3, 1};
    double sum = 0;
    for (int j = 0; j < 4; ++j)
        for (int i = 0; i < 4; ++i)
            sum += taps[i] * taps[j] *
                   luma(std::clamp(2 * x - 1 + i, 0, size.width - 1), std::clamp(2 * y - 1 + j, 0, size.height - 1));
    return sum / 64;
}

TEST(FlowGrayImage, PyramidsAreHalvedLumaOfAnyDepth) {
    for (const int bitDepth : {8, 10})
        for (const Size size : {Size{1, 1}, Size{5, 2}, Size{64, 65}, Size{131, 200}}) {
            const PixelLayout layout{ChromaSubsampling::yuv420, bitDepth, true};
            Random random{3};
            const VideoFrame frame =
                drawn(layout, size.width, size.height, [&](double, double) { return random.real(0, 255); });
            const std::vector<GrayImage> levels = lumaPyramid(frame);
            // Down to the last size of which no side is less than 16, half of the frame at least.
            Size expected{(size.width + 1) / 2, (size.height + 1) / 2};
            for (std::size_t n = 0; n < levels.size(); ++n) {
                const GrayImage& level = levels[n];
                ASSERT_EQ(level.width(), expected.width);
                ASSERT_EQ(level.height(), expected.height);
                const auto above = [&](int x, int y) -> double {
                    return n == 0 ? std::floor(sampleOf(frame, 0, x, y)) : pixel(levels[n - 1], x, y);
                };
                const Size from = n == 0 ? size : Size{levels[n - 1].width(), levels[n - 1].height()};
                // The padding shows the edge.
                compare(
                    "level", -16, -16, level.width() + 16, level.height() + 16, 0.5,
                    [&](int x, int y) { return level.row(y)[x]; },
                    [&](int x, int y) {
                        return halfAt(from, std::clamp(x, 0, level.width() - 1), std::clamp(y, 0, level.height() - 1),
                                      above);
                    });
                if (n + 1 == levels.size()) {
                    EXPECT_LT(std::min(expected.width, expected.height), 32);
                } else {
                    EXPECT_GE(std::min(expected.width, expected.height), 32);
                }
                expected = {(expected.width + 1) / 2, (expected.height + 1) / 2};
            }
        }
}

} // namespace
} // namespace flowtide::flow
