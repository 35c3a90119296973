// When a reader decodes on and when it goes by way of a key frame.
#include "media/player/decode_plan.h"

#include <gtest/gtest.h>

#include <cmath>
#include <ostream>

namespace flowtide {
namespace {

struct Case {
    const char* what;
    MissingStretch missing;
    std::optional<double> position;
    bool seeks;
    double from;
};

TEST(DecodePlan, DecodesOnWithinAGroupAndSeeksBeyondIt) {
    // Key frames every ten seconds.
    const auto keyFrameAt = [](double time) { return std::floor(time / 10) * 10; };
    constexpr double endless = 1e9;
    for (const Case& c : {
             Case{"nothing delivered yet", {3, 1}, std::nullopt, true, 3},
             Case{"the very next frame", {3, 1}, 3, false, 3},
             Case{"rounding of the map", {3, 1}, 3 + 1e-9, false, 3},
             Case{"further on in the group", {9.5, 1}, 1, false, 9.5},
             Case{"back in the group", {2.9, 1}, 3, true, 2.9},
             Case{"past the next key frame", {12, 1}, 9.99, true, 12},
             Case{"the reader stands at the key frame", {12, 1}, 10, false, 12},
             Case{"backwards, from scratch", {7, -1, 2}, std::nullopt, true, 5},
             Case{"backwards, having just decoded what follows", {7, -1, 2}, 9, true, 5},
             Case{"backwards, the reader being before the stretch", {7, -1, 2}, 4.5, false, 5},
             Case{"backwards, the stretch starting behind a key frame", {13, -1, 2}, 9, true, 11},
             Case{"backwards, no further than needed", {7, -1, 5, 6.5}, std::nullopt, true, 6.5},
             Case{"backwards, all that there is", {7, -1, endless, 0}, 0.5, true, 0},
             Case{"backwards, nothing needed", {7, -1, 2, 8}, std::nullopt, true, 7},
         }) {
        const DecodePlan plan = planDecode(c.missing, c.position, keyFrameAt);
        EXPECT_EQ(plan.seeks, c.seeks) << c.what;
        EXPECT_DOUBLE_EQ(plan.from, c.from) << c.what;
    }
}

} // namespace
} // namespace flowtide
