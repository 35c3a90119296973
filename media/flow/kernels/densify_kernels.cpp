// From one vector for each patch to one for each pixel.
#include "media/flow/kernels/kernel_sets.h"
#include "media/flow/kernels/patch_place.h"

namespace flowtide::flow::FLOWTIDE_LANES {

namespace {

constexpr float leastVote = 1e-6F; // less than any pixel gets
constexpr float farthest = 500;    // pixels; a MotionVector holds this much

/// Adds one patch's say on eight by four pixels.
struct Vote {
    float* weight;
    float* x;
    float* y;
    std::ptrdiff_t stride;
};

inline Short8 sampledRow(Word8 upper, Word8 lower, Word8 above, Word8 below) {
    return reinterpret_cast<Short8>((upper * above + lower * below + 32) >> 6);
}

void vote(const PatchSearch& search, int i, int j, int half, const Vote& votes) {
    const PatchPlanes& patches = search.patches;
    const std::ptrdiff_t at = (j + 1) * patches.stride + i + 1;
    const Motion motion{patches.x[at], patches.y[at]};
    const int left = patchOrigin + patchStride * i;
    const int top = patchOrigin + patchStride * j + half * patchStride;
    const SubPixelPlace place = placeIn(search.to, left, top, motion);
    const Word8 right = Word8{} + static_cast<std::uint16_t>(place.fractionX);
    const Word8 leftShare = 64 - right;
    const Word8 below = Word8{} + static_cast<std::uint16_t>(place.fractionY);
    const Word8 above = 64 - below;
    const auto across = [&](int row) {
        const std::uint8_t* pixel = place.pixel + row * search.to.stride;
        const auto a = reinterpret_cast<Word8>(widened(load<Byte8>(pixel)));
        const auto b = reinterpret_cast<Word8>(widened(load<Byte8>(pixel + 1)));
        return (a * leftShare + b * right + 8) >> 4;
    };
    Word8 upper = across(0);
    for (int row = 0; row < patchStride; ++row) {
        const Word8 lower = across(row + 1);
        const Short8 found = sampledRow(upper, lower, above, below);
        upper = lower;
        const Short8 error = found - (widened(load<Byte8>(pixelAt(search.from, left, top + row))) << 2);
        const Float8 apart = toFloat(toInt(error)) * 0.25F;
        const Float8 squared = apart * apart;
        const Float8 weight = 1 / greatest(squared, Float8{} + 1.0F);
        float* w = votes.weight + row * votes.stride + patchStride * i;
        float* x = votes.x + row * votes.stride + patchStride * i;
        float* y = votes.y + row * votes.stride + patchStride * i;
        store(w, load<Float8>(w) + weight);
        store(x, load<Float8>(x) + weight * motion.x);
        store(y, load<Float8>(y) + weight * motion.y);
    }
}

inline Short8 motionUnitsOf(Float8 pixels) {
    const Float8 bounded = between(pixels, Float8{} - farthest, Float8{} + farthest) * motionUnits;
    return toShort(toInt(bounded + farthest * motionUnits + 0.5F) - static_cast<int>(farthest) * motionUnits);
}

void densify(const PatchSearch& search, float* scratch, MotionVector* motion, std::ptrdiff_t stride, int begin,
             int end) {
    const std::ptrdiff_t voteStride = patchStride * search.patches.columns + 2 * patchSize;
    const std::ptrdiff_t votePlane = patchStride * voteStride;
    const Vote votes{scratch, scratch + votePlane, scratch + 2 * votePlane, voteStride};
    const int width = search.from.width;
    for (int cell = begin; cell < end; ++cell) {
        std::memset(scratch, 0, densifyScratchSize(search.patches.columns) * sizeof(float));
        for (int i = 0; i < search.patches.columns; ++i) {
            vote(search, i, cell, 1, votes);
            vote(search, i, cell + 1, 0, votes);
        }
        const int rows = least(patchStride, search.from.height - patchStride * cell);
        for (int row = 0; row < rows; ++row) {
            MotionVector* line = motion + (patchStride * cell + row) * stride;
            const std::ptrdiff_t at = row * votes.stride - patchOrigin;
            for (int x = 0; x < width; x += 8) {
                const Float8 share = 1 / greatest(load<Float8>(votes.weight + at + x), Float8{} + leastVote);
                const Short8 vx = motionUnitsOf(load<Float8>(votes.x + at + x) * share);
                const Short8 vy = motionUnitsOf(load<Float8>(votes.y + at + x) * share);
                const Short16 pairs =
                    __builtin_shufflevector(vx, vy, 0, 8, 1, 9, 2, 10, 3, 11, 4, 12, 5, 13, 6, 14, 7, 15);
                const int count = least(8, width - x);
                std::memcpy(line + x, &pairs, static_cast<std::size_t>(count) * sizeof(MotionVector));
            }
        }
    }
}

} // namespace

void addDensifyKernels(Kernels& kernels) {
    kernels.densify = densify;
}

} // namespace flowtide::flow::FLOWTIDE_LANES
