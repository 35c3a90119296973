// What edits ask of the preview.
#pragma once

namespace flowtide {

/// Playback and rendering ahead, as far as edits touch them. Main thread only.
class PreviewControl {
public:
    virtual ~PreviewControl() = default;

    virtual void pausePlayback() = 0;
    /// Results of preview work that was started before are stale.
    virtual void beginPreviewOperation() = 0;
    /// Cancels the render that was started by itself, if one runs, and the one that waits for the user to be idle.
    virtual void cancelAutomaticRender() = 0;
    /// Lets the rendered previews go that the current curve no longer fits.
    virtual void invalidateEditedPreviews() = 0;
    /// (Re)arms the render that begins when the user has been idle.
    virtual void scheduleSmartPreview() = 0;
    /// Shows the current curve, soon.
    virtual void schedulePreviewRefreshAfterEdit() = 0;
    /// Moves the playhead to a fraction of the clip, limited to the trim; playback pauses.
    virtual void scrub(double position) = 0;
    /// Another clip, or none: everything of the former is gone.
    virtual void resetPreview() = 0;
};

} // namespace flowtide
