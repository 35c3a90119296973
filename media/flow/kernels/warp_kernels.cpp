// Drawing: bicubic samples of both frames at sixteenths of a pixel, blended.
#include "media/flow/kernels/kernel_sets.h"
#include "media/flow/kernels/sampling.h"

namespace flowtide::flow::FLOWTIDE_KERNEL_SET {

namespace {

constexpr int fractions = 16;              // sub-pixel positions a pixel
constexpr int outside = 8;                 // pixels beyond the edge after which every place looks like the edge
constexpr float uniformMotionLimit = 1.0F; // sixteenths by which neighbours may lie apart that are sampled together
constexpr int middleLane = 3;
constexpr int tapBits = 13;    // Catmull–Rom taps at sixteenths are whole numbers then
constexpr int middleBits = 14; // of a value between the sums across and down

/// Eight pairs of 16-bit values in 32-bit lanes.
inline Int8 pairs(int low, int high) {
    return Int8{} + static_cast<std::int32_t>((static_cast<std::uint32_t>(high) << 16) |
                                              (static_cast<std::uint32_t>(low) & 0xFFFFU));
}
inline Short16 shorts(Int8 lanes) {
    return reinterpret_cast<Short16>(lanes);
}
inline Int8 dot(Int8 pairsA, Int8 pairsB) {
    return pairProducts(shorts(pairsA), shorts(pairsB));
}

/// Catmull–Rom taps of eight sub-pixel positions, in tapBits, two and two.
struct Taps {
    Int8 some;
    Int8 others;
};
/// Four polynomials of a fraction in its lowest bits: the constants are those of the cube down to the constant term.
inline Taps polynomials(Int8 position, const Int8 (&some)[4], const Int8 (&others)[4]) {
    const Int8 fraction = position & (fractions - 1);
    const Short16 once = shorts(fraction | (fraction << 16));
    const Short16 squared = once * once;
    const Short16 cubed = squared * once;
    const auto sum = [&](const Int8(&factors)[4]) {
        return reinterpret_cast<Int8>(cubed * shorts(factors[0]) + squared * shorts(factors[1]) +
                                      once * shorts(factors[2]) + shorts(factors[3]));
    };
    return {sum(some), sum(others)};
}
/// The first and the second tap, the third and the fourth.
inline Taps neighbouringTaps(Int8 position) {
    return polynomials(position, {pairs(-1, 3), pairs(32, -80), pairs(-256, 0), pairs(0, 8192)},
                       {pairs(-3, 1), pairs(64, -16), pairs(256, 0), pairs(0, 0)});
}
/// The first and the third tap, the second and the fourth.
inline Taps alternateTaps(Int8 position) {
    return polynomials(position, {pairs(-1, -3), pairs(32, 64), pairs(-256, 256), pairs(0, 0)},
                       {pairs(3, 1), pairs(-80, -16), pairs(0, 0), pairs(8192, 0)});
}

/// Taps for each sub-pixel position, with one more bit.
struct TapTable {
    std::int16_t at[fractions][4];
};
constexpr TapTable makeTapTable() {
    TapTable table{};
    for (int t = 0; t < fractions; ++t) {
        const int taps[4] = {((-t + 32) * t - 256) * t, (3 * t - 80) * t * t + 8192, ((-3 * t + 64) * t + 256) * t,
                             (t - 16) * t * t};
        for (int k = 0; k < 4; ++k)
            table.at[t][k] = static_cast<std::int16_t>(2 * taps[k]);
    }
    return table;
}
// Made by the compiler: nothing of this file may run before the machine is known to have its instructions.
constexpr TapTable tapTable = makeTapTable();

/// Where eight samples of a plane lie: in sixteenths of its pixels.
struct Places {
    Int8 x;
    Int8 y;
};

/// Four neighbouring samples of a row, at eight places.
struct ByteRow {
    Int8 samples; // lowest byte first
};
struct WordRow {
    Int8 firstTwo;
    Int8 lastTwo;
};

/// One frame's plane, read at sub-pixel places.
template <typename Sample>
class Source {
public:
    explicit Source(const PlaneView& plane)
        : plane_(plane)
        , middleShift_(tapBits + plane.bitDepth - middleBits)
        , middleHalf_(1 << (middleShift_ - 1))
        , scale_(1.0F / static_cast<float>(1 << (2 * tapBits - middleShift_))) {}

