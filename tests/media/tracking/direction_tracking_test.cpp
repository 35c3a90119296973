// Keeping, losing, picking up again and giving up, with a tracker that sees what the test says.
#include "media/tracking/direction_tracking.h"
#include "tests/support/clip_maker.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>

namespace flowtide::tracking {
namespace {

constexpr double interval = 0.04;
constexpr SubjectBox seed{0.4, 0.4, 0.1, 0.1};

/// What all copies of a scripted tracker share.
struct Script {
    std::function<TrackedObject(const SubjectBox& near, TrackingLevel level)> sees;
    int lessons = 0; ///< of the tracker that was asked last
};

class ScriptedTracker : public ObjectTracker {
public:
    explicit ScriptedTracker(Script& script)
        : script_(script)
        , colors_{std::vector<double>(SubjectAppearance::binCount, 1.0 / SubjectAppearance::binCount)} {}

    TrackedObject locate(const SubjectPicture&, const SubjectBox& near, TrackingLevel level) override {
        script_.lessons = lessons_;
        return script_.sees(near, level);
    }
    void learn(const SubjectPicture&, const TrackedObject&) override { ++lessons_; }
    std::unique_ptr<ObjectTracker> copy() const override { return std::make_unique<ScriptedTracker>(*this); }
    const SubjectAppearance& seedColors() const override { return colors_; }
    const SubjectAppearance& recentColors() const override { return colors_; }
    const SubjectBox& seedBox() const override { return seed; }

private:
    Script& script_;
    SubjectAppearance colors_;
    int lessons_ = 0;
};

class DirectionTrackingTest : public testing::Test {
protected:
    /// Shows the next frame, in which the tracker sees this. False when the direction gives up.
    bool show(const TrackedObject& object) {
        script.sees = [&](const SubjectBox&, TrackingLevel) { return object; };
        time += interval;
        return direction.follow(picture, time);
    }
    static TrackedObject sure(const SubjectBox& box = seed) {
        TrackedObject object;
        object.box = box;
        object.confidence = 0.9;
        object.recentDistance = object.seedDistance = 0.01;
        object.memory = 1;
        return object;
    }
    static TrackedObject unsure() {
        TrackedObject object = sure();
        object.confidence = 0.1;
        return object;
    }

