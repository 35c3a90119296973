// Installs curves.
#include "editor/edits/curve_edits.h"

#include "core/clamp.h"

#include <utility>

namespace flowtide {

void CurveEdits::replaceKeyframes(SpeedKeyframes keyframes) {
    if (!session_.clip()) return;
    auto bounded = session_.curve.bounded(std::move(keyframes));
    if (!bounded || *bounded == session_.curve.keyframes()) return;
    session_.recordStep();
    session_.curve.setKeyframes(std::move(*bounded));
    session_.refreshPreview();
    session_.scheduleProjectSave();
}

void CurveEdits::resetCurve() {
    if (!session_.clip()) return;
    session_.preview().pausePlayback();
    session_.recordStep();
    session_.curve.setKeyframes(
        KeyframeRules::curveForSourceRange({}, session_.curve.duration(), session_.curve.trimRange(), realTimeSpeed));
    session_.refreshPreview();
    session_.scheduleProjectSave();
}

void CurveEdits::setCurveSmoothing(double smoothing) {
    const double wanted = clamped(smoothing, 0, 1);
    if (!session_.clip() || wanted == session_.curve.smoothing()) return;
    session_.recordStep();
    session_.curve.setSmoothing(wanted);
    session_.refreshPreview();
    session_.scheduleProjectSave();
}

} // namespace flowtide
