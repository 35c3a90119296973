// The frame that is shown at each time, its neighbours, and what a walk may leave out.
#include "media/frames/held_frames.h"
#include "tests/support/scripted_media.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace flowtide::test {
namespace {

using testing::ElementsAre;

/// Numbers of the frames before, at, after and behind the current time; -1: none.
std::vector<std::int64_t> around(const HeldFrames& held) {
    std::vector<std::int64_t> numbers;
    for (const auto* frame : {&held.before(), &held.previous(), &held.next(), &held.after()})
        numbers.push_back(*frame ? numberOf((*frame)->frame).value_or(-2) : -1);
    return numbers;
}

TEST(HeldFrames, ShowsTheFirstFrameBeforeItsTimeAndTheLastAfterTheEnd) {
    for (const auto context : {HeldFrames::Context::none, HeldFrames::Context::kept}) {
        const bool keeps = context == HeldFrames::Context::kept;
        const auto orNone = [&](std::int64_t number) { return keeps ? number : -1; };
        FrameSequence reader({0.5, 0.6, 0.7, 0.8, 0.9});
        HeldFrames held(reader, context);
        held.advanceTo({0});
        EXPECT_THAT(around(held), ElementsAre(-1, 0, 1, orNone(2)));
        EXPECT_EQ(reader.delivered, keeps ? 3 : 2); // no further than the neighbours
        held.advanceTo({0.7 - 1e-12});              // reached but for a rounding
        EXPECT_THAT(around(held), ElementsAre(orNone(1), 2, 3, orNone(4)));
        held.advanceTo({0.7});
        EXPECT_THAT(around(held), ElementsAre(orNone(1), 2, 3, orNone(4)));
        held.advanceTo({0.8});
        EXPECT_THAT(around(held), ElementsAre(orNone(2), 3, 4, -1));
        held.advanceTo({100});
        EXPECT_THAT(around(held), ElementsAre(orNone(3), 4, -1, -1));
    }
    FrameSequence none({});
    HeldFrames held(none);
    held.advanceTo({1});
    EXPECT_FALSE(held.previous());
}

TEST(HeldFrames, LeavesOutOnlyWhatIsNoContext) {
    std::vector<double> times;
    for (int i = 0; i < 100; ++i)
        times.push_back(0.5 * i);
    using Context = HeldFrames::Context;
    const struct {
        Context context;
        std::optional<double> reach;
        std::vector<double> skips;
        std::vector<std::int64_t> around;
    } cases[] = {
        {Context::none, std::nullopt, {30.2}, {-1, 60, 61, -1}},
        {Context::kept, 1.0, {29.2}, {59, 60, 61, 62}},
        {Context::kept, std::nullopt, {}, {59, 60, 61, 62}},
    };
    for (const auto& [context, reach, skips, expected] : cases) {
        FrameSequence reader(times);
        HeldFrames held(reader, context, reach);
        held.advanceTo({0.1});
        held.advanceTo({0.2}); // nothing to leave out on the way
        held.advanceTo({30.2});
        EXPECT_EQ(reader.skips, skips);
        EXPECT_EQ(around(held), expected);
    }
}

} // namespace
} // namespace flowtide::test
