// Walking through a clip's pictures, both ways.
#include "media/tracking/picture_walk.h"
#include "tests/media/tracking/drawn_subject.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace flowtide::tracking {
namespace {

using test::drawnClip;
using test::evenTimes;
using test::SubjectBackend;

const test::DrawnSubject still{[](double) { return SubjectBox{0.4, 0.4, 0.2, 0.2}; }};

/// A tiny clip: only times matter.
ImportedClip tiny(double duration, MediaTime frameDuration) {
    ImportedClip clip = drawnClip(duration, frameDuration);
    clip.video.encodedWidth = clip.video.encodedHeight = clip.width = clip.height = 16;
    return clip;
}

std::vector<double> timesOf(PictureWalk& walk) {
    std::vector<double> times;
    while (const auto picture = walk.next())
        times.push_back(picture->time);
    return times;
}

TEST(PictureWalkTest, BothWaysShowTheFramesOfTheRange) {
    struct Case {
        const char* what;
        std::vector<double> frames;
        SourceRange range;
        std::vector<double> wanted;
    };
    std::vector<double> uneven;
    for (int i = 0; i < 400; ++i) // up to four times as dense as the clip says
        uneven.push_back(i < 300 ? i * 0.01 : 3 + (i - 300) * 0.07);
    const std::vector<double> many = evenTimes(500, 0.04);
    for (const auto& [what, frames, range, wanted] :
         {Case{"whole frames", evenTimes(10, 0.1), {0.2, 0.5}, {0.2, 0.1 * 3, 0.4}},
          {"a start inside a frame", evenTimes(10, 0.1), {0.25, 0.5}, {0.25, 0.1 * 3, 0.4}},
          {"an end inside a frame", evenTimes(10, 0.1), {0.4, 0.55}, {0.4, 0.5}},
          {"a range inside a frame", evenTimes(10, 0.1), {0.42, 0.48}, {0.42}},
          {"the clip's end", evenTimes(4, 0.1), {0.2, 0.4}, {0.2, 0.1 * 3}},
          {"several stretches", many, {0, 20}, many},
          {"denser than it says", uneven, {0, 10}, uneven}}) {
        const SubjectBackend backend(still, frames);
        const ImportedClip clip = tiny(frames.back() + 0.1, {1, 25});
        const PictureSource source{backend, clip, {}};
        EXPECT_EQ(timesOf(*walkForwards(source, range)), wanted) << what;
        std::vector<double> back = timesOf(*walkBackwards(source, range));
        std::reverse(back.begin(), back.end());
        EXPECT_EQ(back, wanted) << what << ", backwards";
    }
    const SubjectBackend backend(still, evenTimes(10, 0.1));
    const ImportedClip clip = tiny(1, {1, 10});
    EXPECT_TRUE(timesOf(*walkBackwards({backend, clip, {}}, {0.2, 0.2})).empty());
    EXPECT_EQ(timesOf(*walkForwards({backend, clip, {}}, {1, 1})), std::vector<double>{1}) << "the last frame's end";
}

TEST(PictureWalkTest, WalkingBackDecodesLittleMoreThanOnce) {
    const SubjectBackend backend(still, evenTimes(1000, 0.04));
    const ImportedClip clip = tiny(40, {1, 25});
    const auto walk = walkBackwards({backend, clip, {}}, {0, 40});
    EXPECT_EQ(timesOf(*walk).size(), 1000u);
    EXPECT_LT(backend.decoded, 1050);
}

TEST(PictureWalkTest, FailuresSayWhatStopped) {
    const auto failureOf = [](const auto& read) -> std::string {
        try {
            read();
        } catch (const FlowtideError& error) {
            EXPECT_EQ(error.kind(), FlowtideError::Case::trackingFailed);
            return error.what();
        }
        return "";
    };
    const ImportedClip clip = tiny(1, {1, 10});
    SubjectBackend backend(still, evenTimes(10, 0.1));
    const PictureSource source{backend, clip, {}};
    backend.failsFrom = 0.45;
    EXPECT_EQ(failureOf([&] {
                  timesOf(*walkForwards(source, {0.2, 1}));
              }),
              "Tracking stopped because the video could not be decoded.");
    EXPECT_EQ(failureOf([&] {
                  timesOf(*walkBackwards(source, {0.2, 1}));
              }),
              "Tracking stopped because the video could not be decoded.");
    EXPECT_EQ(failureOf([&] { timesOf(*walkForwards(source, {0.7, 1})); }), "Could not decode tracking frames.");
    backend.opens = false;
    EXPECT_EQ(failureOf([&] { walkForwards(source, {0, 1}); }), "Could not decode tracking frames.");

    const SubjectBackend sound(still, evenTimes(10, 0.1));
    int asked = 0;
    const PictureSource cancelled{sound, clip, [&] { return ++asked > 3; }};
    for (const bool forwards : {true, false}) {
        asked = 0;
        const auto walk = forwards ? walkForwards(cancelled, {0, 1}) : walkBackwards(cancelled, {0, 1});
        try {
            timesOf(*walk);
            ADD_FAILURE() << "not cancelled";
        } catch (const FlowtideError& error) {
            EXPECT_EQ(error.kind(), FlowtideError::Case::exportCancelled);
            EXPECT_LE(sound.decoded, 10);
        }
    }
}

} // namespace
} // namespace flowtide::tracking
