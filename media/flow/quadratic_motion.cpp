// Accelerations are kept on coarse cells, where single vectors' errors cancel out, and interpolated between them.
#include "media/flow/quadratic_motion.h"

#include <algorithm>
#include <cmath>

namespace flowtide::flow {

namespace {

constexpr int cellSize = 16;           // half-resolution pixels
constexpr int sampleStep = 2;          // pixels between the vectors that are looked at
constexpr float regularisation = 1;    // as many certain vectors without acceleration count in every cell
constexpr float farthestShift = 16000; // in MotionVector's units; leaves room beside the farthest motion
constexpr int shiftCell = 8;           // half-resolution pixels that share one place to look for accelerations

Vector inPixels(MotionVector v) {
    return {static_cast<float>(v.x) / motionUnits, static_cast<float>(v.y) / motionUnits};
}

/// Bilinear interpolation between the centres of cells.
Vector interpolated(const Acceleration& cells, float x, float y) {
    const float cx = std::clamp(x / cellSize - 0.5F, 0.0F, static_cast<float>(cells.width() - 1));
    const float cy = std::clamp(y / cellSize - 0.5F, 0.0F, static_cast<float>(cells.height() - 1));
    const int ix = static_cast<int>(cx);
    const int iy = static_cast<int>(cy);
    const float fx = cx - static_cast<float>(ix);
    const float fy = cy - static_cast<float>(iy);
    const Vector top = (1 - fx) * cells.clamped(ix, iy) + fx * cells.clamped(ix + 1, iy);
    const Vector bottom = (1 - fx) * cells.clamped(ix, iy + 1) + fx * cells.clamped(ix + 1, iy + 1);
    return (1 - fy) * top + fy * bottom;
}

/// Whole numbers on a straight line across a cell.
class Ramp {
public:
    Ramp(float from, float to)
        : start_(fixed(from) + (1 << (fractionBits - 1)))
        , step_((fixed(to) - fixed(from)) / shiftCell) {}
    std::int16_t at(int k) const { return static_cast<std::int16_t>((start_ + k * step_) >> fractionBits); }

private:
    static constexpr int fractionBits = 12;
    static int fixed(float value) {
        return static_cast<int>(std::clamp(value, -farthestShift, farthestShift) * (1 << fractionBits));
    }
    int start_;
    int step_;
};

} // namespace

Acceleration acceleration(const DirectedFlow& onwards, const DirectedFlow& backwards) {
    const int width = onwards.motion.width();
    const int height = onwards.motion.height();
    Acceleration cells((width + cellSize - 1) / cellSize, (height + cellSize - 1) / cellSize);
    for (int j = 0; j < cells.height(); ++j)
        for (int i = 0; i < cells.width(); ++i) {
            Vector sum;
            float weights = regularisation;
            for (int y = j * cellSize; y < std::min((j + 1) * cellSize, height); y += sampleStep)
                for (int x = i * cellSize; x < std::min((i + 1) * cellSize, width); x += sampleStep) {
                    const Vector on = inPixels(onwards.motion(x, y));
                    const Vector back = inPixels(backwards.motion(x, y));
                    const float weight =
                        static_cast<float>(onwards.confidence(x, y) * backwards.confidence(x, y)) / (255 * 255);
                    weights += weight;
                    sum = sum + weight * (on + back);
                }
            cells(i, j) = (1 / weights) * sum;
        }
    return cells;
}

void quadraticShift(const PairAcceleration& accelerations, const Field<MotionVector>& motion, double phase,
                    WorkerPool& workers, Field<MotionVector>& shift) {
    const int width = motion.width();
    const int height = motion.height();
    const auto t = static_cast<float>(phase);
    // Half of the mean acceleration, times t (1 - t).
    const float scale = t * (1 - t) / 4 * motionUnits;
    const int columns = (width + shiftCell - 1) / shiftCell + 1;
    const int rows = (height + shiftCell - 1) / shiftCell + 1;
    Field<Vector> coarse(columns, rows);
    for (int j = 0; j < rows; ++j)
        for (int i = 0; i < columns; ++i) {
            const auto x = static_cast<float>(i * shiftCell);
            const auto y = static_cast<float>(j * shiftCell);
            const Vector v = inPixels(motion.clamped(i * shiftCell, j * shiftCell));
            coarse(i, j) = scale * (interpolated(accelerations.first, x - t * v.x, y - t * v.y) +
                                    interpolated(accelerations.second, x + (1 - t) * v.x, y + (1 - t) * v.y));
        }
    shift.resize(width, height);
    workers.runBands(height, [&](int begin, int end) {
        for (int y = begin; y < end; ++y) {
            const int j = y / shiftCell;
            const float fy = static_cast<float>(y % shiftCell) / shiftCell;
            for (int i = 0; i * shiftCell < width; ++i) {
                const Vector left = (1 - fy) * coarse(i, j) + fy * coarse(i, j + 1);
                const Vector right = (1 - fy) * coarse(i + 1, j) + fy * coarse(i + 1, j + 1);
                const Ramp across(left.x, right.x);
                const Ramp down(left.y, right.y);
                MotionVector* out = &shift(i * shiftCell, y);
                const int count = std::min(shiftCell, width - i * shiftCell);
                for (int k = 0; k < count; ++k)
                    out[k] = {across.at(k), down.at(k)};
            }
        }
    });
}

} // namespace flowtide::flow
