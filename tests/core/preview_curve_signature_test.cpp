// What counts as the same curve over a range.
#include "core/curve_engine.h"
#include "core/preview_curve_signature.h"

#include <gtest/gtest.h>

#include <functional>

namespace flowtide {
namespace {

TEST(PreviewCurveSignature, DiffersExactlyWhereTheCurveDoes) {
    const auto curve = [] {
        SpeedKeyframes list;
        for (const auto& [time, speed] : {std::pair{0.0, 1.0}, {2.0, 0.2}, {6.0, 0.2}, {8.0, 0.6}, {10.0, 1.0}})
            list.push_back({Uuid::random(), time, speed, SpeedKeyframeRole::curve});
        return list;
    };
    using Edit = std::function<void(SpeedKeyframes&)>;
    const struct {
        const char* what;
        SourceRange range;
        Edit edit;
        bool isSame;
    } cases[] = {
        {"nothing", {3, 7}, [](auto&) {}, true},
        {"inside", {3, 7}, [](auto& list) { list[2].speed = 0.3; }, false},
        {"inside, moved", {3, 7}, [](auto& list) { list[2].time = 5.9; }, false},
        {"next door, behind a level stretch", {3, 5}, [](auto& list) { list[0].speed = 2; }, true},
        {"next door", {6.5, 7}, [](auto& list) { list[3].speed = 0.7; }, false},
        {"next but one, through a slope", {6.5, 7}, [](auto& list) { list[4].speed = 1.4; }, false},
        {"next but two", {2, 5}, [](auto& list) { list[4].speed = 1.4; }, true},
        {"at the range's end, slope alone", {6, 8}, [](auto& list) { list[4].speed = 1.4; }, false},
        {"beyond a level stretch", {1, 5}, [](auto& list) { list[3].time = 9; }, true},
    };
    for (const auto& [what, range, edit, isSame] : cases) {
        SpeedKeyframes edited = curve();
        edit(edited);
        EXPECT_EQ(PreviewCurveSignature::of(edited, 1, range) == PreviewCurveSignature::of(curve(), 1, range), isSame)
            << what;
    }
    EXPECT_NE(PreviewCurveSignature::of(curve(), 1, {3, 5}), PreviewCurveSignature::of(curve(), 0.9, {3, 5}));
}

} // namespace
} // namespace flowtide