    /// Whether togetherDown() may read from a sample on: its taps, and whole vectors.
    bool holdsUniform(int column, int row) const {
        return column >= 1 && row >= 1 && column + 15 <= plane_.width && row + 2 < plane_.height;
    }
    /// Sixteen samples' sums down, from the one before (column, row) on; half of the fixed-point range.
    Short16 uniformDown(int column, int row, int fraction) const {
        const std::uint8_t* at = plane_.data + (row - 1) * plane_.stride + (column - 1) * bytes;
        Short16 sum{};
        for (int k = 0; k < 4; ++k, at += plane_.stride)
            sum += roundedHigh(sixteen(at), Short16{} + tapTable.at[fraction][k]);
        return sum;
    }

    Float8 bicubic(Places places) const {
        const Int8 column = clamp(places.x >> 4, Int8{} - outside, Int8{} + (plane_.width + outside));
        const Int8 row = clamp(places.y >> 4, Int8{} - outside, Int8{} + (plane_.height + outside));
        const Taps across = bytes == 1 ? alternateTaps(places.x) : neighbouringTaps(places.x);
        const Int8 beyond = (column < 1) | (row < 1) | (column + 2 >= plane_.width) | (row + 2 >= plane_.height);
        Int8 rows[4];
        if (any(beyond))
            sumAnywhere(column, row, across, rows);
        else
            sumInside(column, row, across, rows);
        const Int8 upper = (rows[0] & 0xFFFF) | (rows[1] << 16);
        const Int8 lower = (rows[2] & 0xFFFF) | (rows[3] << 16);
        const Taps down = neighbouringTaps(places.y);
        const Int8 sum = dot(upper, down.some) + dot(lower, down.others);
        return toFloat(sum) * scale_;
    }

private:
    static constexpr int bytes = static_cast<int>(sizeof(Sample));

    /// Sixteen samples, shifted up to 15 bits.
    Short16 sixteen(const std::uint8_t* at) const {
        if constexpr (bytes == 1)
            return widened(load<Byte16>(at)) << 7;
        else
            return load<Short16>(at) << (15 - plane_.bitDepth);
    }

    void sumInside(Int8 column, Int8 row, const Taps& taps, Int8 (&rows)[4]) const {
        // Offsets are taken from the first place, so that they fit 32 bits whatever the stride.
        const std::uint8_t* base = plane_.data + (row[0] - 1) * plane_.stride + (column[0] - 1) * bytes;
        const Int8 offset = (row - row[0]) * static_cast<int>(plane_.stride) + (column - column[0]) * bytes;
        for (int k = 0; k < 4; ++k, base += plane_.stride) {
            if constexpr (bytes == 1)
                rows[k] = sum(ByteRow{gathered(base, offset)}, taps);
            else
                rows[k] = sum(WordRow{gathered(base, offset), gathered(base + 4, offset)}, taps);
        }
    }

    /// Beyond the edge the edge is repeated.
    [[gnu::noinline, gnu::cold]] void sumAnywhere(Int8 column, Int8 row, const Taps& taps, Int8 (&rows)[4]) const {
        for (int k = 0; k < 4; ++k) {
            Sample samples[8][4];
            for (int lane = 0; lane < 8; ++lane) {
                const std::uint8_t* line = plane_.data + clamp(row[lane] - 1 + k, 0, plane_.height - 1) * plane_.stride;
                for (int i = 0; i < 4; ++i)
                    samples[lane][i] = load<Sample>(line + clamp(column[lane] - 1 + i, 0, plane_.width - 1) * bytes);
            }
            if constexpr (bytes == 1) {
                rows[k] = sum(ByteRow{load<Int8>(samples)}, taps);
            } else {
                const auto low = load<Int8>(samples[0]);
                const auto high = load<Int8>(samples[4]);
                rows[k] = sum(WordRow{__builtin_shufflevector(low, high, 0, 2, 4, 6, 8, 10, 12, 14),
                                      __builtin_shufflevector(low, high, 1, 3, 5, 7, 9, 11, 13, 15)},
                              taps);
            }
        }
    }

    Int8 sum(const ByteRow& row, const Taps& taps) const {
        return narrowed(dot(row.samples & 0x00FF00FF, taps.some) + dot((row.samples >> 8) & 0x00FF00FF, taps.others));
    }
    Int8 sum(const WordRow& row, const Taps& taps) const {
        return narrowed(dot(row.firstTwo, taps.some) + dot(row.lastTwo, taps.others));
    }
    /// Rounded to 16 bits.
    Int8 narrowed(Int8 sum) const { return (sum + middleHalf_) >> middleShift_; }

