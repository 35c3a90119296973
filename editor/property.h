// The names of what views see of a session.
#pragma once

#include <bitset>
#include <cstddef>
#include <initializer_list>

namespace flowtide {

enum class Property {
    // projects
    recentProjects,
    projectSaveMessage,
    pendingRelinkProject,
    isOpening,
    // the clip and its edits
    clip,
    keyframes,
    curveSmoothing,
    trimRange,
    centerKeyframes,
    centerSmoothing,
    isVerticalCropEnabled,
    cropAspectRatio,
    lockCropCenter,
    isCropDragActive,
    zoomBlocks,
    selectedZoomBlockID,
    frameInterpolation,
    opticalFlowRanges,
    selectedOpticalFlowRangeID,
    originalFrameSpans,
    smoothMotionFrameRate, ///< the user's setting, of all projects
    trackedRanges,
    history, ///< what can be undone and redone
    // the view
    editorMode,
    timelineZoom,
    timelineCenter,
    scrubPosition,
    inspectionScale,
    inspectionCenter,
    loopPreview,
    previewResolution,
    smartPreviewEnabled,
    // playback
    isPlaying,
    isStartingPlayback,
    shuttleRate,
    loopSeekPending,
    isMuted,
    clipSound,
    comparisonEnabled,
    comparisonMessage,
    comparisonPair,
    // jobs
    selectingSubject,
    subjectSelectionBuffer,
    isTracking,
    trackingProgress,
    trackingPreview,
    trackingCoverage,
    chosenSubject,
    trackingMessage,
    trackingStoppedAt,
    isExporting,
    exportProgress,
    exportEstimatedRemainingTime,
    lastExportVerification,
    lastExportEnd,
    isGeneratingProxy,
    proxyProgress,
    proxyMessage,
    // previews rendered ahead of playback
    renderedPreviews,
    restPicture,
    renderingPreviewRange,
    isAutomaticPreviewRender,
    previewRenderProgress,
    previewRenderError,
    isRenderingAllRanges,
    renderAllProgress,
    // the alert
    errorMessage,
    count, ///< how many there are
};

using PropertySet = std::bitset<static_cast<std::size_t>(Property::count)>;

inline PropertySet properties(std::initializer_list<Property> list) {
    PropertySet set;
    for (const Property property : list)
        set.set(static_cast<std::size_t>(property));
    return set;
}

} // namespace flowtide
