// Patch matching on one level: candidate search, sub-pixel alignment, regularisation.
#include "media/flow/kernels/kernel_sets.h"
#include "media/flow/kernels/patch_place.h"
#include "media/flow/kernels/sampling.h"

namespace flowtide::flow::FLOWTIDE_KERNEL_SET {

namespace {

constexpr int patchPixels = patchSize * patchSize;
constexpr int coarsestReach = 6;            // pixels, each way
constexpr int coarsestMotionCost = 4;       // SAD a pixel of motion
constexpr float deviationCost = 16;         // SAD, for any candidate but the prediction …
constexpr float deviationCostPerPixel = 16; // … and for each pixel that it differs from it
constexpr float deviationLimit = 8;
constexpr int refinementSteps = 3;
constexpr float damping = 0.2F * patchPixels;
constexpr float longestStep = 2; // pixels; a longer refinement is a failed one
constexpr float priorWeight = 2000;
constexpr float linearReach = 0.15F; // pixels that a patch may move before its gradient has to be measured anew

/// Four times the patch at a sub-pixel place, bilinear; entry k holds its rows k and k + 4.
struct Samples {
    Short16 rows[4];
};

/// Two rows of eight pixels that lie four rows apart.
inline Short16 rowPair(const std::uint8_t* pixel, std::ptrdiff_t stride) {
    const Byte8 one = load<Byte8>(pixel);
    const Byte8 other = load<Byte8>(pixel + 4 * stride);
    return widened(__builtin_shufflevector(one, other, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15));
}

inline Samples sampled(const SubPixelPlace& place, std::ptrdiff_t stride) {
    const Word16 right = Word16{} + static_cast<std::uint16_t>(place.fractionX);
    const Word16 left = 64 - right;
    const Word16 below = Word16{} + static_cast<std::uint16_t>(place.fractionY);
    const Word16 above = 64 - below;
    Word16 lines[5];
    for (int k = 0; k < 5; ++k) {
        const std::uint8_t* pixel = place.pixel + k * stride;
        const auto a = reinterpret_cast<Word16>(rowPair(pixel, stride));
        const auto b = reinterpret_cast<Word16>(rowPair(pixel + 1, stride));
        lines[k] = (a * left + b * right + 8) >> 4;
    }
    Samples result;
    for (int k = 0; k < 4; ++k)
        result.rows[k] = reinterpret_cast<Short16>((lines[k] * above + lines[k + 1] * below + 32) >> 6);
    return result;
}

/// The zero-mean sum of squared differences (ZSSD) of a match and half of its gradient by the displacement.
struct Residual {
    float squared;
    float alongX;
    float alongY;
};

/// The template of inverse-compositional alignment: what does not depend on where it is looked for.
class Template {
public:
    Template(const ImageView& image, int left, int top) {
        const std::uint8_t* pixel = pixelAt(image, left, top);
        const std::ptrdiff_t stride = image.stride;
        Int8 squaresX{};
        Int8 productsXY{};
        Int8 squaresY{};
        Short16 sumX{};
        Short16 sumY{};
        for (int k = 0; k < 4; ++k) {
            const std::uint8_t* line = pixel + k * stride;
            value_[k] = rowPair(line, stride) << 2;
            gradientX_[k] = rowPair(line + 1, stride) - rowPair(line - 1, stride);
            gradientY_[k] = rowPair(line + stride, stride) - rowPair(line - stride, stride);
            squaresX += pairProducts(gradientX_[k], gradientX_[k]);
            productsXY += pairProducts(gradientX_[k], gradientY_[k]);
            squaresY += pairProducts(gradientY_[k], gradientY_[k]);
            sumX += gradientX_[k];
            sumY += gradientY_[k];
        }
        const Short16 ones = Short16{} + 1;
        const Int4 products = sums(squaresX, productsXY, squaresY, Int8{});
        const Int4 totals = sums(pairProducts(sumX, ones), pairProducts(sumY, ones), Int8{}, Int8{});
        meanX_ = static_cast<float>(totals[0]) / patchPixels;
        meanY_ = static_cast<float>(totals[1]) / patchPixels;
        // Differences over two pixels are twice the gradient.
        xx = (static_cast<float>(products[0]) - meanX_ * static_cast<float>(totals[0])) / 4 + damping;
        xy = (static_cast<float>(products[1]) - meanX_ * static_cast<float>(totals[1])) / 4;
        yy = (static_cast<float>(products[2]) - meanY_ * static_cast<float>(totals[1])) / 4 + damping;
    }

