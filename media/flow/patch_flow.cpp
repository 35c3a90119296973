// Patch matching: candidate search, sub-pixel refinement, regularised sweeps, densification.
#include "media/flow/patch_flow.h"

#include <array>
#include <cmath>
#include <cstdlib>

namespace flowtide::flow {

namespace {

constexpr int patchSize = 8;
constexpr int patchPixels = patchSize * patchSize;
constexpr int patchStride = 4;
constexpr int patchOrigin = -4; // the grid starts outside, so that every pixel lies in four patches

constexpr int coarsestReach = 6;      // pixels, each way
constexpr int coarsestMotionCost = 4; // SAD a pixel of motion
constexpr float strangerCost = 16;    // SAD, for any candidate but the prediction …
constexpr float strangerSlope = 16;   // … and for each pixel that it differs from it
constexpr float strangerReach = 8;
constexpr int refinementSteps = 3;
constexpr float damping = 0.2F * patchPixels;
constexpr float longestStep = 2; // pixels; a longer refinement is a failed one
constexpr float priorWeight = 2000;
constexpr int coarseSweeps = 6;
constexpr int finestSweeps = 3;

using Pixels = std::array<float, patchPixels>;

/// The part of a patch's matching that does not depend on where it is looked for.
struct Template {
    Pixels value;     // mean removed
    Pixels gradientX; // mean removed
    Pixels gradientY;
    float xx = damping, xy = 0, yy = damping;
};

Pixels withoutMean(Pixels pixels) {
    float sum = 0;
    for (const float pixel : pixels)
        sum += pixel;
    const float mean = sum / patchPixels;
    for (float& pixel : pixels)
        pixel -= mean;
    return pixels;
}

Template makeTemplate(const GrayImage& image, int x0, int y0) {
    Template result;
    for (int y = 0; y < patchSize; ++y) {
        const std::uint8_t* line = image.row(y0 + y) + x0;
        const std::uint8_t* above = line - image.stride();
        const std::uint8_t* below = line + image.stride();
        for (int x = 0; x < patchSize; ++x) {
            const auto i = static_cast<std::size_t>(y * patchSize + x);
            result.value[i] = line[x];
            result.gradientX[i] = 0.5F * static_cast<float>(line[x + 1] - line[x - 1]);
            result.gradientY[i] = 0.5F * static_cast<float>(below[x] - above[x]);
        }
    }
    result.value = withoutMean(result.value);
    result.gradientX = withoutMean(result.gradientX);
    result.gradientY = withoutMean(result.gradientY);
    for (std::size_t i = 0; i < patchPixels; ++i) {
        result.xx += result.gradientX[i] * result.gradientX[i];
        result.xy += result.gradientX[i] * result.gradientY[i];
        result.yy += result.gradientY[i] * result.gradientY[i];
    }
    return result;
}

/// Keeps a patch, and the pixel that interpolation needs beside it, inside the padding.
int insideX(const GrayImage& image, int x) {
    return std::clamp(x, -GrayImage::padding, image.width() + GrayImage::padding - patchSize - 1);
}
int insideY(const GrayImage& image, int y) {
    return std::clamp(y, -GrayImage::padding, image.height() + GrayImage::padding - patchSize - 1);
}

int sumOfDifferences(const GrayImage& a, int ax, int ay, const GrayImage& b, int bx, int by) {
    bx = insideX(b, bx);
    by = insideY(b, by);
    int sum = 0;
    for (int y = 0; y < patchSize; ++y) {
        const std::uint8_t* one = a.row(ay + y) + ax;
        const std::uint8_t* other = b.row(by + y) + bx;
        for (int x = 0; x < patchSize; ++x)
            sum += std::abs(one[x] - other[x]);
    }
    return sum;
}

/// The patch at a sub-pixel place, its mean removed.
Pixels sampledPatch(const GrayImage& image, float x, float y) {
    const float floorX = std::floor(x);
    const float floorY = std::floor(y);
    const float fx = x - floorX;
    const float fy = y - floorY;
    const float w00 = (1 - fx) * (1 - fy);
    const float w01 = fx * (1 - fy);
    const float w10 = (1 - fx) * fy;
    const float w11 = fx * fy;
    // Far outside every place looks the same; the bounds only keep the conversion defined.
    const int ix = insideX(image, static_cast<int>(std::clamp(floorX, -1e6F, 1e6F)));
    const int iy = insideY(image, static_cast<int>(std::clamp(floorY, -1e6F, 1e6F)));
    Pixels pixels;
    for (int row = 0; row < patchSize; ++row) {
        const std::uint8_t* a = image.row(iy + row) + ix;
        const std::uint8_t* b = a + image.stride();
        float* out = pixels.data() + row * patchSize;
        for (int i = 0; i < patchSize; ++i)
            out[i] = w00 * a[i] + w01 * a[i + 1] + w10 * b[i] + w11 * b[i + 1];
    }
    return withoutMean(pixels);
}

/// What refinement needs of a match: how bad it is, and which way is down.
struct Residual {
    float squared = 0;
    float alongX = 0;
    float alongY = 0;
};

Residual residualAt(const Template& patch, const GrayImage& image, float x, float y) {
    const Pixels found = sampledPatch(image, x, y);
    Residual result;
    for (std::size_t i = 0; i < patchPixels; ++i) {
        const float error = found[i] - patch.value[i];
        result.squared += error * error;
        result.alongX += patch.gradientX[i] * error;
        result.alongY += patch.gradientY[i] * error;
    }
    return result;
}

/// One level of the search.
class Level {
public:
    Level(const GrayImage& from, const GrayImage& to)
        : from_(from)
        , to_(to)
        , columns_((from.width() - 1) / patchStride + 2)
        , rows_((from.height() - 1) / patchStride + 2)
        , flow_(columns_, rows_) {
        templates_.reserve(static_cast<std::size_t>(columns_) * static_cast<std::size_t>(rows_));
        for (int j = 0; j < rows_; ++j)
            for (int i = 0; i < columns_; ++i)
                templates_.push_back(makeTemplate(from_, left(i), top(j)));
    }

