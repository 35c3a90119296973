// Consistency, confidence and filling.
#include "media/flow/flow_pair.h"

#include "media/flow/flow_fill.h"
#include "media/flow/patch_flow.h"

#include <cmath>
#include <future>

namespace flowtide::flow {

namespace {

// Ordinary pairs have a mean confidence of at least 0.26, cuts at most 0.06.
constexpr double cutConfidence = 0.12;
constexpr float farMismatch = 1e6F;

Vector bilinear(const Field<Vector>& field, float x, float y) {
    const int ix = static_cast<int>(x);
    const int iy = static_cast<int>(y);
    const float fx = x - static_cast<float>(ix);
    const float fy = y - static_cast<float>(iy);
    const Vector top = (1 - fx) * field.clamped(ix, iy) + fx * field.clamped(ix + 1, iy);
    const Vector bottom = (1 - fx) * field.clamped(ix, iy + 1) + fx * field.clamped(ix + 1, iy + 1);
    return (1 - fy) * top + fy * bottom;
}

/// Mismatch and confidence of each vector, by following it and coming back with the other field.
void judge(DirectedFlow& flow, const Field<Vector>& back) {
    const int width = flow.motion.width();
    const int height = flow.motion.height();
    flow.confidence = Field<float>(width, height);
    flow.mismatch = Field<float>(width, height, farMismatch);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const Vector v = flow.motion(x, y);
            const float tx = static_cast<float>(x) + v.x;
            const float ty = static_cast<float>(y) + v.y;
            if (!(tx >= 0 && ty >= 0 && tx <= static_cast<float>(width - 1) && ty <= static_cast<float>(height - 1)))
                continue;
            const float mismatch = (v + bilinear(back, tx, ty)).squared();
            const float tolerance = 0.25F + 0.005F * v.squared();
            flow.mismatch(x, y) = mismatch;
            flow.confidence(x, y) = std::exp(-mismatch / (2 * tolerance));
        }
}

double mean(const Field<float>& field) {
    double sum = 0;
    for (const float value : field.values())
        sum += static_cast<double>(value);
    return field.values().empty() ? 0 : sum / static_cast<double>(field.values().size());
}

} // namespace

FlowPair estimateFlow(const std::vector<GrayImage>& first, const std::vector<GrayImage>& second) {
    FlowPair pair{first.front(), second.front(), {}, {}, false};
    auto backward = std::async(std::launch::async, [&] { return patchFlow(second, first); });
    pair.forward.motion = patchFlow(first, second);
    pair.backward.motion = backward.get();
    const Field<Vector> there = pair.forward.motion;
    judge(pair.forward, pair.backward.motion);
    judge(pair.backward, there);
    pair.isCut = (mean(pair.forward.confidence) + mean(pair.backward.confidence)) / 2 < cutConfidence;
    if (pair.isCut) return pair;
    auto filled = std::async(std::launch::async, [&] { fillUntrusted(pair.backward, pair.second, pair.first); });
    fillUntrusted(pair.forward, pair.first, pair.second);
    filled.get();
    return pair;
}

} // namespace flowtide::flow
