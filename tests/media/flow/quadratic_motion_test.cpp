// Acceleration and the shift that comes of it, against their formulas.
#include "media/flow/quadratic_motion.h"
#include "tests/media/flow/kernels/kernel_test.h"

namespace flowtide::flow {
namespace {

/// Cells of 16 × 16 pixels.
Size cellsOf(Size size) {
    return {(size.width + 15) / 16, (size.height + 15) / 16};
}

TEST(FlowQuadraticMotion, AccelerationIsTheWeightedMeanOfBothMotions) {
    Random random{5};
    for (const Size size : {Size{1, 1}, Size{16, 15}, Size{33, 50}}) {
        const auto flow = [&] {
            DirectedFlow made;
            made.motion = filledField<MotionVector>(size, [&](int, int) {
                return MotionVector{random.motion(900), random.motion(900)};
            });
            made.confidence = filledField<std::uint8_t>(
                size, [&](int, int) { return static_cast<std::uint8_t>(random.whole(0, 255)); });
            return made;
        };
        const DirectedFlow next = flow();
        const DirectedFlow previous = flow();
        const Acceleration cells = acceleration(next, previous);
        ASSERT_EQ(cells.width(), cellsOf(size).width);
        ASSERT_EQ(cells.height(), cellsOf(size).height);
        for (const bool isX : {true, false})
            compare(
                "acceleration", cellsOf(size), 1e-4, [&](int i, int j) { return isX ? cells(i, j).x : cells(i, j).y; },
                [&](int i, int j) {
                    double sum = 0;
                    double weights = 1; // of one certain vector without acceleration
                    for (int y = 16 * j; y < std::min(16 * j + 16, size.height); y += 2)
                        for (int x = 16 * i; x < std::min(16 * i + 16, size.width); x += 2) {
                            const double weight = next.confidence(x, y) / 255.0 * previous.confidence(x, y) / 255.0;
                            const MotionVector on = next.motion(x, y);
                            const MotionVector back = previous.motion(x, y);
                            sum += weight * (isX ? on.x + back.x : on.y + back.y) / 64.0;
                            weights += weight;
                        }
                    return sum / weights;
                });
    }
}

TEST(FlowQuadraticMotion, TheShiftIsHalfTheAccelerationTimesPhaseAndRest) {
    Random random{6};
    WorkerPool workers(2);
    for (const Size size : {Size{1, 1}, Size{15, 40}, Size{77, 50}})
        for (const double phase : {0.25, 0.5, 0.9}) {
            const auto cells = [&](double reach) {
                return filledField<Vector>(cellsOf(size), [&](int, int) {
                    return Vector{static_cast<float>(random.real(-reach, reach)),
                                  static_cast<float>(random.real(-reach, reach))};
                });
            };
            // A whole number of cells' eighths at both ends, so that the places between which is interpolated coincide.
            const int motionX = phase == 0.25 ? 32 : phase == 0.5 ? -16 : 0;
            const int motionY = phase == 0.25 ? -64 : phase == 0.5 ? 48 : 0;
            const auto motion = filledField<MotionVector>(size, [&](int, int) {
                return MotionVector{static_cast<std::int16_t>(64 * motionX), static_cast<std::int16_t>(64 * motionY)};
            });
            const PairAcceleration accelerations{cells(40), cells(40)};
            const auto at = [&](const Acceleration& of, double x, double y, bool isX) {
                // The centre of cell i lies at 16 i + 8.
                const double column = std::clamp(x / 16 - 0.5, 0.0, of.width() - 1.0);
                const double row = std::clamp(y / 16 - 0.5, 0.0, of.height() - 1.0);
                double sum = 0;
                for (int j = 0; j < of.height(); ++j)
                    for (int i = 0; i < of.width(); ++i)
                        sum += std::max(0.0, 1 - std::abs(column - i)) * std::max(0.0, 1 - std::abs(row - j)) *
                               (isX ? of(i, j).x : of(i, j).y);
                return sum;
            };
            Field<MotionVector> shift;
            quadraticShift(accelerations, motion, phase, workers, shift);
            for (const bool isX : {true, false})
                compare(
                    "shift", size, rounding, [&](int x, int y) { return isX ? shift(x, y).x : shift(x, y).y; },
                    [&](int x, int y) {
                        const double first = at(accelerations.first, x - phase * motionX, y - phase * motionY, isX);
                        const double second =
                            at(accelerations.second, x + (1 - phase) * motionX, y + (1 - phase) * motionY, isX);
                        return 64 * phase * (1 - phase) / 2 * (first + second) / 2;
                    });
        }
}

} // namespace
} // namespace flowtide::flow
