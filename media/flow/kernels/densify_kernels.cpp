// Densification: from one displacement for each patch to one for each pixel.
#include "media/flow/kernels/kernel_sets.h"
#include "media/flow/kernels/patch_place.h"

namespace flowtide::flow::FLOWTIDE_KERNEL_SET {

namespace {

constexpr float leastWeight = 1e-6F; // less than any pixel gets
constexpr float largestMotion = 500; // pixels; a MotionVector holds this much

/// Sums over the patches that cover a pixel: of their weights, and of their weighted displacements.
struct WeightedSums {
    float* weight;
    float* x;
    float* y;
    std::ptrdiff_t stride;
};

inline Short8 sampledRow(Word8 upper, Word8 lower, Word8 above, Word8 below) {
    return reinterpret_cast<Short8>((upper * above + lower * below + 32) >> 6);
}

/// Adds the upper or the lower half of a patch, eight by four pixels.
void addPatch(const PatchSearch& search, int i, int j, int half, const WeightedSums& sums) {
    const PatchPlanes& patches = search.patches;
    const std::ptrdiff_t at = (j + 1) * patches.stride + i + 1;
    const Motion motion{patches.x[at], patches.y[at]};
    const int left = patchOrigin + patchStride * i;
    const int top = patchOrigin + patchStride * j + half * patchStride;
    const SubPixelPlace place = placeIn(search.to, left, top, motion);
    const Word8 right = Word8{} + static_cast<std::uint16_t>(place.fractionX);
    const Word8 leftWeight = 64 - right;
    const Word8 below = Word8{} + static_cast<std::uint16_t>(place.fractionY);
    const Word8 above = 64 - below;
    const auto across = [&](int row) {
        const std::uint8_t* pixel = place.pixel + row * search.to.stride;
        const auto a = reinterpret_cast<Word8>(widened(load<Byte8>(pixel)));
        const auto b = reinterpret_cast<Word8>(widened(load<Byte8>(pixel + 1)));
        return (a * leftWeight + b * right + 8) >> 4;
    };
    Word8 upper = across(0);
    for (int row = 0; row < patchStride; ++row) {
        const Word8 lower = across(row + 1);
        const Short8 found = sampledRow(upper, lower, above, below);
        upper = lower;
        const Short8 error = found - (widened(load<Byte8>(pixelAt(search.from, left, top + row))) << 2);
        const Float8 gap = toFloat(toInt(error)) * 0.25F;
        const Float8 squared = gap * gap;
        const Float8 weight = 1 / max(squared, Float8{} + 1.0F);
        float* w = sums.weight + row * sums.stride + patchStride * i;
        float* x = sums.x + row * sums.stride + patchStride * i;
        float* y = sums.y + row * sums.stride + patchStride * i;
        store(w, load<Float8>(w) + weight);
        store(x, load<Float8>(x) + weight * motion.x);
        store(y, load<Float8>(y) + weight * motion.y);
    }
}

inline Short8 motionUnitsOf(Float8 pixels) {
    const Float8 bounded = clamp(pixels, Float8{} - largestMotion, Float8{} + largestMotion) * motionUnits;
    return toShort(toInt(bounded + largestMotion * motionUnits + 0.5F) - static_cast<int>(largestMotion) * motionUnits);
}

void densify(const PatchSearch& search, float* scratch, MotionVector* motion, std::ptrdiff_t stride, int begin,
             int end) {
    const std::ptrdiff_t sumStride = patchStride * search.patches.columns + 2 * patchSize;
    const std::ptrdiff_t sumPlane = patchStride * sumStride;
    const WeightedSums sums{scratch, scratch + sumPlane, scratch + 2 * sumPlane, sumStride};
    const int width = search.from.width;
    for (int cell = begin; cell < end; ++cell) {
        std::memset(scratch, 0, densifyScratchSize(search.patches.columns) * sizeof(float));
        for (int i = 0; i < search.patches.columns; ++i) {
            addPatch(search, i, cell, 1, sums);
            addPatch(search, i, cell + 1, 0, sums);
        }
        const int rows = min(patchStride, search.from.height - patchStride * cell);
        for (int row = 0; row < rows; ++row) {
            MotionVector* line = motion + (patchStride * cell + row) * stride;
            const std::ptrdiff_t at = row * sums.stride - patchOrigin;
            for (int x = 0; x < width; x += 8) {
                const Float8 scale = 1 / max(load<Float8>(sums.weight + at + x), Float8{} + leastWeight);
                const Short8 vx = motionUnitsOf(load<Float8>(sums.x + at + x) * scale);
                const Short8 vy = motionUnitsOf(load<Float8>(sums.y + at + x) * scale);
                const Short16 pairs =
                    __builtin_shufflevector(vx, vy, 0, 8, 1, 9, 2, 10, 3, 11, 4, 12, 5, 13, 6, 14, 7, 15);
                const int count = min(8, width - x);
                std::memcpy(line + x, &pairs, static_cast<std::size_t>(count) * sizeof(MotionVector));
            }
        }
    }
}

} // namespace

void addDensifyKernels(Kernels& kernels) {
    kernels.densify = densify;
}

} // namespace flowtide::flow::FLOWTIDE_KERNEL_SET
