// The editor session of a window: everything that views show, and every operation that they call.
#pragma once

#include "editor/change_notifier.h"
#include "editor/edit_session.h"
#include "editor/edits/curve_edits.h"
#include "editor/edits/flow_edits.h"
#include "editor/edits/framing_edits.h"
#include "editor/edits/trim_edits.h"
#include "editor/edits/view_edits.h"
#include "editor/edits/zoom_edits.h"
#include "editor/error_alert.h"
#include "editor/jobs/export_job.h"
#include "editor/jobs/proxy_job.h"
#include "editor/jobs/session_jobs.h"
#include "editor/jobs/tracking_job.h"
#include "editor/preview/preview_session.h"
#include "editor/project/clip_import.h"
#include "editor/project/project_binding.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace flowtide {

/// What a session is made of from outside.
struct SessionEnvironment {
    Scheduler& scheduler;  ///< outlives the session and its jobs
    SessionPlayer& player; ///< outlives the session
    std::shared_ptr<SessionMedia> media;
    std::shared_ptr<ProjectStore> store;
    std::function<double()> smoothMotionFrameRate; ///< SlowMotionGuide::motionFrameRateFloor of the user's setting
    std::string undoKeys = "Ctrl+Z";               ///< what sentences call the keys for undo
    LogSink log = {};                              ///< takes what playback has to say; may be empty
};

/// A thin façade: state and rules live in the parts. Main thread only. Destroying it cancels its jobs; a project that
/// is not saved yet is handed to the queue of projects, which the owner lets run dry before the process ends.
class FlowtideViewModel {
public:
    explicit FlowtideViewModel(SessionEnvironment environment);
    ~FlowtideViewModel();
    FlowtideViewModel(const FlowtideViewModel&) = delete;
    FlowtideViewModel& operator=(const FlowtideViewModel&) = delete;

    [[nodiscard]] Subscription subscribe(PropertySet wanted, ChangeHandler handler) {
        return notifier_.subscribe(wanted, std::move(handler));
    }

    // What views read, part by part.
    const OpenClip& clip() const { return session_.clip(); } ///< null on the start screen
    const SpeedCurve& curve() const { return session_.curve; }
    const Framing& framing() const { return session_.framing; }
    const ZoomLane& zoom() const { return session_.zoom; }
    const FlowScope& flow() const { return session_.flow; }
    const TimelineView& timeline() const { return session_.timeline; }
    const History& history() const { return session_.history; }
    const ErrorAlert& alert() const { return alert_; }
    const ProjectBinding& binding() const { return binding_; }
    const ClipImport& clips() const { return import_; }
    const ExportJob& exporting() const { return export_; }
    const ProxyJob& proxies() const { return proxy_; }
    const TrackingJob& tracking() const { return tracking_; }
    const Transport& transport() const { return preview_.transport(); }
    const Comparison& comparison() const { return preview_.comparison(); }
    const RenderAhead& renders() const { return preview_.renders(); }
    const RestFrame& restFrame() const { return preview_.restFrame(); }
    /// Null until it is decoded, and for a clip without sound.
    const std::shared_ptr<const AudioData>& clipSound() const { return preview_.clipSound(); }
    const std::vector<SubjectTrackingRange>& trackedRanges() const { return session_.trackedRanges(); }
    double playheadSeconds() const { return session_.playheadSeconds(); }
    SourceRanges effectiveOpticalFlowRanges() const {
        return session_.flow.effectiveRanges(session_.curve.trimRange());
    }

    // Projects and clips.
    void importClip(const std::filesystem::path& clip) { import_.importClip(clip); }
    void openProject(const std::filesystem::path& file) { import_.openProject(file); }
    void restoreLastProject() { import_.restoreLastProject(); }
    void relinkProject(const std::filesystem::path& clip) { import_.relinkProject(clip); }
    void forgetPendingRelink() { import_.forgetPendingRelink(); }
    void reset();
    void loadRecentProjects() { binding_.loadRecentProjects(); }
    void removeFromRecent(const Uuid& id) { binding_.removeFromRecent(id); }
    FlowtideProject projectSnapshot() const { return binding_.projectSnapshot(); }
    void applyProjectEdits(const ProjectEdits& edits) { session_.applyProjectEdits(edits); }
    void saveProjectNow() { binding_.saveProjectNow(); }
    void saveProjectCopy(const std::filesystem::path& file) { binding_.saveProjectCopy(file); }
    void dismissError() { alert_.dismiss(); }

