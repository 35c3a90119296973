// Installs flow marks.
#include "editor/edits/flow_edits.h"

#include <utility>

namespace flowtide {

void FlowEdits::setOpticalFlow(bool enabled, const Uuid& rangeID) {
    const OpticalFlowRange* range = session_.flow.range(rangeID);
    if (!range || session_.flow.isSwitchedOn(*range) == enabled) return;
    FlowMarks marks = session_.flow.marks();
    if (enabled)
        std::erase_if(marks.originalFrameSpans, [&](const SourceRange& span) { return switchesOff(span, *range); });
    else if (marks.originalFrameSpans.size() < mostRanges)
        marks.originalFrameSpans.push_back({range->start, range->end});
    session_.beginCurveEdit();
    session_.flow.setMarks(std::move(marks));
    session_.endCurveEdit();
    session_.refreshPreview();
    session_.scheduleProjectSave();
}

void FlowEdits::selectRange(std::optional<Uuid> id) {
    session_.flow.select(id);
    if (!session_.flow.selectedOpticalFlowRangeID()) session_.timeline.setLoopPreview(false);
    session_.scheduleProjectSave();
}

void FlowEdits::setFrameInterpolation(FrameInterpolation interpolation) {
    if (!session_.clip() || interpolation == session_.flow.frameInterpolation()) return;
    session_.flow.setFrameInterpolation(interpolation);
    session_.refreshPreview();
    session_.scheduleProjectSave();
}

} // namespace flowtide
