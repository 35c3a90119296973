// Drawing: bicubic samples of both frames at sixteenths of a pixel, blended.
#include "media/flow/kernels/kernel_sets.h"
#include "media/flow/kernels/sampling.h"

namespace flowtide::flow::FLOWTIDE_LANES {

namespace {

constexpr int fractions = 16; // sub-pixel positions a pixel
constexpr int outside = 8;    // pixels beyond the edge after which every place looks like the edge
constexpr int tapBits = 14;

/// Catmull–Rom taps for each sub-pixel position, laid out as the sums take them.
struct Taps {
    alignas(32) std::int16_t across[fractions][16]; // all four, for four rows
    alignas(32) std::int16_t down[fractions][16];   // each twice: two in the first four lanes, two in the third four
};

constexpr Taps makeTaps() {
    Taps taps{};
    for (int i = 0; i < fractions; ++i) {
        const float t = static_cast<float>(i) / fractions;
        const float exact[4] = {((-0.5F * t + 1) * t - 0.5F) * t, (1.5F * t - 2.5F) * t * t + 1,
                                ((-1.5F * t + 2) * t + 0.5F) * t, (0.5F * t - 0.5F) * t * t};
        int tap[4] = {};
        int rest = 1 << tapBits;
        for (int k = 0; k < 4; ++k) {
            tap[k] = static_cast<int>(exact[k] * (1 << tapBits) + (exact[k] < 0 ? -0.5F : 0.5F));
            rest -= tap[k];
        }
        tap[i < fractions / 2 ? 1 : 2] += rest;
        for (int k = 0; k < 4; ++k) {
            const auto value = static_cast<std::int16_t>(tap[k]);
            for (int row = 0; row < 4; ++row)
                taps.across[i][4 * row + k] = value;
            const int lane = (k / 2) * 8 + (k % 2) * 2;
            taps.down[i][lane] = value;
            taps.down[i][lane + 1] = value;
        }
    }
    return taps;
}
// Made by the compiler: code for AVX2 must not run before it is known to be there.
constexpr Taps taps = makeTaps();

/// Four rows of four samples.
inline Short16 samplesAt(const std::uint8_t* at, std::ptrdiff_t stride, std::uint8_t) {
    const Int4 rows{load<std::int32_t>(at), load<std::int32_t>(at + stride), load<std::int32_t>(at + 2 * stride),
                    load<std::int32_t>(at + 3 * stride)};
    return widened(reinterpret_cast<Byte16>(rows));
}
inline Short16 samplesAt(const std::uint8_t* at, std::ptrdiff_t stride, std::uint16_t) {
    using Long4 = std::int64_t __attribute__((vector_size(32)));
    const Long4 rows{load<std::int64_t>(at), load<std::int64_t>(at + stride), load<std::int64_t>(at + 2 * stride),
                     load<std::int64_t>(at + 3 * stride)};
    return reinterpret_cast<Short16>(rows);
}

/// The first halves of each vector's halves, then the second ones, narrowed.
inline Short16 narrowed(Int8 a, Int8 b) {
#if defined(__AVX2__)
    return reinterpret_cast<Short16>(_mm256_packs_epi32(reinterpret_cast<__m256i>(a), reinterpret_cast<__m256i>(b)));
#elif defined(__SSE2__)
    const auto half = [](Int4 one, Int4 other) {
        return reinterpret_cast<Short8>(
            _mm_packs_epi32(reinterpret_cast<__m128i>(one), reinterpret_cast<__m128i>(other)));
    };
    return joined(half(lowHalf(a), lowHalf(b)), half(highHalf(a), highHalf(b)));
#else
    const Int8 low = joined(lowHalf(a), lowHalf(b));
    const Int8 high = joined(highHalf(a), highHalf(b));
    return joined(__builtin_convertvector(low, Short8), __builtin_convertvector(high, Short8));
#endif
}

/// Where eight samples of a plane lie: in sixteenths of its pixels.
struct Places {
    Int8 x;
    Int8 y;
};

/// One frame's plane, read at sub-pixel places.
template <typename Sample>
class Source {
public:
    explicit Source(const PlaneView& plane)
        : plane_(plane) {}

    Places bounded(Places places) const {
        return {between(places.x, Int8{} - outside * fractions, Int8{} + (plane_.width + outside) * fractions),
                between(places.y, Int8{} - outside * fractions, Int8{} + (plane_.height + outside) * fractions)};
    }

    /// Whether all that the taps need lies inside, for all of eight places.
    bool isInside(Places places) const {
        const Int8 x = places.x >> 4;
        const Int8 y = places.y >> 4;
        return !any((x < 1) | (y < 1) | (x + 2 >= plane_.width) | (y + 2 >= plane_.height));
    }

