// Ramps, focal motion, and the rules that keep blocks apart.
#include "core/curve_engine.h"
#include "core/zoom_block_rules.h"
#include "core/zoom_engine.h"

#include <gtest/gtest.h>

#include <cmath>

namespace flowtide {
namespace {

ZoomBlock block(double start, double end, ZoomMode mode = ZoomMode::inOut) {
    ZoomBlock result;
    result.id = Uuid::random();
    result.startTime = start;
    result.endTime = end;
    result.amount = 2;
    result.mode = mode;
    return result;
}

TEST(ZoomEngine, Ramps) {
    EXPECT_EQ(ZoomEngine::rampFraction(0.6, 1, ZoomMode::inOut), 0.5);
    EXPECT_EQ(ZoomEngine::rampFraction(0.6, 1, ZoomMode::zoomIn), 0.6);
    EXPECT_EQ(ZoomEngine::rampFraction(9, 1, ZoomMode::zoomOut), 1);
    EXPECT_EQ(ZoomEngine::rampFraction(0.6, 0.0001, ZoomMode::inOut), 0);
    EXPECT_EQ(ZoomEngine::rampFraction(-1, 1, ZoomMode::inOut), 0);
    const struct {
        ZoomMode mode;
        double ramp, progress, scale;
    } cases[] = {
        {ZoomMode::inOut, 0.5, 0, 1},
        {ZoomMode::inOut, 0.5, 0.25, std::sqrt(2)},
        {ZoomMode::inOut, 0.5, 0.5, 2},
        {ZoomMode::inOut, 0.5, 0.75, std::sqrt(2)},
        {ZoomMode::inOut, 0.2, 1, 1},
        {ZoomMode::zoomIn, 0.6, 0.3, std::sqrt(2)},
        {ZoomMode::zoomIn, 0.6, 1, 2},
        {ZoomMode::zoomOut, 0.6, 0, 2},
        {ZoomMode::zoomOut, 0.6, 0.7, std::sqrt(2)},
        {ZoomMode::constant, 0.5, 0, 2},
        {ZoomMode::inOut, 0.0004, 0, 2}, // a hard cut
        {ZoomMode::inOut, 0.5, -3, 1},
    };
    for (const auto& [mode, ramp, progress, scale] : cases)
        EXPECT_NEAR(ZoomEngine::scale(progress, block(0, 1, mode), ramp), scale, 1e-12)
            << static_cast<int>(mode) << " " << progress;
    ZoomBlock shrinking = block(0, 1);
    shrinking.amount = 0.3;
    EXPECT_EQ(ZoomEngine::scale(0.5, shrinking, 0), 1);
}

TEST(ZoomEngine, FocalMotion) {
    ZoomBlock moving = block(0, 1);
    moving.focalX = 0.9;
    EXPECT_EQ(ZoomEngine::focal(0.5, moving), (ZoomEngine::FocalPoint{0.9, 0.5}));
    moving.focalKeyframes = {{0.5, 0.1, 0.2}};
    EXPECT_EQ(ZoomEngine::focal(0.9, moving), (ZoomEngine::FocalPoint{0.1, 0.2}));
    moving.focalKeyframes = {{0.2, 0, 0}, {0.6, 1, 0.5}, {0.6, 0.25, 0.5}, {0.8, 0.25, 1}};
    EXPECT_EQ(ZoomEngine::focal(0, moving), (ZoomEngine::FocalPoint{0, 0}));
    EXPECT_NEAR(ZoomEngine::focal(0.4, moving).x, 0.5, 1e-12);
    EXPECT_NEAR(ZoomEngine::focal(0.3, moving).x, 0.103515625, 1e-12); // a quarter of the way, eased
    EXPECT_NEAR(ZoomEngine::focal(0.7, moving).y, 0.75, 1e-12);
    EXPECT_EQ(ZoomEngine::focal(2, moving), (ZoomEngine::FocalPoint{0.25, 1}));
}

TEST(ZoomEngine, TableAndPreviewAgreeThroughTheTimeMap) {
    SpeedKeyframes curve;
    for (const auto& [time, speed] : {std::pair{0.0, 1.0}, {2.0, 0.25}, {4.0, 3.0}})
        curve.push_back({Uuid::random(), time, speed, SpeedKeyframeRole::curve});
    const TimeMap map = CurveEngine::buildTimeMap(curve, 4, std::nullopt, 1000, 1);
    const std::vector<ZoomBlock> blocks{block(0.5, 1.5), block(2, 2.0001), block(3, 4, ZoomMode::zoomIn)};
    const double frame = 1.0 / 30;
    const auto count = std::llround(map.outputDuration() / frame);
    const auto table = ZoomEngine::table(blocks, map, count, frame);
    ASSERT_EQ(table.size(), static_cast<std::size_t>(count));
    int zoomed = 0;
    for (std::size_t i = 0; i < table.size(); ++i) {
        EXPECT_EQ(table[i], ZoomEngine::stateAt({frame * static_cast<double>(i)}, blocks, map)) << i;
        zoomed += table[i].scale > 1;
    }
    EXPECT_GT(zoomed, 60);
    EXPECT_LT(zoomed, count);
    EXPECT_EQ(table.front(), ZoomEngine::ZoomState{});
}

TEST(ZoomEngine, BlocksUnderAMillisecondAreSkipped) {
    const TimeMap map = CurveEngine::buildTimeMap({}, 4, std::nullopt, 1000, 1);
    for (const auto& [length, isZoomed] : {std::pair{0.0009, false}, {0.0011, true}}) {
        const std::vector<ZoomBlock> blocks{block(1 - length / 2, 1 + length / 2, ZoomMode::constant)};
        EXPECT_EQ(ZoomEngine::stateAt({1}, blocks, map).scale > 1, isZoomed) << length;
        EXPECT_EQ(ZoomEngine::table(blocks, map, 40, 0.1)[10].scale > 1, isZoomed) << length; // at 1 s
    }
}

using namespace ZoomBlockRules;

TEST(ZoomBlockRules, AddingNeedsRoom) {
    Blocks blocks{block(2, 3), block(5, 6)};
    EXPECT_EQ(blockAt(blocks, 3), &blocks[0]);
    EXPECT_EQ(blockAt(blocks, 3.1), nullptr);
    const struct {
        double playhead;
        std::optional<SourceRange> room;
    } cases[] = {
        {1.9, std::nullopt},        {1.7, SourceRange{1.7, 2}},   {3.5, SourceRange{3.5, 4.5}},
        {4.7, SourceRange{4.7, 5}}, {6.8, SourceRange{6.8, 7.5}}, {7.4, std::nullopt},
        {0, SourceRange{0.5, 1.5}},
    };
    for (const auto& [playhead, room] : cases) {
        Blocks copy = blocks;
        const auto id = addAtPlayhead(copy, playhead, {0.5, 7.5}, 10);
        ASSERT_EQ(id.has_value(), room.has_value()) << playhead;
        if (!id) {
            EXPECT_EQ(copy, blocks);
            continue;
        }
        const auto added = std::find_if(copy.begin(), copy.end(), [&](const auto& b) { return b.id == *id; });
        EXPECT_NEAR(added->startTime, room->lower, 1e-12);
        EXPECT_NEAR(added->endTime, room->upper, 1e-12);
        EXPECT_EQ(added->amount, 1.2);
        EXPECT_TRUE(std::is_sorted(copy.begin(), copy.end(),
                                   [](const auto& a, const auto& b) { return a.startTime < b.startTime; }));
    }
    EXPECT_EQ(freeRange(blocks, {-5, 99}, 10), (SourceRange{0, 2}));
    EXPECT_EQ(freeRange(blocks, {2.5, 5.5}, 10), (SourceRange{3, 5}));
}

TEST(ZoomBlockRules, UpdatesAndMovesStayBetweenTheNeighbours) {
    const Blocks blocks{block(1, 2), block(3, 4), block(5, 6)};
    const auto updated = [&](double start, double end) {
        Blocks copy = blocks;
        ZoomBlock changed = copy[1];
        changed.startTime = start;
        changed.endTime = end;
        update(copy, changed, {0, 8});
        return SourceRange{copy[1].startTime, copy[1].endTime};
    };
    EXPECT_EQ(updated(0, 9), (SourceRange{2, 5}));
    EXPECT_EQ(updated(3.5, 3.6), (SourceRange{3.5, 3.75}));
    EXPECT_EQ(updated(4.9, 4.9), (SourceRange{4.75, 5}));
    const auto moved = [&](double start) {
        Blocks copy = blocks;
        move(copy, blocks[1].id, start, {0, 8});
        return SourceRange{copy[1].startTime, copy[1].endTime};
    };
    EXPECT_EQ(moved(-3), (SourceRange{2, 3}));
    EXPECT_EQ(moved(3.5), (SourceRange{3.5, 4.5}));
    EXPECT_EQ(moved(7), (SourceRange{4, 5}));

    Blocks tight{block(0, 1), block(1, 1.5), block(1.5, 2)};
    const Blocks before = tight;
    EXPECT_FALSE(move(tight, tight[1].id, 3, {0, 2}));
    EXPECT_FALSE(update(tight, tight[1], {0, 2}));
    EXPECT_FALSE(remove(tight, Uuid::random()));
    EXPECT_EQ(tight, before);
    EXPECT_TRUE(remove(tight, before[1].id));
    EXPECT_EQ(tight.size(), 2U);
}

TEST(ZoomBlockRules, RoundingMovesNothingIntoANeighbour) {
    Blocks slack{block(0, 1.07), block(3.15, 4)};
    ASSERT_GT(3.15 - 1.07 + 1.07, 3.15);
    EXPECT_TRUE(move(slack, slack[0].id, 9, {0, 5}));
    EXPECT_EQ(slack[0].endTime, slack[1].startTime);

    Blocks full{block(0, 0.99), block(0.99, 3.9), block(3.9, 4.5)};
    ASSERT_LT(3.9 - (3.9 - 0.99), 0.99);
    move(full, full[1].id, 9, {0, 5});
    EXPECT_EQ(full[1].startTime, full[0].endTime);
    EXPECT_EQ(full[1].endTime, full[2].startTime);
}

TEST(ZoomBlockRules, ProgressIsCountedInOutputTime) {
    const TimeMap map({{0, 0}, {2, 2}, {4, 3}}, {0, 4}, 3); // double speed from second 2 on
    const ZoomBlock whole = block(1, 3);                    // output seconds 1 to 2.5
    for (const auto& [time, progress] : {std::pair{0.0, 0.0}, {1.0, 0.0}, {1.75, 0.5}, {2.5, 1.25 / 1.5}, {3.5, 1.0}})
        EXPECT_DOUBLE_EQ(progressIn(whole, {time}, map), progress) << time;
    EXPECT_EQ(progressIn(block(2, 2), {3}, map), 0);
}

TEST(ZoomBlockRules, FocalKeyframes) {
    ZoomBlock one = block(0, 1);
    setFocal(one, 2, -1);
    EXPECT_EQ(one.focalX, 1);
    EXPECT_EQ(one.focalY, 0);
    setFocalKeyframe(one, 0.5, 0.1, 0.1);
    setFocalKeyframe(one, 0.2, 0.2, 0.2);
    setFocalKeyframe(one, 0.24, 0.3, 0.3); // near: replaces, and keeps its place
    setFocalKeyframe(one, 0.56, 0.4, 0.4);
    EXPECT_EQ(one.focalKeyframes, (std::vector<ZoomFocalKeyframe>{{0.2, 0.3, 0.3}, {0.5, 0.1, 0.1}, {0.56, 0.4, 0.4}}));
}

} // namespace
} // namespace flowtide