    const Field<Vector>& flow() const { return flow_; }

    void searchEverywhere() {
        for (int j = 0; j < rows_; ++j)
            for (int i = 0; i < columns_; ++i) {
                int least = 1 << 30;
                for (int dy = -coarsestReach; dy <= coarsestReach; ++dy)
                    for (int dx = -coarsestReach; dx <= coarsestReach; ++dx) {
                        const int cost = sumOfDifferences(from_, left(i), top(j), to_, left(i) + dx, top(j) + dy) +
                                         coarsestMotionCost * (std::abs(dx) + std::abs(dy));
                        if (cost >= least) continue;
                        least = cost;
                        flow_(i, j) = {static_cast<float>(dx), static_cast<float>(dy)};
                    }
                refine(i, j);
            }
    }

    void searchFrom(const Field<Vector>& parents) {
        for (int j = 0; j < rows_; ++j)
            for (int i = 0; i < columns_; ++i) {
                chooseCandidate(parents, i, j);
                refine(i, j);
            }
    }

    /// Each sweep moves every patch to the balance of its own match and what its neighbours, weighted by likeness, do.
    void sweep(int count) {
        Field<Vector> next = flow_;
        for (int n = 0; n < count; ++n) {
            for (int j = 0; j < rows_; ++j)
                for (int i = 0; i < columns_; ++i)
                    next(i, j) = balanced(i, j);
            std::swap(next, flow_);
        }
    }

    /// The displacement of every pixel: the mean of its four patches, those that fit the pixel best counting most.
    Field<Vector> densified() const {
        Field<Vector> dense(from_.width(), from_.height());
        for (int y = 0; y < dense.height(); ++y) {
            const std::uint8_t* line = from_.row(y);
            const int j = y / patchStride;
            for (int x = 0; x < dense.width(); ++x) {
                const int i = x / patchStride;
                Vector sum;
                float weights = 0;
                for (int dj = 0; dj < 2; ++dj)
                    for (int di = 0; di < 2; ++di) {
                        const Vector v = flow_(i + di, j + dj);
                        const float residual =
                            to_.at(static_cast<float>(x) + v.x, static_cast<float>(y) + v.y) - line[x];
                        const float badness = std::max(1.0F, std::abs(residual));
                        const float weight = 1 / (badness * badness);
                        sum = sum + weight * v;
                        weights += weight;
                    }
                dense(x, y) = (1 / weights) * sum;
            }
        }
        return dense;
    }

private:
    static int left(int i) { return patchOrigin + patchStride * i; }
    static int top(int j) { return patchOrigin + patchStride * j; }
    const Template& templateAt(int i, int j) const {
        return templates_[static_cast<std::size_t>(j) * static_cast<std::size_t>(columns_) +
                          static_cast<std::size_t>(i)];
    }
    Residual residual(int i, int j, Vector v) const {
        return residualAt(templateAt(i, j), to_, static_cast<float>(left(i)) + v.x, static_cast<float>(top(j)) + v.y);
    }

