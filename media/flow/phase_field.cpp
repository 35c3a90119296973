// Projection of both flows to a phase, choice between them, occlusion.
#include "media/flow/phase_field.h"

#include "media/flow/box_mean.h"
#include "media/flow/parallel_rows.h"

#include <array>
#include <cmath>
#include <future>

namespace flowtide::flow {

namespace {

constexpr float doubtCost = 2;  // luma codes that no confidence at all costs a candidate
constexpr float sameMotion = 1; // pixels; nearer candidates are averaged
constexpr float leastWeight = 0.1F;
constexpr float outsideWeight = 0.001F;
constexpr float photometricHalf = 10; // luma codes at which occlusion counts by a quarter

/// Motion (first to second) and confidence that one flow projects to each pixel of a phase.
struct Projection {
    Field<Vector> motion;
    Field<float> confidence;
};

struct Cell {
    float key = -1; // the confidence of what landed here; the best one stays
    float distance = 0;
    Vector motion;
};

/// Splats a flow along `share` of its motion; `sign` turns its motion into one from first to second.
Projection projected(const DirectedFlow& flow, float share, float sign) {
    const int width = flow.motion.width();
    const int height = flow.motion.height();
    Field<Cell> cells(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const Vector v = flow.motion(x, y);
            const float tx = static_cast<float>(x) + share * v.x;
            const float ty = static_cast<float>(y) + share * v.y;
            if (!(tx > -1 && ty > -1 && tx < static_cast<float>(width) && ty < static_cast<float>(height))) continue;
            const int ix = static_cast<int>(std::floor(tx));
            const int iy = static_cast<int>(std::floor(ty));
            for (int dy = 0; dy < 2; ++dy)
                for (int dx = 0; dx < 2; ++dx) {
                    const int cx = ix + dx;
                    const int cy = iy + dy;
                    if (cx < 0 || cy < 0 || cx >= width || cy >= height) continue;
                    const float ox = static_cast<float>(cx) - tx;
                    const float oy = static_cast<float>(cy) - ty;
                    const float distance = ox * ox + oy * oy;
                    const float key = std::floor(flow.confidence(x, y) * 16);
                    Cell& cell = cells(cx, cy);
                    if (key < cell.key || (key == cell.key && distance >= cell.distance)) continue;
                    cell = {key, distance, sign * v};
                }
        }

    Projection result{Field<Vector>(width, height), Field<float>(width, height)};
    for (int y = 0; y < height; ++y) {
        // A hole takes its row's nearest neighbour, without trust.
        int filledTo = 0;
        int last = -1;
        const auto fill = [&](int end, int next) {
            for (int x = filledTo; x < end; ++x) {
                const bool before = last >= 0 && (next < 0 || x - last <= next - x);
                const int from = before ? last : next;
                if (from >= 0) result.motion(x, y) = cells(from, y).motion;
            }
        };
        for (int x = 0; x < width; ++x) {
            const Cell& cell = cells(x, y);
            if (cell.key < 0) continue;
            fill(x, x);
            result.motion(x, y) = cell.motion;
            result.confidence(x, y) = cell.key / 16;
            last = x;
            filledTo = x + 1;
        }
        fill(width, -1);
    }
    return result;
}

/// How unlike the two frames are where a motion through (x, y) leads to.
float difference(const FlowPair& pair, float phase, float x, float y, Vector v) {
    return std::abs(pair.first.at(x - phase * v.x, y - phase * v.y) -
                    pair.second.at(x + (1 - phase) * v.x, y + (1 - phase) * v.y));
}

Field<float> candidateCost(const FlowPair& pair, float phase, const Projection& candidate) {
    Field<float> cost(candidate.motion.width(), candidate.motion.height());
    for (int y = 0; y < cost.height(); ++y)
        for (int x = 0; x < cost.width(); ++x)
            cost(x, y) = difference(pair, phase, static_cast<float>(x), static_cast<float>(y), candidate.motion(x, y));
    cost = boxMean(cost);
    for (int y = 0; y < cost.height(); ++y)
        for (int x = 0; x < cost.width(); ++x)
            cost(x, y) += doubtCost * (1 - candidate.confidence(x, y));
    return cost;
}

/// A projection and how badly the frames agree on it.
struct Candidate {
    Projection projection;
    Field<float> cost;
};

Field<Vector> chosen(const FlowPair& pair, float phase) {
    const auto candidate = [&](const DirectedFlow& flow, float share, float sign) {
        Candidate result{projected(flow, share, sign), {}};
        result.cost = candidateCost(pair, phase, result.projection);
        return result;
    };
    auto otherTask = std::async(std::launch::async, [&] { return candidate(pair.backward, 1 - phase, -1); });
    const Candidate one = candidate(pair.forward, phase, 1);
    const Candidate other = otherTask.get();
    Field<Vector> motion = one.projection.motion;
    for (int y = 0; y < motion.height(); ++y)
        for (int x = 0; x < motion.width(); ++x) {
            const Vector a = one.projection.motion(x, y);
            const Vector b = other.projection.motion(x, y);
            if ((a - b).squared() < sameMotion * sameMotion)
                motion(x, y) = 0.5F * (a + b);
            else if (other.cost(x, y) < one.cost(x, y))
                motion(x, y) = b;
        }
    return motion;
}

float medianOfFive(std::array<float, 5> v) {
    // Drops the least and the greatest of four; the median is the middle one of the rest and the fifth.
    const float low = std::max(std::min(v[0], v[1]), std::min(v[2], v[3]));
    const float high = std::min(std::max(v[0], v[1]), std::max(v[2], v[3]));
    return std::max(std::min(low, high), std::min(std::max(low, high), v[4]));
}

/// The median of each pixel and its four neighbours, for both components.
Field<Vector> crossMedian(const Field<Vector>& field) {
    Field<Vector> result = field;
    parallelRows(field.height(), [&](int begin, int end) {
        for (int y = begin; y < end; ++y)
            for (int x = 0; x < field.width(); ++x) {
                const std::array around{field(x, y), field.clamped(x - 1, y), field.clamped(x + 1, y),
                                        field.clamped(x, y - 1), field.clamped(x, y + 1)};
                result(x, y) = {medianOfFive({around[0].x, around[1].x, around[2].x, around[3].x, around[4].x}),
                                medianOfFive({around[0].y, around[1].y, around[2].y, around[3].y, around[4].y})};
            }
    });
    return result;
}

/// How much a frame's pixel can be trusted to be visible in between: less where there-and-back misses.
float visibility(const DirectedFlow& flow, float x, float y, Vector v) {
    const auto width = static_cast<float>(flow.mismatch.width());
    const auto height = static_cast<float>(flow.mismatch.height());
    if (!(x > -0.5F && y > -0.5F && x < width - 0.5F && y < height - 0.5F)) return outsideWeight;
    const int ix = static_cast<int>(x + 0.5F);
    const int iy = static_cast<int>(y + 0.5F);
    const float tolerance = 16 * (1 + 0.005F * v.squared());
    const float likely = std::min(1.0F, tolerance / std::max(flow.mismatch(ix, iy), 1e-6F));
    return likely * likely + leastWeight;
}

} // namespace

PhaseField phaseField(const FlowPair& pair, float phase) {
    PhaseField result;
    result.motion = crossMedian(chosen(pair, phase));
    result.secondShare = Field<float>(result.motion.width(), result.motion.height());
    parallelRows(result.motion.height(), [&](int begin, int end) {
        for (int y = begin; y < end; ++y)
            for (int x = 0; x < result.motion.width(); ++x) {
                const Vector v = result.motion(x, y);
                const float px = static_cast<float>(x);
                const float py = static_cast<float>(y);
                const float apart = difference(pair, phase, px, py, v);
                const float matters = apart / (apart + photometricHalf);
                const auto weight = [&](float seen) {
                    return seen <= outsideWeight ? seen : 1 + (seen - 1) * matters * matters;
                };
                const float first =
                    (1 - phase) * weight(visibility(pair.forward, px - phase * v.x, py - phase * v.y, v));
                const float second =
                    phase * weight(visibility(pair.backward, px + (1 - phase) * v.x, py + (1 - phase) * v.y, v));
                result.secondShare(x, y) = second / (first + second);
            }
    });
    return result;
}

} // namespace flowtide::flow
