// The open clip's edits as one whole: its parts, its history, and what every edit owes to the rest of the session.
#pragma once

#include "editor/curve_snapshot.h"
#include "editor/flow_scope.h"
#include "editor/framing.h"
#include "editor/history.h"
#include "editor/preview_control.h"
#include "editor/speed_curve.h"
#include "editor/timeline_view.h"
#include "editor/zoom_lane.h"
#include "media/export/export_request.h"
#include "media/imported_clip.h"
#include "project/flowtide_project.h"

#include <functional>
#include <memory>
#include <vector>

namespace flowtide {

/// What edits need from outside.
struct EditHost {
    std::function<PreviewControl&()> preview; ///< which itself needs the session
    std::function<void()> scheduleProjectSave;
    std::function<double()> smoothMotionFrameRate; ///< the user's setting for all projects, frames per second
};

using OpenClip = std::shared_ptr<const ImportedClip>;

/// Main thread only.
class EditSession {
public:
    EditSession(ChangeNotifier& notifier, EditHost host);

    // Each part owns its fields and their rules.
    SpeedCurve curve;
    Framing framing;
    ZoomLane zoom;
    FlowScope flow;
    TimelineView timeline;
    History history;

    /// Null on the start screen.
    const OpenClip& clip() const { return clip_.get(); }
    const std::vector<SubjectTrackingRange>& trackedRanges() const { return trackedRanges_.get(); }
    void setTrackedRanges(std::vector<SubjectTrackingRange> ranges) { trackedRanges_.set(std::move(ranges)); }
    /// The playhead in source seconds.
    double playheadSeconds() const { return curve.duration() * timeline.scrubPosition(); }
    PreviewControl& preview() const { return host_.preview(); }
    /// True while a project's edits are being installed: nothing is invalidated and nothing saved.
    bool isRestoringProject() const { return isRestoringProject_; }

    /// Opens a clip (or none) with the edits of a new project and an empty history.
    void open(OpenClip clip);

    CurveSnapshot currentSnapshot() const;
    /// Opens a gesture: everything until its end is one step of history. Joins one that is open.
    void beginCurveEdit();
    void endCurveEdit();
    /// Ends the gesture as if it had never begun.
    void cancelCurveEdit();
    /// For edits that are a step by themselves: remembers the state before it, unless a gesture is open.
    void recordStep();
    /// Nothing while a gesture is open.
    void undo();
    void redo();
    /// For what happens by itself, to be no part of a gesture: runs now, or once the open one has ended either way. Not
    /// at all when another clip is opened first.
    void afterGesture(std::function<void()> task);

    /// After every change of speed, smoothing or trim: the automatic ranges follow, previews that no longer fit go.
    void invalidateEditedPreviews();
    /// The same, and the preview is to show the curve once the user rests.
    void refreshPreview();
    /// Every operation ends with it.
    void scheduleProjectSave() const;

    /// What an export of the open clip as it is now asks for, but for its destination.
    ExportRequest exportRequest() const;

    ProjectEdits projectEdits() const;
    /// Installs a project's edits, validated for this clip.
    void applyProjectEdits(const ProjectEdits& edits);

private:
    void applySnapshot(const CurveSnapshot& snapshot);
    void installProjectEdits(const ProjectEdits& edits);
    void followCurve();
    void runWaiting();

    EditHost host_;
    Observed<OpenClip> clip_;
    Observed<std::vector<SubjectTrackingRange>> trackedRanges_;
    std::vector<std::function<void()>> waiting_; ///< for the end of the gesture
    bool isRestoringProject_ = false;
};

} // namespace flowtide
