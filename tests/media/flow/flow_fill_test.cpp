// Filling: by what surrounds a hole and looks alike.
#include "media/flow/flow_fill.h"
#include "tests/media/flow/kernels/kernel_test.h"

namespace flowtide::flow {
namespace {

TEST(FlowFill, HolesTakeTheMotionOfWhatLooksLikeThem) {
    // Two halves of unlike luma move apart; around their border nothing is known.
    WorkerPool workers(2);
    FlowFill fill; // its memory is used again for the next size
    for (const Size size : {Size{96, 64}, Size{131, 77}}) {
        const int middle = size.width / 2 + 3;
        const auto isLeft = [&](int x) { return x < middle; };
        const auto isHole = [&](int x, int y) { return std::abs(x - middle) < 12 || (y > 40 && y < 46); };
        const GrayImage image = grayImage(size, [&](int x, int) { return isLeft(x) ? 40 : 210; });
        auto motion = filledField<MotionVector>(size, [&](int x, int y) -> MotionVector {
            if (isHole(x, y)) return {900, -900};
            return isLeft(x) ? MotionVector{-128, 64} : MotionVector{192, -256};
        });
        auto confidence = filledField<std::uint8_t>(
            size, [&](int x, int y) { return static_cast<std::uint8_t>(isHole(x, y) ? 0 : 255); });
        Field<MotionVector> filled;
        fill.fill({size.width, size.height, motion.row(0), confidence.row(0), nullptr}, image, image,
                  kernelsFor(bestInstructionSet()), workers, filled);
        compare(
            "x", size, 90, [&](int x, int y) { return filled(x, y).x; },
            [&](int x, int) { return isLeft(x) ? -128 : 192; });
        compare(
            "y", size, 90, [&](int x, int y) { return filled(x, y).y; },
            [&](int x, int) { return isLeft(x) ? 64 : -256; });
    }
}

} // namespace
} // namespace flowtide::flow
