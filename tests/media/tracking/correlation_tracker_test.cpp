// Our tracker on drawn subjects whose place is known.
#include "core/subject_continuity.h"
#include "media/tracking/correlation_tracker.h"
#include "tests/media/tracking/drawn_subject.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

namespace flowtide::tracking {
namespace {

constexpr double interval = 0.04;

std::vector<SubjectPicture> picturesOf(const test::DrawnSubject& subject, int count) {
    const test::SubjectBackend backend(subject, test::evenTimes(count, interval));
    const ImportedClip clip = test::drawnClip(count * interval, {1, 25});
    const auto reader = backend.openVideo(clip, {}, {0, clip.duration}, {});
    SubjectPictureMaker maker({});
    std::vector<SubjectPicture> pictures;
    while (const auto frame = reader->next())
        pictures.push_back(*maker.make(frame->frame));
    return pictures;
}

TEST(CorrelationTrackerTest, FollowsWhatMovesAndGrows) {
    struct Case {
        const char* what;
        std::function<SubjectBox(double)> box;
    };
    for (const auto& [what, box] : {Case{"still",
                                         [](double) {
                                             return SubjectBox{0.4, 0.4, 0.15, 0.2};
                                         }},
                                    {"across",
                                     [](double t) {
                                         return SubjectBox{0.1 + 0.4 * t, 0.3, 0.12, 0.25};
                                     }},
                                    {"fast, to and fro",
                                     [](double t) {
                                         return SubjectBox{0.4 + 0.2 * std::sin(5 * t), 0.4, 0.2, 0.3};
                                     }},
                                    {"falling",
                                     [](double t) {
                                         return SubjectBox{0.5, 0.1 + 0.4 * t, 0.1, 0.15};
                                     }},
                                    {"coming nearer",
                                     [](double t) {
                                         const double size = 0.1 * std::exp(0.5 * t);
                                         return SubjectBox{0.5 - size / 2, 0.5 - size, size, 2 * size};
                                     }},
                                    {"going away", [](double t) {
                                         const double size = 0.2 * std::exp(-0.4 * t);
                                         return SubjectBox{0.5 - size / 2, 0.5 - size, size, 2 * size};
                                     }}}) {
        constexpr int count = 40;
        const auto pictures = picturesOf({box}, count);
        const auto tracker = makeCorrelationTracker(pictures[0], box(0));
        SubjectBox last = box(0);
        for (int i = 1; i < count; ++i) {
            const TrackedObject object =
                tracker->locate(pictures[static_cast<std::size_t>(i)], last, TrackingLevel::fast);
            const SubjectBox truth = box(i * interval);
            ASSERT_NEAR(object.box.midX(), truth.midX(), 0.12 * truth.width) << what << " " << i;
            ASSERT_NEAR(object.box.midY(), truth.midY(), 0.12 * truth.height) << what << " " << i;
            ASSERT_NEAR(std::log(object.box.width / truth.width), 0, 0.12) << what << " " << i;
            ASSERT_GT(object.confidence, 0.6) << what << " " << i;
            ASSERT_GT(object.memory, 0.6) << what << " " << i;
            tracker->learn(pictures[static_cast<std::size_t>(i)], object);
            last = object.box;
        }
        EXPECT_EQ(tracker->seedBox(), box(0));
    }
}

TEST(CorrelationTrackerTest, IsUnsureWhereTheSubjectIsNot) {
    const auto box = [](double) { return SubjectBox{0.4, 0.4, 0.15, 0.2}; };
    const auto pictures = picturesOf({box, [](double t) { return t > 0.5; }}, 16);
    const auto tracker = makeCorrelationTracker(pictures[0], box(0));
    for (std::size_t i = 1; i < 12; ++i)
        tracker->learn(pictures[i], tracker->locate(pictures[i], box(0), TrackingLevel::fast));
    const TrackedObject seen = tracker->locate(pictures[12], box(0), TrackingLevel::fast);
    const TrackedObject hidden = tracker->locate(pictures[15], box(0), TrackingLevel::fast);
    EXPECT_GT(seen.confidence, 0.8);
    EXPECT_LT(hidden.confidence, SubjectTrackingContinuity::lowestConfidence);
    EXPECT_LT(hidden.memory, 0.6);
    EXPECT_LT(seen.seedDistance, 0.03);
    EXPECT_GT(hidden.seedDistance, 3 * seen.seedDistance);
}

TEST(CorrelationTrackerTest, KnowsFromTheSeedAloneThatAnotherPlaceIsNotTheSubject) {
    const auto box = [](double) { return SubjectBox{0.4, 0.4, 0.15, 0.2}; };
    const auto pictures = picturesOf({box, [](double t) { return t > 0.02; }}, 2);
    const auto tracker = makeCorrelationTracker(pictures[0], box(0));
    const TrackedObject elsewhere = tracker->locate(pictures[1], {0.1, 0.6, 0.15, 0.2}, TrackingLevel::accurate);
    EXPECT_LT(elsewhere.memory, 0.5);
    EXPECT_GT(tracker->locate(pictures[0], box(0), TrackingLevel::fast).memory, 0.9);
}

TEST(CorrelationTrackerTest, LearnsOnlyWhatItIsSureOfAndCopiesLearnApart) {
    const auto box = [](double) { return SubjectBox{0.4, 0.4, 0.15, 0.2}; };
    const auto pictures = picturesOf({box, [](double t) { return t > 0.3; }}, 12);
    const auto tracker = makeCorrelationTracker(pictures[0], box(0));
    TrackedObject object = tracker->locate(pictures[1], box(0), TrackingLevel::fast);
    tracker->learn(pictures[1], object);
    const auto answer = [&](ObjectTracker& of) {
        const TrackedObject found = of.locate(pictures[2], {0.42, 0.38, 0.15, 0.2}, TrackingLevel::fast);
        return std::tuple{found.box, found.confidence, found.peak, found.memoryPeak};
    };
    const auto before = answer(*tracker);
    const auto copy = tracker->copy();
    EXPECT_EQ(answer(*copy), before);
    object.confidence = SubjectTrackingContinuity::lowestConfidence;
    for (std::size_t i = 8; i < 12; ++i)
        tracker->learn(pictures[i], object);
    EXPECT_EQ(answer(*tracker), before) << "what hides it is not learnt";
    object.confidence = 1;
    for (std::size_t i = 8; i < 12; ++i)
        tracker->learn(pictures[i], object);
    EXPECT_NE(answer(*tracker), before);
    EXPECT_GT(SubjectAppearance::distance(tracker->recentColors(), tracker->seedColors()), 0.001);
    EXPECT_EQ(answer(*copy), before);
}

} // namespace
} // namespace flowtide::tracking
