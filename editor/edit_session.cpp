// Gestures, history, and the exchange with project documents.
#include "editor/edit_session.h"

#include "core/slow_motion_guide.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace flowtide {

namespace {

/// An identifier made of the two ends, so that a span which nobody changed is stored the same each time.
OpticalFlowRange stored(const SourceRange& span) {
    OpticalFlowRange range{{}, span.lower, span.upper};
    static_assert(sizeof range.id.bytes == 2 * sizeof(double));
    std::memcpy(range.id.bytes.data(), &span.lower, sizeof(double));
    std::memcpy(range.id.bytes.data() + sizeof(double), &span.upper, sizeof(double));
    return range;
}

/// Sets a flag for as long as it lives.
class FlagScope {
public:
    explicit FlagScope(bool& flag)
        : flag_(flag) {
        flag_ = true;
    }
    ~FlagScope() { flag_ = false; }
    FlagScope(const FlagScope&) = delete;
    FlagScope& operator=(const FlagScope&) = delete;

private:
    bool& flag_;
};

} // namespace

EditSession::EditSession(ChangeNotifier& notifier, EditHost host)
    : curve(notifier)
    , framing(notifier, curve)
    , zoom(notifier)
    , flow(notifier)
    , timeline(notifier)
    , history(notifier)
    , host_(std::move(host))
    , clip_(notifier, Property::clip)
    , trackedRanges_(notifier, Property::trackedRanges) {}

void EditSession::open(OpenClip clip) {
    history.clear();
    waiting_.clear();
    curve.reset(clip ? clip->duration : 0);
    framing.reset(clip ? clip->frameDuration.seconds() : 0);
    zoom.setZoomBlocks({});
    flow.reset();
    timeline.reset();
    setTrackedRanges({});
    clip_.set(std::move(clip));
}

CurveSnapshot EditSession::currentSnapshot() const {
    return {curve.keyframes(),        framing.centerKeyframes(),         zoom.zoomBlocks(), curve.smoothing(),
            flow.opticalFlowRanges(), flow.selectedOpticalFlowRangeID(), trackedRanges(),   flow.originalFrameSpans()};
}

void EditSession::beginCurveEdit() {
    if (!clip() || history.pendingUndoSnapshot()) return;
    preview().cancelAutomaticRender();
    preview().beginPreviewOperation();
    preview().pausePlayback();
    history.setPendingUndoSnapshot(currentSnapshot());
}

void EditSession::endCurveEdit() {
    if (!history.pendingUndoSnapshot()) {
        preview().scheduleSmartPreview();
        return;
    }
    CurveSnapshot before = *history.pendingUndoSnapshot();
    history.setPendingUndoSnapshot({});
    const CurveSnapshot after = currentSnapshot();
    const bool playsTheSame = hasSameSpeed(before, after);
    if (before != after) history.pushUndoSnapshot(std::move(before));
    if (playsTheSame)
        preview().scheduleSmartPreview();
    else if (!isRestoringProject_)
        refreshPreview();
    runWaiting();
}

void EditSession::cancelCurveEdit() {
    if (!history.pendingUndoSnapshot()) return;
    const CurveSnapshot before = *history.pendingUndoSnapshot();
    history.setPendingUndoSnapshot({});
    if (before == currentSnapshot())
        preview().scheduleSmartPreview();
    else
        applySnapshot(before);
    runWaiting();
}

void EditSession::afterGesture(std::function<void()> task) {
    if (history.pendingUndoSnapshot())
        waiting_.push_back(std::move(task));
    else
        task();
}

void EditSession::runWaiting() {
    for (const auto& task : std::exchange(waiting_, {}))
        task();
}

void EditSession::recordStep() {
    if (!history.pendingUndoSnapshot()) history.pushUndoSnapshot(currentSnapshot());
}

void EditSession::undo() {
    if (history.pendingUndoSnapshot()) return;
    if (const auto wanted = history.undo(currentSnapshot())) applySnapshot(*wanted);
}

void EditSession::redo() {
    if (history.pendingUndoSnapshot()) return;
    if (const auto wanted = history.redo(currentSnapshot())) applySnapshot(*wanted);
}

void EditSession::applySnapshot(const CurveSnapshot& snapshot) {
    preview().pausePlayback();
    preview().beginPreviewOperation();
    curve.setSmoothing(snapshot.smoothing); // what boundary points are evaluated with
    curve.setKeyframes(curve.bounded(snapshot.speed).value_or(snapshot.speed));
    framing.setCenterKeyframes(framing.bounded(snapshot.center).value_or(snapshot.center));
    zoom.setZoomBlocks(snapshot.zooms);
    flow.setMarks({snapshot.flowRanges, snapshot.originalFrames});
    flow.select(snapshot.selectedFlowID);
    setTrackedRanges(snapshot.trackedRanges);
    refreshPreview();
    scheduleProjectSave();
}

void EditSession::followCurve() {
    if (!clip()) return;
    // Within a gesture always from the marks at its start, so that ranges which meet on the way do not become one.
    const auto& pending = history.pendingUndoSnapshot();
    const FlowMarks before = pending ? FlowMarks{pending->flowRanges, pending->originalFrames} : flow.marks();
    flow.setMarks(
        carriedOver(before, FlowScope::automaticRanges(curve, clip()->frameRate, host_.smoothMotionFrameRate())));
    if (flow.selectedOpticalFlowRangeID()) return;
    if (pending) // a range that went on the way may be back, and the loop goes with it at the end
        flow.select(pending->selectedFlowID);
    else
        timeline.setLoopPreview(false);
}

