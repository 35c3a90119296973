// Forward splatting of both flows to a phase, their fusion, and blend weights by occlusion.
#include "media/flow/kernels/kernel_sets.h"
#include "media/flow/kernels/sampling.h"
#include "media/flow/kernels/tile_error.h"

namespace flowtide::flow::FLOWTIDE_KERNEL_SET {

namespace {

constexpr float lowConfidenceCost = 2;  // luma codes that no confidence at all costs a candidate
constexpr int sameMotion = motionUnits; // nearer candidates are averaged
constexpr float leastWeight = 0.1F;
constexpr float outsideWeight = 0.001F;
constexpr float photometricHalf = 10; // luma codes at which occlusion counts by a quarter

/// A vector's component times a phase, rounded.
inline Int8 scaled(Int8 units, int phase) {
    return (units * phase + fractionUnits / 2) >> 14;
}

// A cell, from the highest bits down: confidence and nearness of what landed there, plus one; the packed vector.
constexpr int nearnessBits = 14;
constexpr int farthestSquared = 2 * motionUnits * motionUnits;

using Long4 = std::int64_t __attribute__((vector_size(32)));

/// Keeps the greater of four cells and four values.
inline void keepGreater(std::uint64_t* cells, Long4 values) {
    store(cells, max(load<Long4>(cells), values));
}

/// What eight neighbouring vectors bring to one corner each, where the corners lie side by side too.
inline void keepGreater(std::uint64_t* cells, Int8 ranks, Int8 vectors) {
    keepGreater(cells, reinterpret_cast<Long4>(__builtin_shufflevector(vectors, ranks, 0, 8, 1, 9, 2, 10, 3, 11)));
    keepGreater(cells + 4,
                reinterpret_cast<Long4>(__builtin_shufflevector(vectors, ranks, 4, 12, 5, 13, 6, 14, 7, 15)));
}

void splat(const MotionView& flow, int phase, bool reversed, std::uint64_t* cells) {
    const int width = flow.width;
    const int height = flow.height;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; x += 8) {
            const std::ptrdiff_t at = static_cast<std::ptrdiff_t>(y) * width + x;
            const int count = min(8, width - x);
            const Motion8 motion = loadMotion(flow.motion + at);
            const Int8 tx = (laneNumbers() + x) * motionUnits + scaled(motion.x, phase);
            const Int8 ty = y * motionUnits + scaled(motion.y, phase);
            const Int8 vectors = reversed ? packed({-motion.x, -motion.y}) : packed(motion);
            const Int8 ranks = (loadBytes(flow.confidence + at) >> 4 << nearnessBits) + 1;
            const Int8 columns = tx >> 6;
            const Int8 rows = ty >> 6;
            const Int8 fx = tx & (motionUnits - 1);
            const Int8 fy = ty & (motionUnits - 1);
            const Int8 gx = motionUnits - fx;
            const Int8 gy = motionUnits - fy;
            const Int8 base = farthestSquared + ranks;
            const Int8 corner[4] = {base - fx * fx - fy * fy, base - gx * gx - fy * fy, base - fx * fx - gy * gy,
                                    base - gx * gx - gy * gy};
            const int firstColumn = columns[0];
            const int firstRow = rows[0];
            const bool sideBySide = count == 8 && firstColumn >= 0 && firstRow >= 0 && firstColumn + 8 < width &&
                                    firstRow + 1 < height &&
                                    !any((columns - laneNumbers() != firstColumn) | (rows != firstRow));
            if (sideBySide) {
                std::uint64_t* cell = cells + static_cast<std::ptrdiff_t>(firstRow) * width + firstColumn;
                keepGreater(cell, corner[0], vectors);
                keepGreater(cell + 1, corner[1], vectors);
                keepGreater(cell + width, corner[2], vectors);
                keepGreater(cell + width + 1, corner[3], vectors);
                continue;
            }
            std::uint32_t ranked[4][8] = {};
            for (int n = 0; n < 4; ++n)
                store(ranked[n], corner[n]);
            for (int lane = 0; lane < count; ++lane) {
                const int column = columns[lane];
                const int row = rows[lane];
                const std::uint64_t vector = static_cast<std::uint32_t>(vectors[lane]);
                const auto put = [&](std::uint64_t* cell, int n) {
                    *cell = max(*cell, (static_cast<std::uint64_t>(ranked[n][lane]) << 32) | vector);
                };
                std::uint64_t* cell = cells + static_cast<std::ptrdiff_t>(row) * width + column;
                if (column >= 0 && row >= 0 && column < width - 1 && row < height - 1) {
                    put(cell, 0);
                    put(cell + 1, 1);
                    put(cell + width, 2);
                    put(cell + width + 1, 3);
                    continue;
                }
                const bool left = column >= 0 && column < width;
                const bool right = column >= -1 && column < width - 1;
                const bool upper = row >= 0 && row < height;
                const bool lower = row >= -1 && row < height - 1;
                if (left && upper) put(cell, 0);
                if (right && upper) put(cell + 1, 1);
                if (left && lower) put(cell + width, 2);
                if (right && lower) put(cell + width + 1, 3);
            }
        }
}

void resolveSplat(const std::uint64_t* cells, int width, const Projection& result, int begin, int end) {
    for (int y = begin; y < end; ++y) {
        const std::uint64_t* line = cells + static_cast<std::ptrdiff_t>(y) * width;
        MotionVector* motion = result.motion + static_cast<std::ptrdiff_t>(y) * width;
        std::uint8_t* confidence = result.confidence + static_cast<std::ptrdiff_t>(y) * width;
        const auto vectorOf = [&](int x) {
            const auto bits = static_cast<std::uint32_t>(line[x]);
            return MotionVector{static_cast<std::int16_t>(bits & 0xFFFF), static_cast<std::int16_t>(bits >> 16)};
        };
        int filledTo = 0;
        int last = -1;
        const auto fill = [&](int to, int next) {
            for (int x = filledTo; x < to; ++x) {
                const bool before = last >= 0 && (next < 0 || x - last <= next - x);
                const int from = before ? last : next;
                motion[x] = from >= 0 ? vectorOf(from) : MotionVector{0, 0};
                confidence[x] = 0;
            }
        };
        for (int x = 0; x < width; ++x) {
            const auto rank = static_cast<std::uint32_t>(line[x] >> 32);
            if (rank == 0) continue;
            if (filledTo < x) fill(x, x);
            motion[x] = vectorOf(x);
            confidence[x] = static_cast<std::uint8_t>(min((rank - 1) >> nearnessBits << 4, 255U));
            last = x;
            filledTo = x + 1;
        }
        fill(width, -1);
    }
}

/// The luma difference between the two places that a motion through (x, y) leads to.
inline Float8 difference(const PhaseImages& images, Int8 x, Int8 y, Motion8 motion) {
    const Int8 firstX = x - scaled(motion.x, images.phase);
    const Int8 firstY = y - scaled(motion.y, images.phase);
    const Int8 one = imageAt(images.first, firstX, firstY);
    const Int8 other = imageAt(images.second, firstX + motion.x, firstY + motion.y);
    return absolute(toFloat(one - other) * (1 / imageUnits));
}

void candidateError(const PhaseImages& images, const MotionVector* motion, int width, int height, int left, int top,
                    TileMeans& means) {
    TileValues values;
    fillTile(left, top, width, height, values, [&](Int8 columns, int row) {
        const std::ptrdiff_t line = static_cast<std::ptrdiff_t>(row) * width;
        return difference(images, columns * motionUnits, Int8{} + row * motionUnits,
                          unpacked(gathered(motion + line, columns * 4)));
    });
    tileMeans(values, means);
}

/// Writes a row's means and says which lanes' motions differ too much for that.
inline Int8 averageRow(const MotionVector* one, const MotionVector* other, MotionVector* result, int count) {
    const Motion8 a = loadMotion(one);
    const Motion8 b = loadMotion(other);
    storeFirst(result, packed({(a.x + b.x) >> 1, (a.y + b.y) >> 1}), count);
    const Float8 differenceX = toFloat(a.x - b.x);
    const Float8 differenceY = toFloat(a.y - b.y);
    return (differenceX * differenceX + differenceY * differenceY >= static_cast<float>(sameMotion * sameMotion)) &
           (laneNumbers() < count);
}

void fuseProjections(const PhaseImages& images, const Projection& one, const Projection& other, int width, int height,
                     MotionVector* result, int beginTile, int endTile) {
    const int end = min(endTile * tileSize, height);
    for (int top = beginTile * tileSize; top < end; top += tileSize)
        for (int left = 0; left < width; left += tileSize) {
            const int bottom = min(top + tileSize, height);
            const int right = min(left + tileSize, width);
            Int8 differ{};
            for (int y = top; y < bottom; ++y)
                for (int x = left; x < right; x += 8) {
                    const std::ptrdiff_t at = static_cast<std::ptrdiff_t>(y) * width + x;
                    differ |= averageRow(one.motion + at, other.motion + at, result + at, min(8, right - x));
                }
            if (!any(differ)) continue;
            TileMeans oneError;
            TileMeans otherError;
            candidateError(images, one.motion, width, height, left, top, oneError);
            candidateError(images, other.motion, width, height, left, top, otherError);
            for (int y = top; y < bottom; ++y)
                for (int x = left; x < right; ++x) {
                    const std::ptrdiff_t at = static_cast<std::ptrdiff_t>(y) * width + x;
                    const MotionVector a = one.motion[at];
                    const MotionVector b = other.motion[at];
                    const auto differenceX = static_cast<float>(a.x - b.x);
                    const auto differenceY = static_cast<float>(a.y - b.y);
                    if (differenceX * differenceX + differenceY * differenceY <
                        static_cast<float>(sameMotion * sameMotion))
                        continue;
                    const auto cost = [&](const TileMeans& error, std::uint8_t confidence) {
                        return error.at[y - top][x - left] - lowConfidenceCost / 255 * static_cast<float>(confidence);
                    };
                    result[at] = cost(otherError, other.confidence[at]) < cost(oneError, one.confidence[at]) ? b : a;
                }
        }
}

inline Short16 medianOfFive(Short16 a, Short16 b, Short16 c, Short16 d, Short16 e) {
    // Drops the least and the greatest of four; the median is the middle one of the rest and the fifth.
    const Short16 low = max(min(a, b), min(c, d));
    const Short16 high = min(max(a, b), max(c, d));
    return max(min(low, high), min(max(low, high), e));
}

void crossMedian(const MotionVector* motion, int width, int height, MotionVector* result, int begin, int end) {
    for (int y = begin; y < end; ++y) {
        const MotionVector* line = motion + static_cast<std::ptrdiff_t>(y) * width;
        const MotionVector* above = motion + static_cast<std::ptrdiff_t>(max(y - 1, 0)) * width;
        const MotionVector* below = motion + static_cast<std::ptrdiff_t>(min(y + 1, height - 1)) * width;
        MotionVector* out = result + static_cast<std::ptrdiff_t>(y) * width;
        for (int x = 0; x < width; x += 8) {
            const auto centre = load<Short16>(line + x);
            Short16 left = load<Short16>(line + max(x - 1, 0));
            if (x == 0)
                left = __builtin_shufflevector(centre, centre, 0, 1, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13);
            Short16 right = load<Short16>(line + x + 1);
            if (const int lastLane = width - 1 - x; lastLane < 8) {
                // Past the last column the last one counts again.
                right[2 * lastLane] = centre[2 * lastLane];
                right[2 * lastLane + 1] = centre[2 * lastLane + 1];
            }
            const Short16 median =
                medianOfFive(centre, left, right, load<Short16>(above + x), load<Short16>(below + x));
            storeFirst(out + x, reinterpret_cast<Int8>(median), min(8, width - x));
        }
    }
}

/// Whether eight places of a frame lie inside it, and how far what they show is seen in the other frame too.
struct Visibility {
    Int8 inside;
    Float8 inOther; ///< 1: certainly
};

inline Visibility visibilityAt(const MotionView& flow, Int8 placeX, Int8 placeY) {
    const Int8 column = (placeX + motionUnits / 2) >> 6;
    const Int8 row = (placeY + motionUnits / 2) >> 6;
    const Int8 inside = (column >= 0) & (row >= 0) & (column < flow.width) & (row < flow.height);
    const Int8 offset = (clamp(row, Int8{}, Int8{} + (flow.height - 1)) * flow.width) +
                        clamp(column, Int8{}, Int8{} + (flow.width - 1));
    return {inside, toFloat(gathered(flow.visibility, offset) & 255) * (1.0F / 255)};
}

void blendWeights(const PhaseImages& images, const MotionView& forward, const MotionView& backward,
                  const PhasePlanes& field, int begin, int end) {
    const float phase = static_cast<float>(images.phase) / fractionUnits;
    for (int y = begin; y < end; ++y)
        for (int x = 0; x < field.width; x += 8) {
            const std::ptrdiff_t at = static_cast<std::ptrdiff_t>(y) * field.width + x;
            const int count = min(8, field.width - x);
            const Motion8 motion = loadMotion(field.motion + at);
            Int8 px = (laneNumbers() + x) * motionUnits;
            Int8 py = Int8{} + y * motionUnits;
            if (field.shift) {
                const Motion8 shift = loadMotion(field.shift + at);
                px += shift.x;
                py += shift.y;
            }
            const Int8 firstX = px - scaled(motion.x, images.phase);
            const Int8 firstY = py - scaled(motion.y, images.phase);
            const Visibility atFirst = visibilityAt(forward, firstX, firstY);
            const Visibility atSecond = visibilityAt(backward, firstX + motion.x, firstY + motion.y);
            const Int8 unoccluded = atFirst.inside & atSecond.inside & (atFirst.inOther >= 1) & (atSecond.inOther >= 1);
            Int8 secondWeight = Int8{} + images.phase;
            if (any(~unoccluded)) {
                const Float8 gap = difference(images, px, py, motion);
                const Float8 influence = gap / (gap + photometricHalf);
                const Float8 squared = influence * influence;
                // What one frame shows and the other doesn't must not be taken from the other.
                const auto weight = [&](Int8 inside, Float8 seen) {
                    return inside ? 1 + (seen + leastWeight - 1) * squared : Float8{} + outsideWeight;
                };
                const Float8 first = (1 - phase) * weight(atFirst.inside, atSecond.inOther);
                const Float8 second = phase * weight(atSecond.inside, atFirst.inOther);
                const Int8 weighed = toInt(second / (first + second) * fractionUnits + 0.5F);
                secondWeight = unoccluded ? secondWeight : weighed;
            }
            const Short8 shortWeights = toShort(secondWeight);
            if (count == 8)
                store(field.secondWeight + at, shortWeights);
            else
                std::memcpy(field.secondWeight + at, &shortWeights,
                            static_cast<std::size_t>(count) * sizeof(std::int16_t));
        }
}

} // namespace

void addPhaseKernels(Kernels& kernels) {
    kernels.splat = splat;
    kernels.resolveSplat = resolveSplat;
    kernels.fuseProjections = fuseProjections;
    kernels.crossMedian = crossMedian;
    kernels.blendWeights = blendWeights;
}

} // namespace flowtide::flow::FLOWTIDE_KERNEL_SET
