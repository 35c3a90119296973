// What each output frame is made from: the frame that is held, or one in between with its neighbours as context.
#include "media/export/output_frames.h"
#include "tests/support/scripted_media.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace flowtide::test {
namespace {

constexpr std::int64_t inBetween = 4000; // the number that the scripted renderer draws

/// Writes down what it is asked for, frames by their numbers: "1 (0 … 2, 3) at 0.25".
class NotingRenderer : public FrameInterpolating {
public:
    VideoFrame render(const FramePair& pair, SourceSeconds time) override {
        const auto number = [](const std::optional<TimedFrame>& frame) {
            return frame ? std::to_string(numberOf(frame->frame).value_or(-1)) : std::string("none");
        };
        const double phase = (time.value - pair.first.time.value) / (pair.second.time.value - pair.first.time.value);
        notes.push_back(number(pair.before) + " [" + number(pair.first) + " " + number(pair.second) + "] " +
                        number(pair.after) + " at " + std::to_string(std::lround(phase * 100)));
        return numberedFrame({}, 16, 16, inBetween);
    }
    std::vector<std::string> notes;
};

ExportPlan planOf(double sourceEnd, double speed, double frameDuration) {
    ExportPlan plan;
    plan.timeMap = TimeMap({{0, 0}, {sourceEnd, sourceEnd / speed}}, {0, sourceEnd}, sourceEnd / speed);
    plan.video.frameDuration = MediaTime::reduced(std::llround(frameDuration * 1000), 1000);
    plan.frameCount = outputFrameCount(sourceEnd / speed, plan.video.frameDuration);
    return plan;
}

std::vector<std::int64_t> numbers(OutputFrames frames) {
    std::vector<std::int64_t> result;
    while (const auto frame = frames.next())
        result.push_back(numberOf(*frame).value_or(-1));
    return result;
}

TEST(OutputFrames, InBetweenFramesAreMadeInsideTheRangesWithTheirNeighbours) {
    ExportPlan plan = planOf(0.5, 0.5, 0.1);
    plan.opticalFlowRanges = {{0, 0.2}, {0.4, 0.5}};
    FrameSequence reader({0, 0.1, 0.2, 0.3, 0.4, 0.5});
    NotingRenderer renderer;
    EXPECT_THAT(numbers({plan, reader, &renderer}),
                testing::ElementsAre(0, inBetween, 1, inBetween, 2, 2, 3, 3, 4, inBetween));
    EXPECT_THAT(renderer.notes, testing::ElementsAre("none [0 1] 2 at 50", "0 [1 2] 3 at 50", "3 [4 5] none at 50"));
}

TEST(OutputFrames, NothingIsInBetweenOutsideTheSourceOrWithoutARenderer) {
    ExportPlan plan = planOf(0.4, 0.5, 0.1);
    plan.opticalFlowRanges = {{0, 0.4}};
    NotingRenderer renderer;
    FrameSequence late({0.1, 0.2, 0.25}); // begins after the range and ends before it
    EXPECT_THAT(numbers({plan, late, &renderer}), testing::ElementsAre(0, 0, 0, inBetween, 1, 2, 2, 2));
    FrameSequence all({0, 0.1, 0.2, 0.3, 0.4});
    EXPECT_THAT(numbers({plan, all, nullptr}), testing::ElementsAre(0, 0, 1, 1, 2, 2, 3, 3));
    FrameSequence none({});
    EXPECT_THAT(numbers({plan, none, &renderer}), testing::IsEmpty());
}

TEST(OutputFrames, EachIsFramedForItsOwnTimeAndNumber) {
    ExportPlan plan = planOf(0.4, 1, 0.1);
    plan.framing.crop.emplace();
    plan.framing.crop->width = 8;
    plan.framing.crop->height = 16;
    plan.framing.frameDuration = {1, 10};
    plan.framing.cropOffsets.cropX = {0, 2, 6, 8, 8};
    plan.framing.zooms.resize(4);
    plan.framing.zooms[2].scale = 2;
    FrameSequence reader({0, 0.1, 0.2, 0.3, 0.4});
    OutputFrames frames(plan, reader, nullptr);
    std::vector<VideoFrame> got;
    while (const auto frame = frames.next())
        got.push_back(*frame);
    ASSERT_EQ(got.size(), 4U);
    for (const std::size_t i : {0U, 1U, 3U}) { // views into the decoded frame, at its offset
        const auto* whole = static_cast<const std::vector<std::uint8_t>*>(got[i].owner.get())->data();
        EXPECT_EQ(got[i].planes[0].data - whole, plan.framing.cropOffsets.cropX[i]) << i;
        EXPECT_EQ(got[i].width, 8);
    }
    EXPECT_EQ(got[2].width, 8);
    EXPECT_NE(got[2].planes[0].stride, 16); // resampled into memory of its own
}

} // namespace
} // namespace flowtide::test
