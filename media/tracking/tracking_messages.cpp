// The sentences at a job's end.
#include "media/tracking/tracking_messages.h"

#include <fmt/format.h>

namespace flowtide::tracking {

std::string finishedMessage(const SubjectTrackResult& result, std::size_t keyframeCount) {
    // The seed alone is what the user knew already.
    if (result.lostSubject && (result.samples.size() < 2 || keyframeCount == 0))
        return "Tracking stopped — subject lost. Choose a clearer frame and try again.";
    if (result.lostSubject)
        return fmt::format("Tracking stopped — subject lost. Tracked {} keyframes. Review the orange flags.",
                           keyframeCount);
    if (!result.lostFrames.empty())
        return "Tracking finished with gaps. Review the orange flags where the subject was lost.";
    return fmt::format("Tracking complete: {} framing points across the retained clip. ⌘Z to undo.", keyframeCount);
}

} // namespace flowtide::tracking
