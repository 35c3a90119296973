// Moves of the playhead and of the view, and the preview's settings.
#pragma once

#include "editor/edit_session.h"

namespace flowtide {

/// Changed without history, kept in the project.
class ViewEdits {
public:
    explicit ViewEdits(EditSession& session)
        : session_(session) {}

    /// To the nearest keyframe of the active curve before the playhead, within the trim; else to the trim's start.
    void jumpToPreviousKeyframe();
    /// To the nearest one after it; else to the trim's end.
    void jumpToNextKeyframe();

    void setEditorMode(CurveEditorMode mode) { session_.timeline.setEditorMode(mode); }
    void setTimelineZoom(double zoom);
    void setTimelineCenter(double center);
    void setLoopPreview(bool loops); ///< only while a range is selected
    void setPreviewResolution(PreviewResolution resolution);
    void setSmartPreviewEnabled(bool enabled);

private:
    const SpeedKeyframes& activeCurve() const;
    void scrubTo(double time) const;
    void saveIf(bool isChange) const;

    EditSession& session_;
};

} // namespace flowtide