    /// Four rows' sums across, two halves a row, for one place that is known to lie inside.
    Int8 acrossInside(int x, int y) const {
        const std::uint8_t* at =
            plane_.data + ((y >> 4) - 1) * plane_.stride + ((x >> 4) - 1) * static_cast<int>(sizeof(Sample));
        return across(samplesAt(at, plane_.stride, Sample{}), x);
    }
    /// The same for any place; beyond the edge the edge is repeated.
    Int8 acrossAnywhere(int x, int y) const {
        Sample samples[4][4];
        for (int row = 0; row < 4; ++row) {
            const std::uint8_t* line = plane_.data + between((y >> 4) - 1 + row, 0, plane_.height - 1) * plane_.stride;
            for (int column = 0; column < 4; ++column)
                samples[row][column] = load<Sample>(line + between((x >> 4) - 1 + column, 0, plane_.width - 1) *
                                                               static_cast<int>(sizeof(Sample)));
        }
        return across(samplesAt(reinterpret_cast<const std::uint8_t*>(samples), sizeof samples[0], Sample{}), x);
    }

    /// Eight samples from a whole-pixel place.
    Int8 eight(int x, int y) const {
        const std::uint8_t* at = plane_.data + y * plane_.stride + x * static_cast<int>(sizeof(Sample));
        if constexpr (sizeof(Sample) == 1)
            return loadBytes(at);
        else
            return __builtin_convertvector(load<Word8>(at), Int8);
    }

    int width() const { return plane_.width; }
    int height() const { return plane_.height; }

private:
    /// Halves of a tap sum fit 16 bits once the depth beyond 1 bit less is taken off.
    Int8 across(Short16 samples, int x) const {
        return pairProducts(samples, load<Short16>(taps.across[x & (fractions - 1)])) >>
               (tapBits + plane_.bitDepth - 15);
    }

