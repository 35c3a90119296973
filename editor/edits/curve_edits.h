// Edits of the speed curve.
#pragma once

#include "editor/edit_session.h"

namespace flowtide {

/// Each is one step of history, or part of the open gesture. Without a clip they do nothing.
class CurveEdits {
public:
    explicit CurveEdits(EditSession& session)
        : session_(session) {}

    /// A new list of points, in any order. Points outside the clip or the range of speeds are brought back into it; a
    /// list longer than a project can hold changes nothing.
    void replaceKeyframes(SpeedKeyframes keyframes);
    /// Speed 1 throughout.
    void resetCurve();
    /// 0 (straight lines) to 1 (the full curve).
    void setCurveSmoothing(double smoothing);

private:
    EditSession& session_;
};

} // namespace flowtide
