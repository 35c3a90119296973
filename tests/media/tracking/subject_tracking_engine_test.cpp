// Whole tracking jobs on drawn clips: what comes out, and how they end.
#include "media/tracking/picture_walk.h"
#include "media/tracking/subject_tracking_engine.h"
#include "tests/media/tracking/drawn_subject.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>

namespace flowtide {
namespace {

using test::drawnClip;
using test::DrawnSubject;
using test::evenTimes;
using test::SubjectBackend;

constexpr double interval = 0.04;

SubjectBox swaying(double t) {
    return {0.4 + 0.25 * std::sin(1.5 * t), 0.3, 0.15, 0.35};
}

struct Job {
    DrawnSubject subject{swaying};
    int frames = 75;
    double seed = 1.2;
    SourceRange range{0, 3};
    AffineTransform transform{};
    std::int64_t bitDepth = 8;

    ImportedClip clip() const {
        ImportedClip result = drawnClip(frames * interval, {1, 25}, transform);
        result.video.bitDepth = bitDepth;
        return result;
    }
    SubjectTrackResult run(const SubjectTrackingCallbacks& callbacks = {},
                           InstructionSet instructions = bestInstructionSet()) const {
        const SubjectBackend backend(subject, evenTimes(frames, interval));
        return SubjectTrackingEngine(backend, instructions)
            .track(clip(), SourceSeconds{seed}, subject.box(seed), range, callbacks);
    }
};

void expectFollows(const SubjectTrackResult& result, const Job& job, const std::string& what) {
    for (const auto& sample : result.samples)
        ASSERT_NEAR(sample.centerX, job.subject.box(sample.time).midX(), 0.02) << what << " at " << sample.time;
}

TEST(SubjectTrackingEngineTest, EveryFrameOfTheRangeGetsItsSample) {
    struct Case {
        const char* what;
        Job job;
        std::size_t first;
        std::size_t count;
    };
    const auto turned = [](const AffineTransform& transform) {
        Job job;
        job.transform = transform;
        return job;
    };
    for (const auto& [what, job, first, count] : {Case{"from the middle", {}, 0, 75},
                                                  {"from the start", {.seed = 0}, 0, 75},
                                                  {"from the last frame", {.seed = 74 * interval}, 0, 75},
                                                  {"from the range's end", {.seed = 2, .range = {1, 2}}, 25, 26},
                                                  {"from within a frame", {.seed = 1.23}, 0, 75},
                                                  {"from the clip's end", {.seed = 3}, 0, 75},
                                                  {"a part", {.seed = 1.2, .range = {0.4, 2}}, 10, 40},
                                                  {"a range beyond the clip", {.range = {-1, 100}}, 0, 75},
                                                  {"10 bits", {.bitDepth = 10}, 0, 75},
                                                  {"turned right", turned({0, 1, -1, 0, 180, 0}), 0, 75},
                                                  {"turned left", turned({0, -1, 1, 0, 0, 320}), 0, 75},
                                                  {"upside down", turned({-1, 0, 0, -1, 320, 180}), 0, 75}}) {
        const SubjectTrackResult result = job.run();
        ASSERT_EQ(result.samples.size(), count) << what;
        for (std::size_t i = 0; i < count; ++i)
            EXPECT_NEAR(result.samples[i].time, static_cast<double>(first + i) * interval, 1e-9) << what;
        expectFollows(result, job, what);
        EXPECT_TRUE(result.lostFrames.empty()) << what;
        EXPECT_FALSE(result.lostSubject || result.lostBeforeSeed || result.lostAfterSeed) << what;
    }
}

TEST(SubjectTrackingEngineTest, WhatIsHiddenForAWhileIsPickedUpAgain) {
    const auto isHidden = [](double t) { return (t > 0.5 && t < 0.8) || (t > 1.9 && t < 2.3); };
    const Job job{.subject = {swaying, isHidden}};
    std::vector<bool> looks;
    std::vector<double> told;
    SubjectTrackingCallbacks callbacks;
    callbacks.looking = [&](bool looking) { looks.push_back(looking); };
    callbacks.sighted = [&](const tracking::Sighting& sighting) { told.push_back(sighting.time); };
    std::size_t looked = 0;
    callbacks.looked = [&](const tracking::TimedPicture& picture, const std::optional<SubjectBox>& box) {
        ++looked;
        if (!box) return;
        EXPECT_FALSE(isHidden(picture.time)) << picture.time;
        EXPECT_NEAR(box->midX(), swaying(picture.time).midX(), 0.02) << picture.time;
    };
    const SubjectTrackResult result = job.run(callbacks);
    EXPECT_EQ(looked, 75u);
    expectFollows(result, job, "hidden twice");
    EXPECT_EQ(result.samples.size() + result.lostFrames.size(), 75u);
    for (const auto& sample : result.samples)
        EXPECT_FALSE(isHidden(sample.time)) << sample.time;
    EXPECT_LT(result.lostFrames.size(), 25u);
    EXPECT_TRUE(std::is_sorted(result.lostFrames.begin(), result.lostFrames.end()));
    EXPECT_FALSE(result.lostSubject || result.lostBeforeSeed || result.lostAfterSeed);
    EXPECT_THAT(looks, testing::ElementsAre(true, false, true, false));
    EXPECT_EQ(told.size(), result.samples.size());
    EXPECT_EQ(told.front(), job.seed);
}

TEST(SubjectTrackingEngineTest, WhatStaysHiddenIsGivenUp) {
    struct Case {
        const char* what;
        std::function<bool(double)> isHidden;
        int frames;
        bool lost, before, after;
    };
    for (const auto& [what, isHidden, frames, lost, before, after] :
         {Case{"behind the seed", [](double t) { return t < 0.79; }, 75, false, true, false},
          {"ahead of it", [](double t) { return t > 1.61; }, 75, false, false, true},
          {"for more than four seconds", [](double t) { return t > 1.61; }, 175, true, false, true},
          {"on both sides", [](double t) { return t < 0.79 || t > 1.61; }, 175, true, true, true}}) {
        Job job{.subject = {swaying, isHidden}, .frames = frames};
        job.range.upper = frames * interval;
        bool isLooking = false;
        int changes = 0;
        SubjectTrackingCallbacks callbacks;
        callbacks.looking = [&](bool now) {
            isLooking = now;
            ++changes;
        };
        const SubjectTrackResult result = job.run(callbacks);
        EXPECT_FALSE(isLooking) << "what is given up is not looked for any longer: " << what;
        EXPECT_EQ(changes, before && after ? 4 : 2) << what;
        EXPECT_EQ(result.lostSubject, lost) << what;
        EXPECT_EQ(result.lostBeforeSeed, before) << what;
        EXPECT_EQ(result.lostAfterSeed, after) << what;
        EXPECT_FALSE(result.samples.empty());
        expectFollows(result, job, what);
        EXPECT_LT(result.lostFrames.back(), 1.61 + 4 + 3 * interval) << "it doesn't look on";
    }
}

TEST(SubjectTrackingEngineTest, ProgressCountsEveryTenthFrameAndStopsShortOfTheEnd) {
    std::vector<double> shares;
    SubjectTrackingCallbacks callbacks;
    callbacks.progress = [&](double share) { shares.push_back(share); };
    Job{.frames = 50, .range = {0, 2}}.run(callbacks);
    EXPECT_THAT(shares, testing::Pointwise(testing::DoubleNear(1e-9), {0.2, 0.4, 0.6, 0.8, 0.99}));
}

TEST(SubjectTrackingEngineTest, CancellingIsHeardBeforeTheNextFrame) {
    for (const int after : {0, 1, 20, 60}) { // frames
        SubjectTrackingCallbacks callbacks;
        int sighted = 0;
        callbacks.sighted = [&](const tracking::Sighting&) { ++sighted; };
        callbacks.isCancelled = [&] { return sighted >= after; };
        try {
            Job().run(callbacks);
            ADD_FAILURE() << "not cancelled";
        } catch (const FlowtideError& error) {
            EXPECT_EQ(error.kind(), FlowtideError::Case::exportCancelled);
            EXPECT_EQ(sighted, after);
        }
    }
}

TEST(SubjectTrackingEngineTest, FailuresSayWhatIsWrong) {
    constexpr const char* choose = "Choose a subject inside the video and a valid tracking range.";
    struct Case {
        const char* what;
        double seed;
        SubjectBox box;
        SourceRange range;
        double failsFrom;
        const char* sentence;
    };
    constexpr SubjectBox good{0.4, 0.3, 0.15, 0.35};
    constexpr double never = 100;
    for (const auto& [what, seed, box, range, failsFrom, sentence] :
         {Case{"a box beside the video", 1, {1.1, 0.3, 0.1, 0.1}, {0, 3}, never, choose},
          {"a box partly beside it", 1, {0.95, 0.3, 0.1, 0.1}, {0, 3}, never, choose},
          {"a box without size", 1, {0.5, 0.3, 0.1, 0}, {0, 3}, never, choose},
          {"a box of nothing", 1, {0.5, std::nan(""), 0.1, 0.1}, {0, 3}, never, choose},
          {"an empty range", 1, good, {1, 1}, never, choose},
          {"an inverted range", 1, good, {2, 1}, never, choose},
          {"a range behind the clip", 4, good, {3.5, 5}, never, choose},
          {"a seed before the range", 0.5, good, {1, 2}, never, choose},
          {"a seed behind the range", 2.5, good, {1, 2}, never, choose},
          {"a seed at no time", std::nan(""), good, {0, 3}, never, choose},
          {"nothing to decode", 1, good, {0, 3}, 0.5, "Could not decode tracking frames."},
          {"an end that cannot be decoded",
           1,
           good,
           {0, 3},
           1.5,
           "Tracking stopped because the video could not be decoded."}}) {
        SubjectBackend backend({swaying}, evenTimes(75, interval));
        backend.failsFrom = failsFrom;
        try {
            SubjectTrackingEngine(backend).track(Job().clip(), SourceSeconds{seed}, box, range);
            ADD_FAILURE() << what << " was tracked";
        } catch (const FlowtideError& error) {
            EXPECT_EQ(error.kind(), FlowtideError::Case::trackingFailed) << what;
            EXPECT_EQ(std::string(error.what()), sentence) << what;
        }
    }
}

TEST(SubjectTrackingEngineTest, EveryMachineFindsTheSame) {
    const Job job{.subject = {swaying, [](double t) { return t > 1.9 && t < 2.3; }}};
    const SubjectTrackResult wide = job.run();
    EXPECT_EQ(job.run({}, InstructionSet::baseline), wide);
    EXPECT_EQ(job.run(), wide);
}

} // namespace
} // namespace flowtide