void EditSession::invalidateEditedPreviews() {
    followCurve();
    preview().invalidateEditedPreviews();
}

void EditSession::refreshPreview() {
    invalidateEditedPreviews();
    preview().scheduleSmartPreview();
    preview().beginPreviewOperation();
    preview().schedulePreviewRefreshAfterEdit();
}

void EditSession::scheduleProjectSave() const {
    if (!isRestoringProject_ && clip()) host_.scheduleProjectSave();
}

ExportRequest EditSession::exportRequest() const {
    ExportRequest request;
    request.clip = *clip();
    request.keyframes = curve.keyframes();
    request.sourceRange = curve.trimRange();
    request.smoothing = curve.smoothing();
    request.interpolation = flow.frameInterpolation();
    request.opticalFlowRanges = flow.effectiveRanges(curve.trimRange());
    request.verticalCrop = framing.exportSettings();
    if (!zoom.zoomBlocks().empty()) request.zoom = ZoomSettings{zoom.zoomBlocks()};
    return request;
}

ProjectEdits EditSession::projectEdits() const {
    ProjectEdits edits;
    edits.keyframes = curve.keyframes();
    edits.smoothing = curve.smoothing();
    edits.trimStart = curve.trimRange().lower;
    edits.trimEnd = curve.trimRange().upper;
    edits.centerKeyframes = framing.centerKeyframes();
    edits.centerSmoothing = framing.centerSmoothing();
    edits.cropEnabled = framing.isVerticalCropEnabled();
    edits.cropAspect = framing.cropAspectRatio();
    edits.lockCropCenter = framing.lockCropCenter();
    edits.zoomBlocks = zoom.zoomBlocks();
    edits.interpolation = flow.frameInterpolation();
    edits.previewResolution = timeline.previewResolution();
    edits.smartCache = timeline.smartPreviewEnabled();
    const auto& selected = flow.selectedOpticalFlowRangeID();
    if (const OpticalFlowRange* range = selected ? flow.range(*selected) : nullptr) {
        edits.previewStart = range->start;
        edits.previewEnd = range->end;
    }
    edits.playhead = timeline.scrubPosition();
    edits.timelineZoom = timeline.timelineZoom();
    edits.timelineCenter = timeline.timelineCenter();
    edits.loopPreview = timeline.loopPreview();
    edits.opticalFlowRanges = flow.opticalFlowRanges();
    edits.selectedOpticalFlowRangeID = selected;
    edits.trackedRanges = trackedRanges();
    edits.originalFrameRanges.emplace();
    for (const SourceRange& span : flow.originalFrameSpans())
        edits.originalFrameRanges->push_back(stored(span));
    return edits;
}

void EditSession::applyProjectEdits(const ProjectEdits& edits) {
    installProjectEdits(edits);
    scheduleProjectSave();
}

void EditSession::installProjectEdits(const ProjectEdits& edits) {
    const FlagScope restoring(isRestoringProject_);
    curve.setSmoothing(edits.smoothing);
    // Documents hold everything in any order.
    const auto sorted = [](SpeedKeyframes points) {
        sortByTime(points);
        return points;
    };
    curve.setTrim({edits.trimStart, edits.trimEnd}, sorted(edits.keyframes));
    framing.setCenterKeyframes(sorted(edits.centerKeyframes));
    framing.setCenterSmoothing(edits.centerSmoothing);
    framing.setVerticalCropEnabled(edits.cropEnabled);
    framing.setCropAspectRatio(edits.cropAspect);
    framing.setLockCropCenter(edits.lockCropCenter);
    ZoomBlockRules::Blocks blocks = edits.zoomBlocks;
    std::stable_sort(blocks.begin(), blocks.end(),
                     [](const ZoomBlock& a, const ZoomBlock& b) { return a.startTime < b.startTime; });
    for (ZoomBlock& block : blocks)
        ZoomBlockRules::sortFocalKeyframes(block);
    zoom.setZoomBlocks(std::move(blocks));
    flow.setFrameInterpolation(edits.interpolation);
    timeline.setPreviewResolution(edits.previewResolution);
    timeline.setSmartPreviewEnabled(edits.smartCache);
    timeline.setScrubPosition(edits.playhead);
    timeline.setTimelineZoom(edits.timelineZoom);
    timeline.setTimelineCenter(edits.timelineCenter);
    FlowMarks marks{edits.opticalFlowRanges.value_or(std::vector<OpticalFlowRange>{}), {}};
    for (const OpticalFlowRange& range : edits.originalFrameRanges.value_or(std::vector<OpticalFlowRange>{}))
        marks.originalFrameSpans.push_back({range.start, range.end});
    flow.setMarks(std::move(marks));
    flow.select(edits.selectedOpticalFlowRangeID);
    timeline.setLoopPreview(edits.loopPreview);
    if (!edits.opticalFlowRanges) followCurve();
    setTrackedRanges(edits.trackedRanges.value_or(std::vector<SubjectTrackingRange>{}));
}

} // namespace flowtide