    // History.
    CurveSnapshot currentSnapshot() const { return session_.currentSnapshot(); }
    void beginCurveEdit() { session_.beginCurveEdit(); }
    void endCurveEdit() { session_.endCurveEdit(); }
    void cancelCurveEdit() { session_.cancelCurveEdit(); }
    void undo() { session_.undo(); }
    void redo() { session_.redo(); }

    // Speed and trim.
    void replaceKeyframes(SpeedKeyframes keyframes) { curveEdits_.replaceKeyframes(std::move(keyframes)); }
    void resetCurve() { curveEdits_.resetCurve(); }
    void setCurveSmoothing(double smoothing) { curveEdits_.setCurveSmoothing(smoothing); }
    void applyTrimRange(double start, double end) { trimEdits_.applyTrimRange(start, end); }
    void dragTrim(const TrimState& before, double start, double end) { trimEdits_.dragTrim(before, start, end); }
    void resetTrimRange() { trimEdits_.resetTrimRange(); }
    TrimState trimState() const { return trimEdits_.state(); }
    void restoreTrim(const TrimState& before) { trimEdits_.restore(before); }

    // Framing.
    void replaceCenterKeyframes(SpeedKeyframes keyframes) {
        framingEdits_.replaceCenterKeyframes(std::move(keyframes));
    }
    void resetCenterCurve() { framingEdits_.resetCenterCurve(); }
    void beginCropDrag() { framingEdits_.beginCropDrag(); }
    void updateCropDrag(double travel) { framingEdits_.updateCropDrag(travel); }
    void endCropDrag() { framingEdits_.endCropDrag(); }
    void cancelCropDrag() { framingEdits_.cancelCropDrag(); }
    void setCenterSmoothing(double glide) { framingEdits_.setCenterSmoothing(glide); }
    void setVerticalCropEnabled(bool enabled) { framingEdits_.setVerticalCropEnabled(enabled); }
    void setCropAspectRatio(CropAspectRatio ratio) { framingEdits_.setCropAspectRatio(ratio); }
    void setLockCropCenter(bool locked) { framingEdits_.setLockCropCenter(locked); }
    void applySubjectTrackingResult(const SubjectTrackResult& result) {
        framingEdits_.applySubjectTrackingResult(result);
    }

    // Zoom.
    void addZoomBlock(SourceRange range) { zoomEdits_.addZoomBlock(range); }
    void addOrSelectZoomBlock() { zoomEdits_.addOrSelectZoomBlock(); }
    bool canAddOrSelectZoomBlock() const { return zoomEdits_.canAddOrSelectZoomBlock(); }
    void selectZoomBlock(std::optional<Uuid> id) { zoomEdits_.selectZoomBlock(id); }
    void moveZoomBlock(const Uuid& id, double start) { zoomEdits_.moveZoomBlock(id, start); }
    void updateZoomBlock(const ZoomBlock& block) { zoomEdits_.updateZoomBlock(block); }
    void removeZoomBlock(const Uuid& id) { zoomEdits_.removeZoomBlock(id); }
    void updateZoomFocal(const Uuid& blockID, double x, double y, bool addKeyframe) {
        zoomEdits_.updateZoomFocal(blockID, x, y, addKeyframe);
    }
    void removeFocalKeyframes(const Uuid& blockID) { zoomEdits_.removeFocalKeyframes(blockID); }

