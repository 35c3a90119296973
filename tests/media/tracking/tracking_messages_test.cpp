// How a tracking job says that it has ended.
#include "media/tracking/tracking_messages.h"

#include <gtest/gtest.h>

namespace flowtide::tracking {
namespace {

TEST(TrackingMessagesTest, TheSentenceTellsHowItEnded) {
    SubjectTrackResult result;
    result.samples = {{0, 0.5}, {1, 0.5}};
    EXPECT_EQ(finishedMessage(result, 7, "⌘Z"),
              "Tracking complete: 7 framing points across the retained clip. ⌘Z to undo.");
    result.lostFrames = {0.5};
    EXPECT_EQ(finishedMessage(result, 7, "⌘Z"),
              "Tracking finished with gaps. Review the orange flags where the subject was lost.");
    result.lostSubject = true;
    EXPECT_EQ(finishedMessage(result, 7, "⌘Z"),
              "Tracking stopped — subject lost. Tracked 7 keyframes. Review the orange flags.");
    const char* nothing = "Tracking stopped — subject lost. Choose a clearer frame and try again.";
    EXPECT_EQ(finishedMessage(result, 0, "⌘Z"), nothing);
    result.samples.pop_back();
    EXPECT_EQ(finishedMessage(result, 1, "⌘Z"), nothing) << "the seed alone";
}

} // namespace
} // namespace flowtide::tracking
