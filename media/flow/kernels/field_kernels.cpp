// The forward-backward consistency check, and pull-push filling of what it does not trust.
#include "media/flow/kernels/kernel_sets.h"
#include "media/flow/kernels/sampling.h"
#include "media/flow/kernels/tile_error.h"

namespace flowtide::flow::FLOWTIDE_KERNEL_SET {

namespace {

constexpr float leastKnown = 1e-4F;
constexpr float lumaFalloff = 0.01F;  // of a parent's weight, by squared luma difference
constexpr float wellMatchedError = 3; // mean luma codes; a vector with less is kept …
constexpr float worseFactor = 3;      // … if the filling's error is more than this many times as large, and 1

void checkConsistency(const MotionView& flow, const MotionVector* back, int begin, int end) {
    const int right = flow.width > 1 ? 4 : 0; // bytes to the neighbouring vectors
    const int below = flow.height > 1 ? 4 * flow.width : 0;
    const int farX = (flow.width - 1) * motionUnits;
    const int farY = (flow.height - 1) * motionUnits;
    for (int y = begin; y < end; ++y)
        for (int x = 0; x < flow.width; x += 8) {
            const std::ptrdiff_t at = static_cast<std::ptrdiff_t>(y) * flow.width + x;
            const int count = min(8, flow.width - x);
            const Motion8 motion = loadMotion(flow.motion + at);
            const Int8 tx = (laneNumbers() + x) * motionUnits + motion.x;
            const Int8 ty = y * motionUnits + motion.y;
            const Int8 inside = (tx >= 0) & (ty >= 0) & (tx <= farX) & (ty <= farY);
            const Int8 ix = clamp(tx >> 6, Int8{}, Int8{} + max(flow.width - 2, 0));
            const Int8 iy = clamp(ty >> 6, Int8{}, Int8{} + max(flow.height - 2, 0));
            const Int8 fx = clamp(tx - ix * motionUnits, Int8{}, Int8{} + motionUnits);
            const Int8 fy = clamp(ty - iy * motionUnits, Int8{}, Int8{} + motionUnits);
            const Int8 offset = (iy * flow.width + ix) * 4;
            const auto* bytes = reinterpret_cast<const std::uint8_t*>(back);
            const Motion8 a = unpacked(gathered(bytes, offset));
            const Motion8 b = unpacked(gathered(bytes + right, offset));
            const Motion8 c = unpacked(gathered(bytes + below, offset));
            const Motion8 d = unpacked(gathered(bytes + below + right, offset));
            const Int8 gx = motionUnits - fx;
            const Int8 gy = motionUnits - fy;
            const Int8 backX = (a.x * gx + b.x * fx) * gy + (c.x * gx + d.x * fx) * fy;
            const Int8 backY = (a.y * gx + b.y * fx) * gy + (c.y * gx + d.y * fx) * fy;
            constexpr float backUnits = 1.0F / (motionUnits * motionUnits * motionUnits); // to pixels
            const Float8 vx = toFloat(motion.x) * (1.0F / motionUnits);
            const Float8 vy = toFloat(motion.y) * (1.0F / motionUnits);
            const Float8 missX = vx + toFloat(backX) * backUnits;
            const Float8 missY = vy + toFloat(backY) * backUnits;
            const Float8 mismatch = missX * missX + missY * missY;
            const Float8 stretch = 1 + 0.02F * (vx * vx + vy * vy);
            // exp(-mismatch / (0.5 + …)), nearly.
            Float8 confidence = max(1 - mismatch / (4.0F * stretch), Float8{});
            confidence *= confidence;
            confidence *= confidence;
            confidence *= confidence;
            const Float8 tolerance = 2 + 0.02F * (vx * vx + vy * vy);
            const Float8 visibility = min(tolerance / max(mismatch, Float8{} + 1e-6F), Float8{} + 1.0F);
            const Int8 zero{};
            storeBytes(flow.confidence + at, inside ? toInt(confidence * 255 + 0.5F) : zero, count);
            storeBytes(flow.visibility + at, inside ? toInt(visibility * visibility * 255 + 0.5F) : zero, count);
        }
}

/// The sums of neighbouring pairs.
inline Float4 pairSums(Float8 values) {
    return __builtin_shufflevector(values, values, 0, 2, 4, 6) + __builtin_shufflevector(values, values, 1, 3, 5, 7);
}

/// Repeats the last value of each row to where whole vectors end, and the first once before it.
void padRow(const FillPlanes& planes, int y) {
    float* const all[] = {planes.x, planes.y, planes.known, planes.luma};
    for (float* plane : all) {
        float* row = plane + y * planes.stride;
        row[-1] = row[0];
        for (int x = planes.width; x < planes.stride - 1; ++x)
            row[x] = row[planes.width - 1];
    }
}

/// What eight pixels of a row add to the level above.
struct Contribution {
    Float8 x;
    Float8 y;
    Float8 known;
    Float8 luma;
};

void storePulled(const Contribution& upper, const Contribution& lower, const FillPlanes& coarse, std::ptrdiff_t at) {
    const Float4 known = pairSums(upper.known + lower.known);
    store(coarse.x + at, pairSums(upper.x + lower.x) / known);
    store(coarse.y + at, pairSums(upper.y + lower.y) / known);
    store(coarse.known + at, min(known, Float4{} + 1.0F));
    store(coarse.luma + at, pairSums(upper.luma + lower.luma) * 0.25F);
}

void pullMotion(const MotionView& flow, const ImageView& image, const FillPlanes& coarse, int begin, int end) {
    const auto row = [&](int x, int y) {
        // Past the last column the last one counts again, as it does for an odd width.
        const Int8 columns = clamp(laneNumbers() + x, Int8{}, Int8{} + (flow.width - 1));
        const std::ptrdiff_t line = static_cast<std::ptrdiff_t>(y) * flow.width;
        const bool whole = x + 8 <= flow.width;
        const Motion8 motion =
            whole ? loadMotion(flow.motion + line + x) : unpacked(gathered(flow.motion + line, columns * 4));
        const Int8 confidence =
            whole ? loadBytes(flow.confidence + line + x) : gathered(flow.confidence + line, columns) & 255;
        const Int8 luma = whole ? loadBytes(image.origin + y * image.stride + x)
                                : gathered(image.origin + y * image.stride, columns) & 255;
        const Float8 known = confidence >= trustedConfidence
                                 ? Float8{} + 1.0F
                                 : max(toFloat(confidence) * (1.0F / 255), Float8{} + leastKnown);
        return Contribution{known * toFloat(motion.x), known * toFloat(motion.y), known, toFloat(luma)};
    };
    for (int y = begin; y < end; ++y) {
        const int lower = min(2 * y + 1, flow.height - 1);
        for (int x = 0; x < coarse.width; x += 4)
            storePulled(row(2 * x, 2 * y), row(2 * x, lower), coarse, y * coarse.stride + x);
        padRow(coarse, y);
    }
}

void pull(const FillPlanes& fine, const FillPlanes& coarse, int begin, int end) {
    const auto row = [&](int x, int y) {
        const std::ptrdiff_t at = y * fine.stride + x;
        const auto known = load<Float8>(fine.known + at);
        return Contribution{known * load<Float8>(fine.x + at), known * load<Float8>(fine.y + at), known,
                            load<Float8>(fine.luma + at)};
    };
    for (int y = begin; y < end; ++y) {
        const int lower = min(2 * y + 1, fine.height - 1);
        for (int x = 0; x < coarse.width; x += 4)
            storePulled(row(2 * x, 2 * y), row(2 * x, lower), coarse, y * coarse.stride + x);
        padRow(coarse, y);
    }
}

/// The weighted mean of the four coarse pixels around each of eight fine ones.
struct Interpolated {
    Float8 x;
    Float8 y;
};
Interpolated interpolated(const FillPlanes& coarse, int x, int y, Float8 luma) {
    const int nearRow = y / 2;
    const int farRow = clamp(y % 2 ? nearRow + 1 : nearRow - 1, 0, coarse.height - 1);
    Interpolated sum{};
    Float8 weights{};
    for (int n = 0; n < 2; ++n) {
        const std::ptrdiff_t at = (n == 0 ? nearRow : farRow) * coarse.stride + x / 2 - 1;
        const auto vx = load<Float8>(coarse.x + at);
        const auto vy = load<Float8>(coarse.y + at);
        const auto other = load<Float8>(coarse.luma + at);
        const float vertical = n == 0 ? 0.75F : 0.25F;
        const auto add = [&](Float8 px, Float8 py, Float8 parentLuma, float horizontal) {
            const Float8 gap = parentLuma - luma;
            const Float8 weight = vertical * horizontal / (1 + lumaFalloff * gap * gap);
            sum.x += weight * px;
            sum.y += weight * py;
            weights += weight;
        };
        add(__builtin_shufflevector(vx, vx, 1, 1, 2, 2, 3, 3, 4, 4),
            __builtin_shufflevector(vy, vy, 1, 1, 2, 2, 3, 3, 4, 4),
            __builtin_shufflevector(other, other, 1, 1, 2, 2, 3, 3, 4, 4), 0.75F);
        add(__builtin_shufflevector(vx, vx, 0, 2, 1, 3, 2, 4, 3, 5),
            __builtin_shufflevector(vy, vy, 0, 2, 1, 3, 2, 4, 3, 5),
            __builtin_shufflevector(other, other, 0, 2, 1, 3, 2, 4, 3, 5), 0.25F);
    }
    return {sum.x / weights, sum.y / weights};
}

void push(const FillPlanes& fine, const FillPlanes& coarse, int begin, int end) {
    for (int y = begin; y < end; ++y) {
        for (int x = 0; x < fine.width; x += 8) {
            const std::ptrdiff_t at = y * fine.stride + x;
            const auto known = load<Float8>(fine.known + at);
            const Interpolated from = interpolated(coarse, x, y, load<Float8>(fine.luma + at));
            const auto vx = load<Float8>(fine.x + at);
            const auto vy = load<Float8>(fine.y + at);
            store(fine.x + at, from.x + known * (vx - from.x));
            store(fine.y + at, from.y + known * (vy - from.y));
        }
        padRow(fine, y);
    }
}

void pushMotion(const MotionView& flow, const ImageView& image, const FillPlanes& coarse, MotionVector* filled,
                int begin, int end) {
    for (int y = begin; y < end; ++y)
        for (int x = 0; x < flow.width; x += 8) {
            const std::ptrdiff_t at = static_cast<std::ptrdiff_t>(y) * flow.width + x;
            const int count = min(8, flow.width - x);
            const Motion8 motion = loadMotion(flow.motion + at);
            const Int8 confidence = loadBytes(flow.confidence + at);
            const Int8 untrusted = (confidence < trustedConfidence) & (laneNumbers() < count);
            if (!any(untrusted)) {
                storeFirst(filled + at, packed(motion), count);
                continue;
            }
            const Interpolated from =
                interpolated(coarse, x, y, toFloat(loadBytes(image.origin + y * image.stride + x)));
            const Float8 known = max(toFloat(confidence) * (1.0F / 255), Float8{} + leastKnown);
            constexpr int lift = 32768; // makes truncation round
            const Int8 vx = toInt(from.x + known * (toFloat(motion.x) - from.x) + (lift + 0.5F)) - lift;
            const Int8 vy = toInt(from.y + known * (toFloat(motion.y) - from.y) + (lift + 0.5F)) - lift;
            storeFirst(filled + at, packed({untrusted ? vx : motion.x, untrusted ? vy : motion.y}), count);
        }
}

/// Whether any vector of a tile may be put back.
bool hasUntrusted(const MotionView& flow, const MotionVector* filled, int left, int top) {
    const int right = min(left + tileSize, flow.width);
    const int bottom = min(top + tileSize, flow.height);
    for (int y = top; y < bottom; ++y) {
        const std::ptrdiff_t line = static_cast<std::ptrdiff_t>(y) * flow.width;
        for (int x = left; x < right; ++x) {
            if (flow.confidence[line + x] >= trustedConfidence) continue;
            const int differenceX = flow.motion[line + x].x - filled[line + x].x;
            const int differenceY = flow.motion[line + x].y - filled[line + x].y;
            if (differenceX * differenceX + differenceY * differenceY > motionUnits * motionUnits / 4) return true;
        }
    }
    return false;
}

/// How badly the images agree on the motion around each pixel of a tile.
void matchingError(const MotionView& flow, const MotionVector* motion, const ImageView& from, const ImageView& to,
                   int left, int top, TileMeans& means) {
    TileValues values;
    fillTile(left, top, flow.width, flow.height, values, [&](Int8 columns, int row) {
        const std::ptrdiff_t line = static_cast<std::ptrdiff_t>(row) * flow.width;
        const Motion8 v = unpacked(gathered(motion + line, columns * 4));
        const Int8 there = imageAt(to, columns * motionUnits + v.x, row * motionUnits + v.y);
        const Int8 here = gathered(from.origin + row * from.stride, columns) & 255;
        return absolute(toFloat(there) * (1 / imageUnits) - toFloat(here));
    });
    tileMeans(values, means);
}

void restoreMatched(const MotionView& flow, const ImageView& from, const ImageView& to, const MotionVector* filled,
                    MotionVector* result, int beginTile, int endTile) {
    const int end = min(endTile * tileSize, flow.height);
    for (int top = beginTile * tileSize; top < end; top += tileSize) {
        const int bottom = min(top + tileSize, flow.height);
        const std::ptrdiff_t start = static_cast<std::ptrdiff_t>(top) * flow.width;
        std::memcpy(result + start, filled + start,
                    static_cast<std::size_t>(bottom - top) * static_cast<std::size_t>(flow.width) *
                        sizeof(MotionVector));
        for (int left = 0; left < flow.width; left += tileSize) {
            if (!hasUntrusted(flow, filled, left, top)) continue;
            TileMeans found;
            TileMeans fill;
            matchingError(flow, flow.motion, from, to, left, top, found);
            matchingError(flow, filled, from, to, left, top, fill);
            for (int y = top; y < bottom; ++y)
                for (int x = left; x < min(left + tileSize, flow.width); ++x) {
                    const float error = found.at[y - top][x - left];
                    if (error >= wellMatchedError || fill.at[y - top][x - left] <= worseFactor * error + 1) continue;
                    const std::ptrdiff_t at = static_cast<std::ptrdiff_t>(y) * flow.width + x;
                    result[at] = flow.motion[at];
                }
        }
    }
}

} // namespace

void addFieldKernels(Kernels& kernels) {
    kernels.checkConsistency = checkConsistency;
    kernels.pullMotion = pullMotion;
    kernels.pull = pull;
    kernels.push = push;
    kernels.pushMotion = pushMotion;
    kernels.restoreMatched = restoreMatched;
}

} // namespace flowtide::flow::FLOWTIDE_KERNEL_SET