    PlaneView plane_;
    int middleShift_; // from a sum across to a middle value
    int middleHalf_;
    float scale_; // from a sum down to codes
};

/// A row of the field's values, brought to the plane's row: four times each, with the edges repeated.
struct FieldRow {
    float* x;
    float* y;
    float* shiftX;
    float* shiftY;
    float* secondWeight;
};

constexpr int rowPadding = 8; // before the first value, and at least as much after the last

/// Where a row's field values come from: two rows, `near` counting `nearWeight` of four.
struct FieldRows {
    int near;
    int far;
    int nearWeight;
};

inline FieldRows fieldRowsOf(int y, bool halfHeight, int height) {
    // Chroma rows of half height lie midway between two luma rows: on a row of the field.
    if (halfHeight) return {min(y, height - 1), min(y, height - 1), 4};
    return {min(y / 2, height - 1), clamp(y % 2 ? y / 2 + 1 : y / 2 - 1, 0, height - 1), 3};
}

inline void repeatEdges(float* row, int width) {
    row[-1] = row[0];
    for (int x = width; x < width + rowPadding; ++x)
        row[x] = row[width - 1];
}

void prepareRow(const PhasePlanes& field, const FieldRows& rows, const FieldRow& out) {
    const std::ptrdiff_t near = static_cast<std::ptrdiff_t>(rows.near) * field.width;
    const std::ptrdiff_t far = static_cast<std::ptrdiff_t>(rows.far) * field.width;
    const auto nearWeight = static_cast<float>(rows.nearWeight);
    const float farWeight = 4 - nearWeight;
    const auto mix = [&](Int8 a, Int8 b) { return toFloat(a) * nearWeight + toFloat(b) * farWeight; };
    const auto mixMotion = [&](const MotionVector* motion, float* outX, float* outY) {
        for (int x = 0; x < field.width; x += 8) {
            const Motion8 a = loadMotion(motion + near + x);
            const Motion8 b = loadMotion(motion + far + x);
            store(outX + x, mix(a.x, b.x));
            store(outY + x, mix(a.y, b.y));
        }
        repeatEdges(outX, field.width);
        repeatEdges(outY, field.width);
    };
    mixMotion(field.motion, out.x, out.y);
    if (field.shift) mixMotion(field.shift, out.shiftX, out.shiftY);
    for (int x = 0; x < field.width; x += 8) {
        const auto weights = [&](std::ptrdiff_t row) { return toInt(load<Short8>(field.secondWeight + row + x)); };
        store(out.secondWeight + x, mix(weights(near), weights(far)));
    }
    repeatEdges(out.secondWeight, field.width);
}

/// Eight values of the plane's row from the field's: sixteen times each.
inline Float8 spread(const float* row, int x, bool halfWidth) {
    if (halfWidth) return load<Float8>(row + x) * 3 + load<Float8>(row + x - 1);
    const auto values = load<Float8>(row + x / 2 - 1);
    return __builtin_shufflevector(values, values, 1, 1, 2, 2, 3, 3, 4, 4) * 3 +
           __builtin_shufflevector(values, values, 0, 2, 1, 3, 2, 4, 3, 5);
}

/// Both frames' values of eight samples.
struct Sampled {
    Float8 first;
    Float8 second;
};

/// The samples of eight neighbours that all moved alike; false when whole vectors don't fit.
template <typename Sample>
bool sampledUniformly(const Source<Sample>& first, const Source<Sample>& second, int x, int y, const int (&offsets)[4],
                      float scale, Sampled& result) {
    const int column1 = x + (offsets[0] >> 4);
    const int row1 = y + (offsets[1] >> 4);
    const int column2 = x + (offsets[2] >> 4);
    const int row2 = y + (offsets[3] >> 4);
    if (!first.holdsUniform(column1, row1) || !second.holdsUniform(column2, row2)) return false;
    const Short16 down1 = first.uniformDown(column1, row1, offsets[1] & (fractions - 1));
    const Short16 down2 = second.uniformDown(column2, row2, offsets[3] & (fractions - 1));
    const Short16 low = joined(lowHalf(down1), lowHalf(down2));
    const Short16 high = joined(highHalf(down1), highHalf(down2));
    const std::int16_t* taps1 = tapTable.at[offsets[0] & (fractions - 1)];
    const std::int16_t* taps2 = tapTable.at[offsets[2] & (fractions - 1)];
    const auto times = [&](Short16 samples, int k) {
        return roundedHigh(samples, joined(Short8{} + taps1[k], Short8{} + taps2[k]));
    };
    const Short16 sum =
        times(low, 0) +
        times(__builtin_shufflevector(low, high, 1, 2, 3, 4, 5, 6, 7, 16, 9, 10, 11, 12, 13, 14, 15, 24), 1) +
        times(__builtin_shufflevector(low, high, 2, 3, 4, 5, 6, 7, 16, 17, 10, 11, 12, 13, 14, 15, 24, 25), 2) +
        times(__builtin_shufflevector(low, high, 3, 4, 5, 6, 7, 16, 17, 18, 11, 12, 13, 14, 15, 24, 25, 26), 3);
    result = {toFloat(toInt(lowHalf(sum))) * scale, toFloat(toInt(highHalf(sum))) * scale};
    return true;
}

/// To the nearest whole number.
inline Int8 rounded(Float8 values) {
    constexpr float lift = 65536; // makes truncation round down
    return toInt(values + (lift + 0.5F)) - static_cast<int>(lift);
}
inline int rounded(float value) {
    constexpr float lift = 65536;
    return static_cast<int>(value + (lift + 0.5F)) - static_cast<int>(lift);
}

/// Which lanes deviate from the one in the middle by more than `reach`.
inline Int8 deviating(Float8 values, float reach) {
    return absolute(values - values[middleLane]) > reach;
}

template <typename Sample>
void warpRow(const PlaneWarp& warp, const FieldRow& row, int y) {
    const Source<Sample> first(warp.first);
    const Source<Sample> second(warp.second);
    const int width = warp.first.width;
    const int bitDepth = warp.first.bitDepth;
    const float largest = static_cast<float>((1 << bitDepth) - 1);
    // Spread values are 512ths of a luma pixel; places are sixteenths of the plane's.
    const float unitX = 1.0F / (warp.halfWidth ? 64 : 32);
    const float unitY = 1.0F / (warp.halfHeight ? 64 : 32);
    const float toFirst = -warp.phase;
    const float toSecond = 1 - warp.phase;
    std::uint8_t* out = warp.out + y * warp.outStride;
    const float reach = uniformMotionLimit / max(warp.phase, 1 - warp.phase);
    const float uniformScale = 1.0F / static_cast<float>(1 << (13 - bitDepth)); // two taps' loss of 15 bits
    for (int x = 0; x < width; x += 8) {
        const Float8 vx = spread(row.x, x, warp.halfWidth) * unitX;
        const Float8 vy = spread(row.y, x, warp.halfWidth) * unitY;
        Float8 sx{};
        Float8 sy{};
        if (warp.field.shift) {
            sx = spread(row.shiftX, x, warp.halfWidth) * unitX;
            sy = spread(row.shiftY, x, warp.halfWidth) * unitY;
        }
        const Float8 secondWeight = spread(row.secondWeight, x, warp.halfWidth) * (1.0F / (16 * fractionUnits));
        Int8 differ = deviating(vx, reach) | deviating(vy, reach);
        if (warp.field.shift) differ |= deviating(sx, uniformMotionLimit) | deviating(sy, uniformMotionLimit);
        const auto middle = [&](Float8 shift, float part, Float8 motion) {
            return rounded(shift[middleLane] + part * motion[middleLane]);
        };
        const int together[4] = {middle(sx, toFirst, vx), middle(sy, toFirst, vy), middle(sx, toSecond, vx),
                                 middle(sy, toSecond, vy)};
        Sampled values;
        if (x + 8 > width || any(differ) || !sampledUniformly(first, second, x, y, together, uniformScale, values)) {
            const Int8 columns = (laneNumbers() + x) * fractions;
            const Int8 line = Int8{} + y * fractions;
            values = {first.bicubic({columns + rounded(sx + toFirst * vx), line + rounded(sy + toFirst * vy)}),
                      second.bicubic({columns + rounded(sx + toSecond * vx), line + rounded(sy + toSecond * vy)})};
        }
        const Float8 blended = values.first + secondWeight * (values.second - values.first) + 0.5F;
        const Int8 codes = toInt(clamp(blended, Float8{}, Float8{} + largest));
        const int count = min(8, width - x);
        if constexpr (sizeof(Sample) == 1) {
            storeBytes(out + x, codes, count);
        } else {
            const Short8 words = toShort(codes);
            std::memcpy(out + 2 * x, &words, static_cast<std::size_t>(count) * sizeof(std::uint16_t));
        }
    }
}

void warp(const PlaneWarp& warp, float* scratch, int begin, int end) {
    const std::ptrdiff_t length = warp.field.width + 4 * rowPadding;
    float* next = scratch + rowPadding;
    const FieldRow row{next, next + length, next + 2 * length, next + 3 * length, next + 4 * length};
    for (int y = begin; y < end; ++y) {
        prepareRow(warp.field, fieldRowsOf(y, warp.halfHeight, warp.field.height), row);
        if (warp.first.bytesPerSample == 1)
            warpRow<std::uint8_t>(warp, row, y);
        else
            warpRow<std::uint16_t>(warp, row, y);
    }
}

} // namespace

void addWarpKernels(Kernels& kernels) {
    kernels.warp = warp;
}

} // namespace flowtide::flow::FLOWTIDE_KERNEL_SET
