// Edits of the vertical crop: the framing curve, the drag of the crop frame, and the crop's settings.
#pragma once

#include "core/subject_track.h"
#include "editor/edit_session.h"

namespace flowtide {

/// Edits of the curve are steps of history, or part of the open gesture; settings are changed without history. Without
/// a clip they do nothing. Rendered previews stay valid: framing is applied as a preview is shown.
class FramingEdits {
public:
    static constexpr double dragMatchTolerance = 0.01; ///< source seconds; a nearer keyframe takes the drag's position

    explicit FramingEdits(EditSession& session)
        : session_(session) {}

    void replaceCenterKeyframes(SpeedKeyframes keyframes);
    /// Centred throughout.
    void resetCenterCurve();

    /// A drag of the crop frame, or of the picture behind it: a gesture. Nothing while the centre is locked.
    void beginCropDrag();
    /// Keys the crop's position (fraction of its travel) at the playhead.
    void updateCropDrag(double travel);
    void endCropDrag();
    void cancelCropDrag();

    /// Puts a finished track's keyframes, for the crop as it is chosen, in place of those in the tracked span. One step
    /// of history. Returns how many they are; nothing, and changes nothing, when a project cannot hold them.
    std::optional<std::size_t> applySubjectTrackingResult(const SubjectTrackResult& result);

    void setCenterSmoothing(double glide);
    void setVerticalCropEnabled(bool enabled);
    void setCropAspectRatio(CropAspectRatio ratio);
    void setLockCropCenter(bool locked);

private:
    void install(SpeedKeyframes keyframes);

    EditSession& session_;
};

} // namespace flowtide
