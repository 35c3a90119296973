// Where the user is looking, and with which of the settings that no history keeps.
#pragma once

#include "core/clamp.h"
#include "core/render_choices.h"
#include "editor/change_notifier.h"
#include "project/flowtide_project.h"

namespace flowtide {

/// What the graph edits.
enum class CurveEditorMode { speed, cropCenter };

/// A place in the picture, fractions of its width and height.
struct PicturePoint {
    double x = 0.5;
    double y = 0.5;
    friend bool operator==(const PicturePoint&, const PicturePoint&) = default;
};

/// Main thread only. Values outside their range are limited to it.
class TimelineView {
public:
    static constexpr double largestInspectionScale = 20;

    explicit TimelineView(ChangeNotifier& notifier)
        : editorMode_(notifier, Property::editorMode)
        , timelineZoom_(notifier, Property::timelineZoom, 1)
        , timelineCenter_(notifier, Property::timelineCenter, 0.5)
        , scrubPosition_(notifier, Property::scrubPosition)
        , inspectionScale_(notifier, Property::inspectionScale, 1)
        , inspectionCenter_(notifier, Property::inspectionCenter)
        , loopPreview_(notifier, Property::loopPreview)
        , previewResolution_(notifier, Property::previewResolution)
        , smartPreviewEnabled_(notifier, Property::smartPreviewEnabled) {}

    CurveEditorMode editorMode() const { return editorMode_.get(); }
    double timelineZoom() const { return timelineZoom_.get(); }     ///< 1 shows the whole clip
    double timelineCenter() const { return timelineCenter_.get(); } ///< fraction of the clip
    double scrubPosition() const { return scrubPosition_.get(); }   ///< the playhead, fraction of the clip
    double inspectionScale() const { return inspectionScale_.get(); }
    PicturePoint inspectionCenter() const { return inspectionCenter_.get(); }
    bool loopPreview() const { return loopPreview_.get(); }
    PreviewResolution previewResolution() const { return previewResolution_.get(); }
    bool smartPreviewEnabled() const { return smartPreviewEnabled_.get(); }

    // Whether it was a change:
    bool setEditorMode(CurveEditorMode mode) { return editorMode_.set(mode); }
    bool setTimelineZoom(double zoom) { return timelineZoom_.set(clamped(zoom, 1, largestTimelineZoom)); }
    bool setTimelineCenter(double center) { return timelineCenter_.set(clamped(center, 0, 1)); }
    bool setScrubPosition(double position) { return scrubPosition_.set(clamped(position, 0, 1)); }
    bool setInspection(double scale, PicturePoint center) {
        const bool isScaled = inspectionScale_.set(clamped(scale, 1, largestInspectionScale));
        return inspectionCenter_.set({clamped(center.x, 0, 1), clamped(center.y, 0, 1)}) || isScaled;
    }
    bool setLoopPreview(bool loops) { return loopPreview_.set(loops); }
    bool setPreviewResolution(PreviewResolution resolution) { return previewResolution_.set(resolution); }
    bool setSmartPreviewEnabled(bool enabled) { return smartPreviewEnabled_.set(enabled); }

    void reset() {
        setEditorMode(CurveEditorMode::speed);
        setTimelineZoom(1);
        setTimelineCenter(0.5);
        setScrubPosition(0);
        setInspection(1, {});
        setLoopPreview(false);
        setPreviewResolution(PreviewResolution::quick);
        setSmartPreviewEnabled(false);
    }

private:
    Observed<CurveEditorMode> editorMode_;
    Observed<double> timelineZoom_;
    Observed<double> timelineCenter_;
    Observed<double> scrubPosition_;
    Observed<double> inspectionScale_;
    Observed<PicturePoint> inspectionCenter_;
    Observed<bool> loopPreview_;
    Observed<PreviewResolution> previewResolution_;
    Observed<bool> smartPreviewEnabled_;
};

} // namespace flowtide