    Residual residual(const SubPixelPlace& place, std::ptrdiff_t stride) const {
        const Samples found = sampled(place, stride);
        Int8 squares{};
        Int8 alongX{};
        Int8 alongY{};
        Short16 total{};
        for (int k = 0; k < 4; ++k) {
            const Short16 error = found.rows[k] - value_[k];
            squares += pairProducts(error, error);
            alongX += pairProducts(error, gradientX_[k]);
            alongY += pairProducts(error, gradientY_[k]);
            total += error;
        }
        const Int4 all = sums(squares, alongX, alongY, pairProducts(total, Short16{} + 1));
        const auto sum = static_cast<float>(all[3]);
        return {(static_cast<float>(all[0]) - sum * sum / patchPixels) / 16,
                (static_cast<float>(all[1]) - sum * meanX_) / 8, (static_cast<float>(all[2]) - sum * meanY_) / 8};
    }

    float xx; ///< Gauss–Newton Hessian, damped (Levenberg)
    float xy;
    float yy;

private:
    Short16 value_[4];     // times four
    Short16 gradientX_[4]; // times two
    Short16 gradientY_[4];
    float meanX_; // of the gradients, times two
    float meanY_;
};

/// A patch's bytes, for whole-pixel comparison.
class WholePatch {
public:
    WholePatch(const ImageView& image, int left, int top) {
        const std::uint8_t* pixel = pixelAt(image, left, top);
        for (int k = 0; k < patchSize / 2; ++k)
            rows_[k] = twoRows(pixel + 2 * k * image.stride, image.stride);
    }

    /// The sum of absolute differences.
    int difference(const std::uint8_t* pixel, std::ptrdiff_t stride) const {
#if defined(__SSE2__)
        __m128i sum = _mm_setzero_si128();
        for (int k = 0; k < patchSize / 2; ++k)
            sum = _mm_add_epi32(sum, _mm_sad_epu8(reinterpret_cast<__m128i>(rows_[k]),
                                                  reinterpret_cast<__m128i>(twoRows(pixel + 2 * k * stride, stride))));
        return _mm_cvtsi128_si32(sum) + _mm_cvtsi128_si32(_mm_unpackhi_epi64(sum, sum));
#else
        int sum = 0;
        for (int k = 0; k < patchSize / 2; ++k) {
            const Byte16 other = twoRows(pixel + 2 * k * stride, stride);
            for (int i = 0; i < 16; ++i)
                sum += rows_[k][i] > other[i] ? rows_[k][i] - other[i] : other[i] - rows_[k][i];
        }
        return sum;
#endif
    }

private:
    static Byte16 twoRows(const std::uint8_t* pixel, std::ptrdiff_t stride) {
        const Byte8 one = load<Byte8>(pixel);
        const Byte8 other = load<Byte8>(pixel + stride);
        return __builtin_shufflevector(one, other, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
    }

    Byte16 rows_[patchSize / 2];
};

/// Matches one patch.
class PatchMatch {
public:
    PatchMatch(const PatchSearch& search, int i, int j)
        : search_(search)
        , i_(i)
        , j_(j)
        , left_(patchOrigin + patchStride * i)
        , top_(patchOrigin + patchStride * j)
        , patch_(search.from, left_, top_) {}

    Motion searchEverywhere() const {
        Motion best{0, 0};
        int least = 1 << 30;
        for (int dy = -coarsestReach; dy <= coarsestReach; ++dy)
            for (int dx = -coarsestReach; dx <= coarsestReach; ++dx) {
                const int motion = (dx < 0 ? -dx : dx) + (dy < 0 ? -dy : dy);
                const int cost = difference(dx, dy) + coarsestMotionCost * motion;
                if (cost >= least) continue;
                least = cost;
                best = {static_cast<float>(dx), static_cast<float>(dy)};
            }
        return best;
    }

