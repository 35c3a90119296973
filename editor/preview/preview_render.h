// The one render that may be in progress.
#pragma once

#include "editor/jobs/cancel_flag.h"
#include "editor/jobs/session_jobs.h"
#include "editor/jobs/session_media.h"
#include "editor/preview/rendered_previews.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace flowtide {

/// Renders a range to a file with exactly the frames that an export has there, and installs it if the curve still asks
/// for it then. Main thread only.
class PreviewRender {
public:
    enum class End {
        installed,
        outdated,  ///< the curve has changed; nothing is wrong
        cancelled, ///< by somebody's wish
        failed,    ///< previewRenderError says why
    };

    /// `onEnd` is called at the end of each render; at once when it is cancelled.
    PreviewRender(EditSession& session, SessionJobs& jobs, ChangeNotifier& notifier,
                  std::shared_ptr<SessionMedia> media, RenderedPreviews& previews, std::function<void(End)> onEnd);

    bool isRendering() const { return previewRenderID_.has_value(); }
    const std::optional<SourceRange>& renderingPreviewRange() const { return renderingPreviewRange_.get(); }
    /// The render in progress was started while nobody did anything.
    bool isAutomaticPreviewRender() const { return isAutomatic_.get(); }
    double previewRenderProgress() const { return progress_.get(); } ///< 0...1
    const std::optional<std::string>& previewRenderError() const { return error_.get(); }
    void setError(std::optional<std::string> sentence) { error_.set(std::move(sentence)); }

    /// Not without a clip, for a range in which no in-between frames are made, or while another render runs.
    bool canStart(const SourceRange& range) const;
    /// Nothing happens unless it can.
    void start(const SourceRange& range, bool automatically);
    /// Ends the render in progress, if there is one; what it still brings is dropped.
    void cancel() { end(End::cancelled); }
    /// The same if the current curve has other frames than it renders. Whether it had.
    bool cancelIfOutdated();

private:
    ExportRequest request(const WholeFrames& frames) const;
    void receive(Outcome<std::filesystem::path>& outcome, RenderedPreview preview);
    void end(End how);

    EditSession& session_;
    SessionJobs& jobs_;
    std::shared_ptr<SessionMedia> media_;
    RenderedPreviews& previews_;
    std::function<void(End)> onEnd_;
    Observed<std::optional<SourceRange>> renderingPreviewRange_;
    Observed<bool> isAutomatic_;
    Observed<double> progress_;
    Observed<std::optional<std::string>> error_;
    std::optional<Uuid> previewRenderID_;
    std::optional<PreviewCurveSignature> renderingSignature_;
    CancelFlag cancelFlag_;
};

} // namespace flowtide