    PlaneView plane_;
};

/// A row of the field's values, brought to the plane's row: four times each, with the edges repeated.
struct FieldRow {
    std::int32_t* x;
    std::int32_t* y;
    std::int32_t* shiftX;
    std::int32_t* shiftY;
    std::int32_t* share;
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
    if (halfHeight) return {least(y, height - 1), least(y, height - 1), 4};
    return {least(y / 2, height - 1), between(y % 2 ? y / 2 + 1 : y / 2 - 1, 0, height - 1), 3};
}

inline void repeatEdges(std::int32_t* row, int width) {
    row[-1] = row[0];
    for (int x = width; x < width + rowPadding; ++x)
        row[x] = row[width - 1];
}

void prepareRow(const PhasePlanes& field, const FieldRows& rows, const FieldRow& out) {
    const std::ptrdiff_t near = static_cast<std::ptrdiff_t>(rows.near) * field.width;
    const std::ptrdiff_t far = static_cast<std::ptrdiff_t>(rows.far) * field.width;
    const int nearWeight = rows.nearWeight;
    const int farWeight = 4 - nearWeight;
    const auto mixMotion = [&](const MotionVector* motion, std::int32_t* outX, std::int32_t* outY) {
        for (int x = 0; x < field.width; x += 8) {
            const Motion8 a = loadMotion(motion + near + x);
            const Motion8 b = loadMotion(motion + far + x);
            store(outX + x, a.x * nearWeight + b.x * farWeight);
            store(outY + x, a.y * nearWeight + b.y * farWeight);
        }
        repeatEdges(outX, field.width);
        repeatEdges(outY, field.width);
    };
    mixMotion(field.motion, out.x, out.y);
    if (field.shift) mixMotion(field.shift, out.shiftX, out.shiftY);
    for (int x = 0; x < field.width; x += 8) {
        const auto share = [&](std::ptrdiff_t row) {
            return __builtin_convertvector(load<Short8>(field.secondShare + row + x), Int8);
        };
        store(out.share + x, share(near) * nearWeight + share(far) * farWeight);
    }
    repeatEdges(out.share, field.width);
}

/// Eight values of the plane's row from the field's: sixteen times each.
inline Int8 spread(const std::int32_t* row, int x, bool halfWidth) {
    if (halfWidth) return load<Int8>(row + x) * 3 + load<Int8>(row + x - 1);
    const auto values = load<Int8>(row + x / 2 - 1);
    return __builtin_shufflevector(values, values, 1, 1, 2, 2, 3, 3, 4, 4) * 3 +
           __builtin_shufflevector(values, values, 0, 2, 1, 3, 2, 4, 3, 5);
}

/// Down, finishing both frames' samples of one place: halves of the first's sum, then of the second's.
inline Int4 finished(Int8 firstRows, Int8 secondRows, int firstY, int secondY) {
    const auto firstTaps = load<Short16>(taps.down[firstY & (fractions - 1)]);
    const auto secondTaps = load<Short16>(taps.down[secondY & (fractions - 1)]);
    const Short16 both =
        __builtin_shufflevector(firstTaps, secondTaps, 0, 1, 2, 3, 16, 17, 18, 19, 8, 9, 10, 11, 24, 25, 26, 27);
    const Int8 sums = pairProducts(narrowed(firstRows, secondRows), both);
    return lowHalf(sums) + highHalf(sums);
}

/// Both frames' values of eight samples.
struct Sampled {
    Float8 first;
    Float8 second;
};

template <typename Sample>
Sampled sampledAt(const Source<Sample>& first, const Source<Sample>& second, Places one, Places other, int bitDepth) {
    Int4 halves[8];
    const bool inside = first.isInside(one) && second.isInside(other);
    for (int lane = 0; lane < 8; ++lane) {
        const int x1 = one.x[lane];
        const int y1 = one.y[lane];
        const int x2 = other.x[lane];
        const int y2 = other.y[lane];
        const Int8 rows1 = inside ? first.acrossInside(x1, y1) : first.acrossAnywhere(x1, y1);
        const Int8 rows2 = inside ? second.acrossInside(x2, y2) : second.acrossAnywhere(x2, y2);
        halves[lane] = finished(rows1, rows2, y1, y2);
    }
    Int4 pairs[4]; // first, first, second, second
    for (int i = 0; i < 4; ++i)
        pairs[i] = __builtin_shufflevector(halves[2 * i], halves[2 * i + 1], 0, 4, 2, 6) +
                   __builtin_shufflevector(halves[2 * i], halves[2 * i + 1], 1, 5, 3, 7);
    const float scale = 1.0F / static_cast<float>(1 << (tapBits + 15 - bitDepth));
    const Int8 ones = joined(__builtin_shufflevector(pairs[0], pairs[1], 0, 1, 4, 5),
                             __builtin_shufflevector(pairs[2], pairs[3], 0, 1, 4, 5));
    const Int8 others = joined(__builtin_shufflevector(pairs[0], pairs[1], 2, 3, 6, 7),
                               __builtin_shufflevector(pairs[2], pairs[3], 2, 3, 6, 7));
    return {toFloat(ones) * scale, toFloat(others) * scale};
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
    constexpr float lift = 65536; // makes truncation round down
    const auto sixteenths = [](Float8 offset) { return toInt(offset + (lift + 0.5F)) - static_cast<int>(lift); };
    for (int x = 0; x < width; x += 8) {
        const Float8 vx = toFloat(spread(row.x, x, warp.halfWidth)) * unitX;
        const Float8 vy = toFloat(spread(row.y, x, warp.halfWidth)) * unitY;
        Float8 sx{};
        Float8 sy{};
        if (warp.field.shift) {
            sx = toFloat(spread(row.shiftX, x, warp.halfWidth)) * unitX;
            sy = toFloat(spread(row.shiftY, x, warp.halfWidth)) * unitY;
        }
        const Float8 share = toFloat(spread(row.share, x, warp.halfWidth)) * (1.0F / (16 * shareUnits));
        const Int8 offsets[4] = {sixteenths(sx + toFirst * vx), sixteenths(sy + toFirst * vy),
                                 sixteenths(sx + toSecond * vx), sixteenths(sy + toSecond * vy)};
        Sampled values;
        if (x + 8 <= width && !any(offsets[0] | offsets[1] | offsets[2] | offsets[3])) {
            values = {toFloat(first.eight(x, y)), toFloat(second.eight(x, y))};
        } else {
            const Int8 columns = (laneNumbers() + x) * fractions;
            const Int8 line = Int8{} + y * fractions;
            values = sampledAt(first, second, first.bounded({columns + offsets[0], line + offsets[1]}),
                               second.bounded({columns + offsets[2], line + offsets[3]}), bitDepth);
        }
        const Float8 blended = values.first + share * (values.second - values.first) + 0.5F;
        const Int8 codes = toInt(between(blended, Float8{}, Float8{} + largest));
        const int count = least(8, width - x);
        if constexpr (sizeof(Sample) == 1) {
            storeBytes(out + x, codes, count);
        } else {
            const Word8 words = __builtin_convertvector(codes, Word8);
            std::memcpy(out + 2 * x, &words, static_cast<std::size_t>(count) * sizeof(std::uint16_t));
        }
    }
}

void warp(const PlaneWarp& warp, std::int32_t* scratch, int begin, int end) {
    const std::ptrdiff_t length = warp.field.width + 4 * rowPadding;
    std::int32_t* next = scratch + rowPadding;
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

} // namespace flowtide::flow::FLOWTIDE_LANES
