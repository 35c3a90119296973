// Renders stretches of Optical Flow before they are played: on request, while the user is idle, or all of them.
#pragma once

#include "editor/preview/preview_render.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace flowtide {

/// What rendering ahead asks of the rest of the session.
struct RenderAheadHost {
    std::function<void()> pausePlayback;
    /// Whether something goes on that an idle render would disturb: playing, starting to, exporting, tracking or
    /// selecting a subject.
    std::function<bool()> isBusy;
    /// The player is to be built anew, with activeCachedPreviews().
    std::function<void()> showRenderedPreviews;
};

/// Decides what is rendered when. Main thread only.
class RenderAhead {
public:
    static constexpr double idleDelaySeconds = 1; ///< without activity, before a render begins by itself

    RenderAhead(EditSession& session, SessionJobs& jobs, ChangeNotifier& notifier, std::shared_ptr<SessionMedia> media,
                RenderAheadHost host);

    const RenderedPreviews& previews() const { return previews_; }
    const PreviewRender& render() const { return render_; }
    bool isRenderingAllRanges() const { return isRenderingAllRanges_.get(); }
    /// 0...1; changes with previewRenderProgress too.
    double renderAllProgress() const;
    /// What rendering all ranges has come to, as its button says it.
    std::string renderAllLabel() const;
    /// How far the range under the playhead is; nothing to say outside of ranges once there are previews.
    std::optional<std::string> playheadLabel() const;

    /// The kept part of the range that the user has selected.
    std::optional<SourceRange> selectedPreviewRange() const;
    /// What an idle render would render now.
    std::optional<SourceRange> automaticPreviewRange() const;

    /// Renders a range, or else the selected one. Nothing happens while another render runs.
    void renderSelectedPreview(bool automatically = false, std::optional<SourceRange> range = {},
                               bool pausesPlayback = true);
    /// Renders what is not rendered yet, piece by piece, until nothing is left or a piece fails.
    void renderAllRanges();
    void stopRenderingAll();
    void cancelPreviewRender() { render_.cancel(); }
    /// Forgets all renders; the Optical Flow ranges stay.
    void clearPreviewCache();
    /// A failure of the preview that is shown where a render's is.
    void showPreviewError(std::optional<std::string> sentence) { render_.setError(std::move(sentence)); }

    /// Activity: a render begins by itself a while after the last call.
    void scheduleSmartPreview();
    /// The render that has begun by itself ends, and none begins before the next scheduleSmartPreview().
    void cancelAutomaticRender();
    /// The curve has changed, and the ranges with it.
    void invalidateEditedPreviews();
    /// Another clip is open from now on, or none.
    void reset();
    /// The player shows the previews of that revision now: files that only its predecessor used are deleted.
    void playerInstalled(int previewCacheRevision);

private:
    /// Of rendering all ranges; output seconds.
    struct RenderAllSeconds {
        double total = 0;
        double done = 0;
        double current = 0; ///< of the piece that is being rendered
        friend bool operator==(const RenderAllSeconds&, const RenderAllSeconds&) = default;
    };
    bool isGestureOpen() const;
    void renderIfIdle();
    void renderNextRange();
    void renderNextRangeSoon();
    void renderEnded(PreviewRender::End how);

    EditSession& session_;
    SessionJobs& jobs_;
    std::shared_ptr<SessionMedia> media_;
    RenderAheadHost host_;
    RenderedPreviews previews_;
    PreviewRender render_;
    Timer smartPreviewTask_;
    Observed<bool> isRenderingAllRanges_;
    Observed<RenderAllSeconds> renderAllSeconds_;
    std::optional<SourceRange> renderAllLastChunk_;
};

} // namespace flowtide
