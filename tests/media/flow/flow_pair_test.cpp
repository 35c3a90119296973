// The motion between two frames: as near to the true one as the scene allows, and known to be wrong where it is.
#include "media/flow/flow_pair.h"
#include "tests/media/flow/drawn_scenes.h"

#include <gtest/gtest.h>

#include <string>

namespace flowtide::flow {
namespace {

using namespace flowtide::test;

struct Estimate {
    WorkerPool workers{2};
    FlowEstimator estimator{kernelsFor(bestInstructionSet()), workers};
    FlowPair pair;

    explicit Estimate(const DrawnScene& scene) {
        const auto pyramid = [&](double time) { return std::make_shared<const Pyramid>(lumaPyramid(scene.at(time))); };
        estimator.estimate(pyramid(0), pyramid(1), pair);
    }
};

/// The mean distance from the true motion in half-resolution pixels, away from the edges.
template <typename Truth>
double endpointError(const DirectedFlow& flow, const Truth& truth) {
    constexpr int margin = 16;
    double sum = 0;
    int count = 0;
    for (int y = margin; y < flow.motion.height() - margin; ++y)
        for (int x = margin; x < flow.motion.width() - margin; ++x, ++count) {
            // The centre of a half-resolution pixel lies between two luma pixels.
            const Point where{2 * x + 0.5, 2 * y + 0.5};
            const Point to = truth(where);
            sum += std::hypot(flow.motion(x, y).x / 64.0 - (to.x - where.x) / 2,
                              flow.motion(x, y).y / 64.0 - (to.y - where.y) / 2);
        }
    return sum / count;
}

TEST(FlowPair, MotionIsTheTrueOneBothWays) {
    constexpr Point middle{DrawnScene::width / 2.0, DrawnScene::height / 2.0};
    const auto around = [&](Point p, double angle, double scale) {
        const Point moved = turned({p.x - middle.x, p.y - middle.y}, angle, scale);
        return Point{moved.x + middle.x, moved.y + middle.y};
    };
    struct Row {
        const char* scene;
        double forward; ///< mean error in half-resolution pixels, as measured when the scenes were drawn
        double backward;
        std::function<Point(Point, double sign)> truth;
    };
    const Row rows[] = {
        {"drifting", 0.0849, 0.1160,
         [](Point p, double sign) {
             return Point{p.x + sign * 6.3, p.y - sign * 2.6};
         }},
        {"fading", 0.0509, 0.0469,
         [](Point p, double sign) {
             return Point{p.x + sign * 3, p.y + sign * 1.5};
         }},
        {"turning", 0.0748, 0.0735, [&](Point p, double sign) { return around(p, -0.04 * sign, 1); }},
        {"zooming", 0.1106, 0.1034, [&](Point p, double sign) { return around(p, 0, std::pow(0.94, -sign)); }},
    };
    for (const Row& row : rows) {
        const Estimate estimate(sceneNamed(row.scene));
        EXPECT_FALSE(estimate.pair.isCut);
        constexpr double slack = 1.02;
        EXPECT_LT(endpointError(estimate.pair.forward, [&](Point p) { return row.truth(p, 1); }), slack * row.forward)
            << row.scene;
        EXPECT_LT(endpointError(estimate.pair.backward, [&](Point p) { return row.truth(p, -1); }),
                  slack * row.backward)
            << row.scene;
    }
}

TEST(FlowPair, WhatTheOtherFrameHidesIsNotTrusted) {
    const Estimate estimate(sceneNamed("texture over texture"));
    ASSERT_FALSE(estimate.pair.isCut);
    // The disc moves by (13, -5), what is behind it by (-5, 2): a crescent before it is hidden in the second frame, one
    // behind it was in the first.
    const auto isInDisc = [](double x, double y, double t) {
        return std::hypot(x - 150 - 13 * t, y - 90 + 5 * t) < 42;
    };
    const auto means = [&](const DirectedFlow& flow, double from, double to) {
        double sums[2] = {};
        int counts[2] = {};
        for (int y = 20; y < 80; ++y)
            for (int x = 20; x < 140; ++x) {
                const double px = 2 * x + 0.5;
                const double py = 2 * y + 0.5;
                const bool isHidden =
                    !isInDisc(px, py, from) && isInDisc(px - 5 * (to - from), py + 2 * (to - from), to);
                sums[isHidden] += flow.visibility(x, y) / 255.0;
                ++counts[isHidden];
            }
        return std::pair(sums[0] / counts[0], sums[1] / counts[1]);
    };
    const auto [forwardSeen, forwardHidden] = means(estimate.pair.forward, 0, 1);
    const auto [backwardSeen, backwardHidden] = means(estimate.pair.backward, 1, 0);
    EXPECT_GT(forwardSeen, 0.88);
    EXPECT_GT(backwardSeen, 0.88);
    EXPECT_LT(forwardHidden, 0.1);
    EXPECT_LT(backwardHidden, 0.1);
}

TEST(FlowPair, OnlyACutIsACut) {
    for (const DrawnScene& scene : drawnScenes())
        EXPECT_EQ(Estimate(scene).pair.isCut, std::string(scene.name) == "cut") << scene.name;
    // A part of the picture goes on across the cut, as a banner does.
    for (const auto& [part, isCut] : {std::pair{0.04, true}, {0.2, false}}) {
        const DrawnScene banner{"banner", [part = part](double x, double y, double t) {
                                    if (x < part * DrawnScene::width) return texture(x - t, y);
                                    return t < 0.5 ? texture(x, y) : otherTexture(x, y);
                                }};
        EXPECT_EQ(Estimate(banner).pair.isCut, isCut) << part;
    }
}

} // namespace
} // namespace flowtide::flow
