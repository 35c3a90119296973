// Single moments with their neighbours, in any order.
#include "media/frames/frames_around.h"
#include "tests/support/clip_maker.h"
#include "tests/support/scripted_media.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace flowtide::test {
namespace {

using testing::ElementsAre;

constexpr std::int64_t frameCount = 200;
constexpr double interval = 0.04;

class FramesAroundTest : public testing::Test {
protected:
    FramesAroundTest() {
        MediaScript script;
        script.playback.keyInterval = 50;
        script.playback.onFrame = [this](const ImportedClip&, std::int64_t) { ++decoded; };
        script.playback.onOpen = [this](const ImportedClip&) { ++opened; };
        backend.emplace(script);
        clip.video.encodedWidth = 96;
        clip.video.encodedHeight = 64;
        clip.duration = static_cast<double>(frameCount) * interval;
        clip.frameDuration = {1, 25};
        clip.video.constantSampleInterval = MediaTime{1, 25};
    }
    std::vector<std::int64_t> numbers(FramesAround& around, double time, const CancelCheck& isCancelled = {}) {
        decoded = 0;
        std::vector<std::int64_t> result;
        for (const TimedFrame& frame : around.at({time}, isCancelled))
            result.push_back(numberOf(frame.frame).value_or(-1));
        return result;
    }

    int decoded = 0; ///< by the last call
    int opened = 0;
    std::optional<ScriptedBackend> backend;
    ImportedClip clip;
};

TEST_F(FramesAroundTest, AnyOrderGivesTheSameNeighbours) {
    for (const bool isEven : {true, false}) {
        if (!isEven) clip.video.constantSampleInterval.reset();
        FramesAround around(*backend, clip, {});
        opened = 0;
        std::mt19937 random(3);
        for (int round = 0; round < 300; ++round) {
            const auto frame = static_cast<std::int64_t>(random() % frameCount);
            const double within = round % 3 == 0 ? 0 : round % 3 == 1 ? interval / 2 : interval - 1e-5;
            if (round % 20 == 19) {
                EXPECT_THROW(numbers(around, static_cast<double>(frame) * interval, [] { return true; }),
                             FlowtideError);
            }
            std::vector<std::int64_t> expected;
            for (std::int64_t i = std::max<std::int64_t>(frame - 1, 0); i <= std::min(frame + 2, frameCount - 1); ++i)
                expected.push_back(i);
            EXPECT_EQ(numbers(around, static_cast<double>(frame) * interval + within), expected) << isEven;
        }
        EXPECT_EQ(opened, 1);
        EXPECT_THAT(numbers(around, -1), ElementsAre(0, 1, 2));
    }
}

TEST_F(FramesAroundTest, WhatIsHeldOrNearIsNotDecodedAgain) {
    FramesAround around(*backend, clip, {});
    const auto costAt = [&](double frame) {
        numbers(around, frame * interval);
        return decoded;
    };
    costAt(60.1);
    EXPECT_EQ(costAt(60.9), 0);
    EXPECT_EQ(costAt(61.1), 1);
    EXPECT_EQ(costAt(63.5), 2);
    EXPECT_LE(costAt(80.5), 18);  // on from there
    EXPECT_LE(costAt(160.5), 14); // by way of the key frame at 150
    EXPECT_LE(costAt(152.5), 6);
}

} // namespace
} // namespace flowtide::test