    void chooseCandidate(const Field<Vector>& parents, int i, int j) {
        // Patch centres lie at 4i, their parents' at 8i of the same pixels.
        const int pi = i / 2;
        const int pj = j / 2;
        const auto parent = [&](int di, int dj) { return 2.0F * parents.clamped(pi + di, pj + dj); };
        const float fi = i % 2 ? 0.5F : 0.0F;
        const float fj = j % 2 ? 0.5F : 0.0F;
        const Vector upper = (1 - fi) * parent(0, 0) + fi * parent(1, 0);
        const Vector lower = (1 - fi) * parent(0, 1) + fi * parent(1, 1);
        const Vector prediction = (1 - fj) * upper + fj * lower;
        Vector best = prediction;
        float least = cost(i, j, prediction);
        const auto consider = [&](Vector v) {
            const float distance = std::abs(v.x - prediction.x) + std::abs(v.y - prediction.y);
            const float total = cost(i, j, v) + strangerCost + strangerSlope * std::min(distance, strangerReach);
            if (total >= least) return;
            least = total;
            best = v;
        };
        constexpr int around[8][2] = {{0, 0}, {1, 0}, {0, 1}, {1, 1}, {-1, 0}, {2, 1}, {1, -1}, {0, 2}};
        for (const auto& offset : around)
            consider(parent(offset[0], offset[1]));
        if (i > 0) consider(flow_(i - 1, j));
        if (j > 0) consider(flow_(i, j - 1));
        if (j > 0 && i + 1 < columns_) consider(flow_(i + 1, j - 1));
        flow_(i, j) = best;
    }

    float cost(int i, int j, Vector v) const {
        const int dx = static_cast<int>(std::lround(v.x));
        const int dy = static_cast<int>(std::lround(v.y));
        return static_cast<float>(sumOfDifferences(from_, left(i), top(j), to_, left(i) + dx, top(j) + dy));
    }

    void refine(int i, int j) {
        const Template& patch = templateAt(i, j);
        const float determinant = patch.xx * patch.yy - patch.xy * patch.xy;
        const Vector start = flow_(i, j);
        Vector v = start;
        Residual here = residual(i, j, v);
        for (int step = 0; step < refinementSteps; ++step) {
            const Vector down{(patch.yy * here.alongX - patch.xy * here.alongY) / determinant,
                              (patch.xx * here.alongY - patch.xy * here.alongX) / determinant};
            const Vector moved = v - down;
            if ((moved - start).squared() > longestStep * longestStep) break;
            const Residual there = residual(i, j, moved);
            if (there.squared >= here.squared) break;
            v = moved;
            here = there;
            if (down.squared() < 1e-4F) break;
        }
        flow_(i, j) = v;
    }

    Vector balanced(int i, int j) const {
        const Vector own = flow_(i, j);
        const int luma = from_.row(std::clamp(4 * j, 0, from_.height() - 1))[std::clamp(4 * i, 0, from_.width() - 1)];
        Vector sum;
        float weights = 0;
        for (int dj = -1; dj <= 1; ++dj)
            for (int di = -1; di <= 1; ++di) {
                if ((di == 0 && dj == 0) || i + di < 0 || j + dj < 0 || i + di >= columns_ || j + dj >= rows_) continue;
                const Vector v = flow_(i + di, j + dj);
                const int other = from_.row(
                    std::clamp(4 * (j + dj), 0, from_.height() - 1))[std::clamp(4 * (i + di), 0, from_.width() - 1)];
                const float weight =
                    1 / ((1 + (v - own).squared() / 4) * (1 + 0.03F * static_cast<float>(std::abs(other - luma))));
                sum = sum + weight * v;
                weights += weight;
            }
        const Vector prior = (1 / weights) * sum;
        const Template& patch = templateAt(i, j);
        const Residual here = residual(i, j, own);
        const float xx = patch.xx + priorWeight;
        const float yy = patch.yy + priorWeight;
        const float gx = priorWeight * (prior.x - own.x) - here.alongX;
        const float gy = priorWeight * (prior.y - own.y) - here.alongY;
        const float determinant = xx * yy - patch.xy * patch.xy;
        const Vector change{(yy * gx - patch.xy * gy) / determinant, (xx * gy - patch.xy * gx) / determinant};
        if (change.squared() > longestStep * longestStep) return own;
        return own + change;
    }

    const GrayImage& from_;
    const GrayImage& to_;
    int columns_;
    int rows_;
    Field<Vector> flow_;
    std::vector<Template> templates_;
};

} // namespace

Field<Vector> patchFlow(const std::vector<GrayImage>& from, const std::vector<GrayImage>& to) {
    Field<Vector> parents;
    for (std::size_t i = from.size(); i-- > 0;) {
        Level level(from[i], to[i]);
        if (parents.width() == 0)
            level.searchEverywhere();
        else
            level.searchFrom(parents);
        level.sweep(i == 0 ? finestSweeps : coarseSweeps);
        if (i == 0) return level.densified();
        parents = level.flow();
    }
    return {};
}

} // namespace flowtide::flow
