// The sentences at a job's end.
#include "media/tracking/tracking_messages.h"

#include <fmt/format.h>

namespace flowtide::tracking {

bool isSeedAlone(const SubjectTrackResult& result) {
    return result.samples.size() < 2 && (result.lostSubject || !result.lostFrames.empty());
}

std::string finishedMessage(const SubjectTrackResult& result, std::size_t keyframeCount, std::string_view undoKeys) {
    if (isSeedAlone(result) || (result.lostSubject && keyframeCount == 0))
        return "Tracking stopped — subject lost. Choose a clearer frame and try again.";
    if (result.lostSubject)
        return fmt::format("Tracking stopped — subject lost. Tracked {} keyframes. Review the orange flags.",
                           keyframeCount);
    if (!result.lostFrames.empty())
        return "Tracking finished with gaps. Review the orange flags where the subject was lost.";
    return fmt::format("Tracking complete: {} framing points across the retained clip. {} to undo.", keyframeCount,
                       undoKeys);
}

} // namespace flowtide::tracking