    /// The best of what the coarser level predicts here and around, and of what the neighbours found.
    Motion bestCandidate() {
        const PatchPlanes& parents = search_.parents;
        const std::ptrdiff_t parent = (j_ / 2 + 1) * parents.stride + i_ / 2 + 1;
        const std::ptrdiff_t below = parents.stride;
        // The four parents, then four around them, then neighbours.
        const std::ptrdiff_t places[8] = {0, 1, below, below + 1, -1, below + 2, 1 - below, 2 * below};
        alignas(32) float x[16] = {};
        alignas(32) float y[16] = {};
        for (int n = 0; n < 8; ++n) {
            x[n] = 2 * parents.x[parent + places[n]];
            y[n] = 2 * parents.y[parent + places[n]];
        }
        // Patch centres lie at 4i, their parents' at 8i of the same pixels.
        const float fx = i_ % 2 ? 0.5F : 0.0F;
        const float fy = j_ % 2 ? 0.5F : 0.0F;
        const auto mean = [&](const float* of) {
            return (1 - fy) * ((1 - fx) * of[0] + fx * of[1]) + fy * ((1 - fx) * of[2] + fx * of[3]);
        };
        Motion best{mean(x), mean(y)};
        auto least = static_cast<float>(knownDifference(best));

        const PatchPlanes& patches = search_.patches;
        const std::ptrdiff_t at = (j_ + 1) * patches.stride + i_ + 1;
        int count = 8;
        const auto add = [&](std::ptrdiff_t neighbour) {
            x[count] = patches.x[neighbour];
            y[count++] = patches.y[neighbour];
        };
        if (i_ > 0) add(at - 1);
        if (j_ % searchBand > 0) {
            add(at - patches.stride);
            if (i_ + 1 < patches.columns) add(at - patches.stride + 1);
        }
        const Motion prediction = best;
        for (int first = 0; first < count; first += 8) {
            alignas(32) float penalties[8];
            const Float8 distance =
                absolute(load<Float8>(x + first) - prediction.x) + absolute(load<Float8>(y + first) - prediction.y);
            const Float8 penalty =
                deviationCost + deviationCostPerPixel * clamp(distance, Float8{}, Float8{} + deviationLimit);
            store(penalties, penalty);
            // The penalties alone rule most out.
            unsigned eligible = bits((penalty < least) & (laneNumbers() < count - first));
            for (; eligible != 0; eligible &= eligible - 1) {
                const int lane = __builtin_ctz(eligible);
                if (penalties[lane] >= least) continue;
                const Motion motion{x[first + lane], y[first + lane]};
                const float cost = static_cast<float>(knownDifference(motion)) + penalties[lane];
                if (cost >= least) continue;
                least = cost;
                best = motion;
            }
        }
        return best;
    }

    /// Aligns a whole-pixel match to fractions of a pixel and records what regularisation needs.
    void refine(Motion start) {
        const Template patch(search_.from, left_, top_);
        const float determinant = patch.xx * patch.yy - patch.xy * patch.xy;
        Motion measured = start;
        Motion motion = start;
        Residual here = residual(patch, start);
        for (int step = 0; step < refinementSteps; ++step) {
            const Motion down{(patch.yy * here.alongX - patch.xy * here.alongY) / determinant,
                              (patch.xx * here.alongY - patch.xy * here.alongX) / determinant};
            const Motion moved{measured.x - down.x, measured.y - down.y};
            const float fromStartX = moved.x - start.x;
            const float fromStartY = moved.y - start.y;
            if (!(fromStartX * fromStartX + fromStartY * fromStartY <= longestStep * longestStep)) break;
            motion = moved;
            if (down.x * down.x + down.y * down.y < linearReach * linearReach) break;
            const Residual there = residual(patch, moved);
            if (there.squared >= here.squared) {
                motion = measured;
                break;
            }
            measured = moved;
            here = there;
        }
        const PatchPlanes& patches = search_.patches;
        const std::ptrdiff_t at = (j_ + 1) * patches.stride + i_ + 1;
        patches.x[at] = motion.x;
        patches.y[at] = motion.y;
        recordGradient(measured, here);
        patches.xx[at] = patch.xx;
        patches.xy[at] = patch.xy;
        patches.yy[at] = patch.yy;
        patches.luma[at] = *pixelAt(search_.from, clamp(patchStride * i_, 0, search_.from.width - 1),
                                    clamp(patchStride * j_, 0, search_.from.height - 1));
    }

    /// Measures the gradient anew where the sweeps have moved the patch.
    void refresh(Motion motion) { recordGradient(motion, residual(Template(search_.from, left_, top_), motion)); }

private:
    void recordGradient(Motion motion, const Residual& here) {
        const PatchPlanes& patches = search_.patches;
        const std::ptrdiff_t at = (j_ + 1) * patches.stride + i_ + 1;
        patches.gradientAtX[at] = motion.x;
        patches.gradientAtY[at] = motion.y;
        patches.gradientX[at] = here.alongX;
        patches.gradientY[at] = here.alongY;
    }

    int difference(int dx, int dy) const {
        const ImageView& to = search_.to;
        return patch_.difference(pixelAt(to, insideX(to, left_ + dx), insideY(to, top_ + dy)), to.stride);
    }

