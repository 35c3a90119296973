// Confidence-weighted pull and push.
#include "media/flow/flow_fill.h"

#include "media/flow/box_mean.h"

#include <cmath>

namespace flowtide::flow {

namespace {

constexpr float smallestWeight = 1e-4F;
constexpr float unlikeness = 0.01F; // of a parent's weight, by squared luma difference
constexpr float goodError = 3;      // mean luma codes; a vector with less is worth keeping …
constexpr float muchWorse = 3;      // … if the filling's error is more than this many times as large, and 1

/// A level of the pull: motion, how much of it is known, and the mean luma.
struct PullLevel {
    Field<Vector> motion;
    Field<float> weight;
    Field<float> luma;
};

PullLevel pulled(const PullLevel& fine) {
    const int width = (fine.motion.width() + 1) / 2;
    const int height = (fine.motion.height() + 1) / 2;
    PullLevel coarse{Field<Vector>(width, height), Field<float>(width, height), Field<float>(width, height)};
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            Vector sum;
            float weight = 0;
            float luma = 0;
            for (int dy = 0; dy < 2; ++dy)
                for (int dx = 0; dx < 2; ++dx) {
                    const float w = fine.weight.clamped(2 * x + dx, 2 * y + dy);
                    sum = sum + w * fine.motion.clamped(2 * x + dx, 2 * y + dy);
                    weight += w;
                    luma += fine.luma.clamped(2 * x + dx, 2 * y + dy);
                }
            coarse.motion(x, y) = (1 / weight) * sum;
            coarse.weight(x, y) = std::min(weight, 1.0F);
            coarse.luma(x, y) = luma / 4;
        }
    return coarse;
}

/// Completes a level from the completed coarser one.
void push(PullLevel& fine, const PullLevel& coarse) {
    for (int y = 0; y < fine.motion.height(); ++y)
        for (int x = 0; x < fine.motion.width(); ++x) {
            const float known = fine.weight(x, y);
            if (known > 0.999F) continue;
            const float luma = fine.luma(x, y);
            const int px = x / 2;
            const int py = y / 2;
            const int sideX = x % 2 ? 1 : -1;
            const int sideY = y % 2 ? 1 : -1;
            Vector sum;
            float weights = 0;
            for (int j = 0; j < 2; ++j)
                for (int i = 0; i < 2; ++i) {
                    const int cx = px + i * sideX;
                    const int cy = py + j * sideY;
                    const float difference = coarse.luma.clamped(cx, cy) - luma;
                    const float weight =
                        (i ? 0.25F : 0.75F) * (j ? 0.25F : 0.75F) / (1 + unlikeness * difference * difference);
                    sum = sum + weight * coarse.motion.clamped(cx, cy);
                    weights += weight;
                }
            fine.motion(x, y) = known * fine.motion(x, y) + ((1 - known) / weights) * sum;
        }
}

/// Mean absolute luma error around each pixel when it follows its vector.
Field<float> matchingError(const Field<Vector>& motion, const GrayImage& from, const GrayImage& to) {
    Field<float> error(motion.width(), motion.height());
    for (int y = 0; y < motion.height(); ++y) {
        const std::uint8_t* line = from.row(y);
        for (int x = 0; x < motion.width(); ++x) {
            const Vector v = motion(x, y);
            error(x, y) = std::abs(to.at(static_cast<float>(x) + v.x, static_cast<float>(y) + v.y) - line[x]);
        }
    }
    return boxMean(error);
}

} // namespace

void fillUntrusted(DirectedFlow& flow, const GrayImage& from, const GrayImage& to) {
    const Field<Vector> found = flow.motion;
    std::vector<PullLevel> levels(1);
    levels[0].motion = found;
    levels[0].weight = flow.confidence;
    levels[0].luma = Field<float>(from.width(), from.height());
    for (int y = 0; y < from.height(); ++y)
        for (int x = 0; x < from.width(); ++x) {
            levels[0].luma(x, y) = from.row(y)[x];
            float& weight = levels[0].weight(x, y);
            weight = std::max(weight, smallestWeight);
        }
    while (std::max(levels.back().motion.width(), levels.back().motion.height()) > 1)
        levels.push_back(pulled(levels.back()));
    for (std::size_t i = levels.size() - 1; i-- > 0;)
        push(levels[i], levels[i + 1]);

    const Field<Vector>& filled = levels[0].motion;
    const Field<float> foundError = matchingError(found, from, to);
    const Field<float> filledError = matchingError(filled, from, to);
    for (int y = 0; y < from.height(); ++y)
        for (int x = 0; x < from.width(); ++x) {
            const bool keep = foundError(x, y) < goodError && filledError(x, y) > muchWorse * foundError(x, y) + 1;
            flow.motion(x, y) = keep ? found(x, y) : filled(x, y);
        }
}

} // namespace flowtide::flow