    // In-between frames. Ignored while exporting.
    void setOpticalFlow(bool enabled, const Uuid& rangeID) {
        if (!export_.isExporting()) flowEdits_.setOpticalFlow(enabled, rangeID);
    }
    void selectOpticalFlowRange(std::optional<Uuid> id) { flowEdits_.selectRange(id); }
    void setFrameInterpolation(FrameInterpolation interpolation) { flowEdits_.setFrameInterpolation(interpolation); }
    /// The user's setting of smooth motion has changed.
    void smoothMotionFrameRateChanged() {
        notifier_.changed(Property::smoothMotionFrameRate);
        if (!clip()) return;
        session_.refreshPreview();
        session_.scheduleProjectSave(); // of the ranges, which follow
    }

    // Playback.
    void togglePlayback() { preview_.transport().togglePlayback(); }
    void startPlayback(float rate) { preview_.transport().startPlayback(rate); }
    void pausePlayback() { preview_.transport().pausePlayback(); }
    void shuttleForward() { preview_.transport().shuttleForward(); }
    void shuttleBackward() { preview_.transport().shuttleBackward(); }
    void setMuted(bool muted) { preview_.transport().setMuted(muted); }
    void nudgePlayhead(int frames) { preview_.transport().nudgePlayhead(frames); }
    void scrub(double position, bool preservePlayback = false) {
        preview_.transport().scrub(position, preservePlayback);
    }
    /// A range of source seconds, or else the selected one.
    void renderSelectedPreview(std::optional<SourceRange> range = {}) {
        preview_.renders().renderSelectedPreview(false, range);
    }
    void renderAllRanges() { preview_.renders().renderAllRanges(); }
    void stopRenderingAll() { preview_.renders().stopRenderingAll(); }
    void cancelPreviewRender() { preview_.renders().cancelPreviewRender(); }
    void clearPreviewCache() { preview_.renders().clearPreviewCache(); }
    void setRestPictureSize(OutputSize size) { preview_.restFrame().setRestPictureSize(size); }
    void setComparisonEnabled(bool enabled) { preview_.comparison().setComparisonEnabled(enabled); }
    void setComparisonSize(OutputSize size) { preview_.comparison().setComparisonSize(size); }

    // The view.
    void jumpToPreviousKeyframe() { viewEdits_.jumpToPreviousKeyframe(); }
    void jumpToNextKeyframe() { viewEdits_.jumpToNextKeyframe(); }
    void setEditorMode(CurveEditorMode mode) { viewEdits_.setEditorMode(mode); }
    void setTimelineZoom(double zoom) { viewEdits_.setTimelineZoom(zoom); }
    void setTimelineCenter(double center) { viewEdits_.setTimelineCenter(center); }
    void setInspection(double scale, PicturePoint center) { session_.timeline.setInspection(scale, center); }
    void setLoopPreview(bool loops) { viewEdits_.setLoopPreview(loops); }
    void setPreviewResolution(PreviewResolution resolution) { viewEdits_.setPreviewResolution(resolution); }
    void setSmartPreviewEnabled(bool enabled) { viewEdits_.setSmartPreviewEnabled(enabled); }

    // Jobs.
    void beginSubjectSelection() { tracking_.beginSubjectSelection(); }
    void startTracking(const SubjectBox& box) { tracking_.startTracking(box); }
    void cancelTracking() { tracking_.cancelTracking(); }
    void dismissTrackingMessage() { tracking_.dismissMessage(); }
    void exportClip(const std::filesystem::path& destination) { export_.start(destination); }
    void cancelExport() { export_.cancel(); }
    void dismissExportEnd() { export_.dismissEnd(); }
    void makeProxy() { proxy_.start(); }
    void cancelProxy() { proxy_.cancel(); }

private:
    void clipChanged();

    ChangeNotifier notifier_;
    SessionJobs jobs_;
    ErrorAlert alert_;
    EditSession session_;
    ProjectBinding binding_;
    CurveEdits curveEdits_{session_};
    TrimEdits trimEdits_{session_};
    FramingEdits framingEdits_{session_};
    ZoomEdits zoomEdits_{session_};
    FlowEdits flowEdits_{session_};
    ViewEdits viewEdits_{session_};
    ExportJob export_;
    ProxyJob proxy_;
    TrackingJob tracking_;
    ClipImport import_;
    PreviewSession preview_;
};

} // namespace flowtide
