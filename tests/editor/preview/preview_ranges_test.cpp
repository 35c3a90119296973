// The choice of what to render, and the frames of a render.
#include "tests/core/random_curve.h"
#include "tests/editor/preview/render_ahead_stage.h"

namespace flowtide::test {
namespace {

using namespace PreviewRanges;

TimeMap halfSpeed(double duration) {
    return CurveEngine::buildTimeMap({{{}, 0, 0.5}, {{}, duration, 0.5}}, duration, {}, 1000, 0);
}

TEST(PreviewRanges, AnIdleRenderStaysAroundThePlayhead) {
    const TimeMap map = halfSpeed(10); // 20 s
    const SourceRanges ranges{{2, 4}, {6, 10}};
    const struct {
        const char* what;
        double playhead;
        SourceRanges rendered;
        SourceRanges expected;
    } cases[] = {
        {"before", 1.999, {}, {}},
        {"between", 5, {}, {}},
        {"at a range's end", 4, {}, {}},
        {"at its start", 2, {}, {{2, 3.25}}},
        {"all of a short one", 3, {}, {{2, 4}}},
        {"five seconds", 8, {}, {{6.75, 9.25}}},
        {"at the clip's end", 9.99, {}, {{7.5, 10}}},
        {"the first gap", 8, {{7, 8}}, {{6.75, 7}}},
        {"between two frames lies nothing", 8.005, {{6.76, 8}}, {{8, 9.255}}},
        {"but not when a frame begins there", 8, {{6.76, 8}}, {{6.75, 6.76}}},
        {"nothing left", 8, {{6.7, 7.2}, {7.2, 9.3}}, {}},
        {"rendered elsewhere", 3, {{6, 10}}, {{2, 4}}},
    };
    for (const auto& each : cases) {
        const auto range = automatic({map, {1, 30}}, ranges, each.rendered, {each.playhead});
        expectRanges(range ? SourceRanges{*range} : SourceRanges{}, each.expected, each.what);
    }
    expectRanges({*automatic({map, {1, 30}}, {{0, 10}}, {}, {0.1})}, {{0, 2.5}}, "at the clip's start");
    const TimeMap brief = halfSpeed(2);
    EXPECT_EQ(automatic({brief, {1, 30}}, {{0, 2}}, {}, {1.9}), (SourceRange{0, 2}));
}

TEST(PreviewRanges, LongGapsAreNarrowed) {
    const TimeMap map = halfSpeed(10);
    for (const auto& [range, centre, expected] : {std::tuple{SourceRange{2, 4.5}, 0.0, SourceRange{2, 4.5}},
                                                  {{2, 4.6}, 0.0, {2, 4.5}},
                                                  {{2, 8}, 10.0, {3.75, 6.25}},
                                                  {{2, 8}, 6.0, {2, 4.5}},
                                                  {{2, 8}, 14.0, {5.5, 8}}})
        expectRanges({narrowed(map, range, {centre})}, {expected}, std::to_string(centre));
}

TEST(PreviewRanges, WhatIsLeftHasFramesToRender) {
    const TimeMap map = halfSpeed(0.17); // 10.2 frames, of which an export has ten
    const RetimedOutput output{map, {1, 30}};
    const SourceRanges all{{0, 0.17}};
    const double frame = 0.5 / 30;
    expectRanges(unrendered(output, all, {}), all, "all");
    expectRanges(unrendered(output, all, {{0, 9 * frame}}), {{9 * frame, 0.17}}, "the last frame");
    expectRanges(unrendered(output, all, {{0, 9.01 * frame}}), {}, "beyond the last frame's start");
    expectRanges(unrendered(output, all, {{5e-7, 0.17 - 5e-7}}), {}, "no piece is that short");
    expectRanges(unrendered(output, all, {{2 * frame, 4 * frame}, {6 * frame, 9.5 * frame}}),
                 {{0, 2 * frame}, {4 * frame, 6 * frame}}, "two");
}

TEST(PreviewRanges, AWidenedRenderHasTheFramesOfTheWhole) {
    RandomCurves random(5);
    for (int round = 0; round < 300; ++round) {
        const SourceRange trim{random.between(0, 2), random.between(3, 10)};
        const TimeMap map = CurveEngine::buildTimeMap(random.curve(random.count(2, 9), 10), 10, trim, 20000, 0.5);
        const MediaTime frame = round % 2 ? MediaTime{1001, 30000} : MediaTime{1, 25};
        const auto wholeCount = outputFrameCount(map.outputDuration(), frame);
        SourceRange range{random.between(trim.lower, trim.upper), 0};
        range.upper = round % 7 ? random.between(range.lower, trim.upper) : trim.upper;
        if (round % 5 == 0) range.lower = map.sourceTime({frame.secondsTimes(random.count(0, 20))}).value;
        if (unrendered({map, frame}, {range}, {}).empty()) continue;

        const WholeFrames frames = widenedToFrames({map, frame}, range);
        const TimeMap file = map.sliced(frames.range);
        const auto count = outputFrameCount(file.outputDuration(), frame);
        for (std::int64_t i = 0; i < count && frames.firstFrame + i < wholeCount; ++i)
            ASSERT_NEAR(file.sourceTime({frame.secondsTimes(i)}).value,
                        map.sourceTime({frame.secondsTimes(frames.firstFrame + i)}).value, 1e-9);
        EXPECT_LT(frames.leadSeconds, frame.seconds() - 9e-7);
        const double start = frame.secondsTimes(frames.firstFrame);
        EXPECT_NEAR(start + frames.leadSeconds, map.outputTime({range.lower}).value, 2e-6);
        // Every frame of the range is there, and at most one on each side that is shown in it in part.
        const double end = map.outputTime({range.upper}).value / frame.seconds();
        EXPECT_GE(static_cast<double>(frames.firstFrame + count),
                  std::min(end, static_cast<double>(wholeCount)) - 1e-4);
        EXPECT_LT(static_cast<double>(frames.firstFrame + count), end + 1);
    }
}

} // namespace
} // namespace flowtide::test
