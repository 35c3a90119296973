// Installs views.
#include "editor/edits/view_edits.h"

#include <algorithm>

namespace flowtide {

namespace {
/// Source seconds: a keyframe this near to the playhead is where it stands.
constexpr double hereTolerance = 1e-6;
} // namespace

void ViewEdits::scrubTo(double time) const {
    if (session_.clip()) session_.preview().scrub(time / session_.curve.duration());
}

const SpeedKeyframes& ViewEdits::activeCurve() const {
    return session_.timeline.editorMode() == CurveEditorMode::speed ? session_.curve.keyframes()
                                                                    : session_.framing.centerKeyframes();
}

void ViewEdits::jumpToPreviousKeyframe() {
    double target = session_.curve.trimRange().lower;
    for (const SpeedKeyframe& keyframe : activeCurve())
        if (keyframe.time < session_.playheadSeconds() - hereTolerance) target = std::max(target, keyframe.time);
    scrubTo(target);
}

void ViewEdits::jumpToNextKeyframe() {
    double target = session_.curve.trimRange().upper;
    for (const SpeedKeyframe& keyframe : activeCurve())
        if (keyframe.time > session_.playheadSeconds() + hereTolerance) target = std::min(target, keyframe.time);
    scrubTo(target);
}

void ViewEdits::setTimelineZoom(double zoom) {
    saveIf(session_.timeline.setTimelineZoom(zoom));
}
void ViewEdits::setTimelineCenter(double center) {
    saveIf(session_.timeline.setTimelineCenter(center));
}
void ViewEdits::setLoopPreview(bool loops) {
    saveIf(session_.timeline.setLoopPreview(loops && session_.flow.selectedOpticalFlowRangeID()));
}
void ViewEdits::setPreviewResolution(PreviewResolution resolution) {
    saveIf(session_.timeline.setPreviewResolution(resolution));
}
void ViewEdits::setSmartPreviewEnabled(bool enabled) {
    const bool isChange = session_.timeline.setSmartPreviewEnabled(enabled);
    if (isChange) session_.preview().scheduleSmartPreview();
    saveIf(isChange);
}

void ViewEdits::saveIf(bool isChange) const {
    if (isChange) session_.scheduleProjectSave();
}

} // namespace flowtide