    /// The same few places come up again and again.
    int knownDifference(Motion motion) {
        const int dx = rounded(motion.x);
        const int dy = rounded(motion.y);
        const int key = dy * (1 << 16) + dx;
        for (int n = 0; n < tried_; ++n)
            if (keys_[n] == key) return differences_[n];
        keys_[tried_] = key;
        differences_[tried_] = difference(dx, dy);
        return differences_[tried_++];
    }

    Residual residual(const Template& patch, Motion motion) const {
        return patch.residual(placeIn(search_.to, left_, top_, motion), search_.to.stride);
    }

    const PatchSearch& search_;
    int i_;
    int j_;
    int left_;
    int top_;
    WholePatch patch_;
    int tried_ = 0;
    int keys_[12];
    int differences_[12];
};

void searchPatches(const PatchSearch& search, int begin, int end) {
    for (int j = begin; j < end; ++j)
        for (int i = 0; i < search.patches.columns; ++i) {
            PatchMatch match(search, i, j);
            match.refine(search.isCoarsest ? match.searchEverywhere() : match.bestCandidate());
        }
}

void refreshGradients(const PatchSearch& search, int begin, int end) {
    const PatchPlanes& patches = search.patches;
    for (int j = begin; j < end; ++j)
        for (int i = 0; i < patches.columns; ++i) {
            const std::ptrdiff_t at = (j + 1) * patches.stride + i + 1;
            const float differenceX = patches.x[at] - patches.gradientAtX[at];
            const float differenceY = patches.y[at] - patches.gradientAtY[at];
            if (differenceX * differenceX + differenceY * differenceY <= linearReach * linearReach) continue;
            PatchMatch(search, i, j).refresh({patches.x[at], patches.y[at]});
        }
}

void sweepPatches(const PatchPlanes& patches, float* nextX, float* nextY, int begin, int end) {
    const std::ptrdiff_t around[8] = {-patches.stride - 1, -patches.stride, -patches.stride + 1, -1, 1,
                                      patches.stride - 1,  patches.stride,  patches.stride + 1};
    for (int j = begin; j < end; ++j)
        for (int i = 0; i < patches.columns; i += 8) {
            const std::ptrdiff_t at = (j + 1) * patches.stride + i + 1;
            const auto x = load<Float8>(patches.x + at);
            const auto y = load<Float8>(patches.y + at);
            const auto luma = load<Float8>(patches.luma + at);
            Float8 sumX{};
            Float8 sumY{};
            Float8 weights{};
            for (const std::ptrdiff_t beside : around) {
                const auto otherX = load<Float8>(patches.x + at + beside);
                const auto otherY = load<Float8>(patches.y + at + beside);
                const auto otherLuma = load<Float8>(patches.luma + at + beside);
                const Float8 differenceX = otherX - x;
                const Float8 differenceY = otherY - y;
                const Float8 weight = 1 / ((1 + (differenceX * differenceX + differenceY * differenceY) * 0.25F) *
                                           (1 + 0.03F * absolute(otherLuma - luma)));
                sumX += weight * otherX;
                sumY += weight * otherY;
                weights += weight;
            }
            const Float8 differenceX = x - load<Float8>(patches.gradientAtX + at);
            const Float8 differenceY = y - load<Float8>(patches.gradientAtY + at);
            const auto patchXX = load<Float8>(patches.xx + at);
            const auto patchXY = load<Float8>(patches.xy + at);
            const auto patchYY = load<Float8>(patches.yy + at);
            const Float8 xx = patchXX + priorWeight;
            const Float8 yy = patchYY + priorWeight;
            const Float8 alongX =
                load<Float8>(patches.gradientX + at) + (patchXX - damping) * differenceX + patchXY * differenceY;
            const Float8 alongY =
                load<Float8>(patches.gradientY + at) + patchXY * differenceX + (patchYY - damping) * differenceY;
            const Float8 gx = priorWeight * (sumX / weights - x) - alongX;
            const Float8 gy = priorWeight * (sumY / weights - y) - alongY;
            const Float8 determinant = xx * yy - patchXY * patchXY;
            const Float8 changeX = (yy * gx - patchXY * gy) / determinant;
            const Float8 changeY = (xx * gy - patchXY * gx) / determinant;
            const Int8 small = changeX * changeX + changeY * changeY <= longestStep * longestStep;
            store(nextX + at, small ? x + changeX : x);
            store(nextY + at, small ? y + changeY : y);
        }
}

} // namespace

void addPatchKernels(Kernels& kernels) {
    kernels.searchPatches = searchPatches;
    kernels.refreshGradients = refreshGradients;
    kernels.sweepPatches = sweepPatches;
}

} // namespace flowtide::flow::FLOWTIDE_KERNEL_SET