    SubjectPicture picture = *SubjectPictureMaker({}).make(test::numberedFrame({}, 64, 64, 0));
    Script script;
    double time = 1;
    DirectionTracking direction{std::make_unique<ScriptedTracker>(script), seed, time};
};

TEST_F(DirectionTrackingTest, KeepsPlausibleStepsAndReportsWhatIsInsideTheFrame) {
    script.sees = [](const SubjectBox& near, TrackingLevel level) {
        EXPECT_EQ(level, TrackingLevel::fast);
        TrackedObject object = sure(near);
        object.box.x += 0.02;
        return object;
    };
    for (int i = 0; i < 27; ++i) {
        time += interval;
        ASSERT_TRUE(direction.follow(picture, time));
    }
    ASSERT_EQ(direction.sightings().size(), 27u);
    EXPECT_EQ(direction.sightings().front().time, 1 + interval);
    EXPECT_NEAR(direction.sightings()[9].box.x, 0.6, 1e-9);
    const SubjectBox last = direction.sightings().back().box;
    EXPECT_NEAR(last.x, 0.94, 1e-9) << "the tracker goes on from the whole box";
    EXPECT_NEAR(last.maxX(), 1, 1e-9);
    EXPECT_EQ(last.y, 0.4);
    EXPECT_TRUE(direction.lostFrames().empty());
}

TEST_F(DirectionTrackingTest, ALossGoesBackToTheOldestOfThreeSnapshots) {
    for (int i = 0; i < 23; ++i)
        show(sure());
    EXPECT_EQ(script.lessons, 22);
    // Snapshots were taken after 10, 15 and 20 frames.
    EXPECT_TRUE(show(unsure()));
    EXPECT_EQ(script.lessons, 10);
    EXPECT_TRUE(direction.isLooking());
    EXPECT_EQ(direction.lostFrames().size(), 1u);
}

TEST_F(DirectionTrackingTest, ThreeAgreeingFramesPickItUpAgain) {
    show(sure());
    const double lost = time + interval;
    for (int i = 0; i < 5; ++i)
        show(unsure());
    show(sure());
    show(sure());
    show(unsure());
    EXPECT_EQ(direction.sightings().size(), 1u) << "two agreed";
    EXPECT_TRUE(direction.isLooking());
    show(sure());
    show(sure({0.1, 0.4, 0.1, 0.1}));
    show(sure());
    EXPECT_TRUE(direction.isLooking()) << "they don't agree with each other";
    show(sure());
    show(sure());
    EXPECT_FALSE(direction.isLooking());
    ASSERT_EQ(direction.sightings().size(), 4u) << "the agreeing frames showed it";
    EXPECT_NEAR(direction.sightings()[1].time, time - 2 * interval, 1e-9);
    EXPECT_NEAR(direction.sightings()[3].time, time, 1e-9);
    EXPECT_EQ(direction.lostFrames().size(), 10u);
    EXPECT_NEAR(direction.lostFrames().front(), lost, 1e-9);
    // It may be far from where it was lost: the steps are counted anew.
    show(sure());
    EXPECT_EQ(direction.sightings().size(), 5u);
}

TEST_F(DirectionTrackingTest, WhatOnlyResemblesTheSubjectIsNotTaken) {
    struct Case {
        const char* what;
        std::function<void(TrackedObject&)> change;
        bool taken;
    };
    const auto sized = [](double factor) {
        return [factor](TrackedObject& object) {
            object.box.width *= factor;
            object.box.height *= factor;
        };
    };
    for (const auto& [what, change, taken] :
         {Case{"the same", [](TrackedObject&) {}, true},
          {"seed's colours at the limit", [](TrackedObject& o) { o.seedDistance = 0.2199; }, true},
          {"seed's colours beyond", [](TrackedObject& o) { o.seedDistance = 0.22; }, false},
          {"recent colours at the limit", [](TrackedObject& o) { o.recentDistance = 0.1799; }, true},
          {"recent colours beyond", [](TrackedObject& o) { o.recentDistance = 0.18; }, false},
          {"larger", sized(std::exp(0.94)), true},
          {"too large", sized(std::exp(0.96)), false},
          {"smaller", sized(std::exp(-0.94)), true},
          {"too small", sized(std::exp(-0.96)), false},
          {"near, hardly sure", [](TrackedObject& o) { o.confidence = 0.4; }, true},
          {"far off, sure", [](TrackedObject& o) { o.box.x -= 0.3; }, true},
          {"far off, hardly sure", [](TrackedObject& o) { o.box.x -= 0.3, o.confidence = 0.74; }, false},
          {"an eighth off", [](TrackedObject& o) { o.box.x -= 0.125, o.confidence = 0.56; }, true},
          {"an eighth off, less sure", [](TrackedObject& o) { o.box.x -= 0.125, o.confidence = 0.54; }, false},
          {"unlike what was learnt slowly", [](TrackedObject& o) { o.memory = 0.1; }, false}}) {
        DirectionTracking tracking{std::make_unique<ScriptedTracker>(script), seed, 0};
        TrackedObject candidate = sure();
        change(candidate);
        script.sees = [](const SubjectBox&, TrackingLevel) { return unsure(); };
        tracking.follow(picture, interval);
        script.sees = [&](const SubjectBox&, TrackingLevel) { return candidate; };
        for (int i = 2; i < 5; ++i)
            tracking.follow(picture, i * interval);
        EXPECT_EQ(!tracking.isLooking(), taken) << what;
    }
}

TEST_F(DirectionTrackingTest, ALookGoesWhereTheSubjectMayHaveGone) {
    std::vector<SubjectBox> places;
    for (int i = 1; i <= 5; ++i)
        show(sure({0.4 + 0.02 * i, 0.4, 0.1, 0.1}));
    const auto look = [&] {
        places.clear();
        script.sees = [&](const SubjectBox& near, TrackingLevel level) {
            if (direction.isLooking() && level == TrackingLevel::fast) places.push_back(near);
            return unsure();
        };
        time += interval;
        direction.follow(picture, time);
    };
    look();
    const auto isTried = [&](double midX, double tolerance) {
        return std::any_of(places.begin(), places.end(),
                           [&](const SubjectBox& box) { return std::abs(box.midX() - midX) < tolerance; });
    };
    EXPECT_TRUE(isTried(0.55, 1e-9)) << "where it was seen last";
    EXPECT_TRUE(isTried(0.56, 0.01)) << "and where it was heading";
    const auto farthest = [&] {
        double most = 0;
        for (const SubjectBox& box : places)
            most = std::max(most, std::hypot(box.midX() - 0.55, box.midY() - 0.45));
        return most;
    };
    EXPECT_LT(farthest(), 0.25);
    EXPECT_LE(places.size(), 9u);
    // Another subject's places, once the first look has found some.
    for (int i = 0; i < 50; ++i)
        look();
    for (const SubjectBox& box : places) {
        EXPECT_GE(box.midX(), -1e-9);
        EXPECT_LE(box.midX(), 1 + 1e-9);
    }
}

TEST_F(DirectionTrackingTest, GivesUpAfterFourSeconds) {
    show(sure());
    const double last = time;
    while (show(unsure()))
        ASSERT_LT(time, 10);
    EXPECT_NEAR(time - last, 4 + interval, interval);
    EXPECT_GT(time - last, 4);
    EXPECT_TRUE(direction.isLooking());
    EXPECT_EQ(direction.sightings().size(), 1u);
}

} // namespace
} // namespace flowtide::tracking
