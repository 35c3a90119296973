// The preview of a session: what plays, and what is rendered ahead for it.
#pragma once

#include "editor/edit_session.h"
#include "editor/jobs/session_jobs.h"
#include "editor/jobs/session_media.h"
#include "editor/preview/render_ahead.h"
#include "editor/preview/rest_frame.h"
#include "editor/preview_control.h"
#include "editor/transport/comparison.h"
#include "editor/transport/preview_refresh.h"
#include "editor/transport/session_player.h"
#include "editor/transport/transport.h"
#include "media/log.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>

namespace flowtide {

/// What the preview asks of the rest of the session.
struct PreviewHost {
    std::function<std::optional<std::filesystem::path>()> proxy; ///< of the open clip, once it is built
    std::function<bool()> isBusy; ///< exporting, tracking or selecting a subject: no render begins by itself
};

/// Joins the parts of the preview. Main thread only.
class PreviewSession final : public PreviewControl {
public:
    /// The player must outlive this and is without an item when this has gone; `log` may be empty.
    PreviewSession(EditSession& session, SessionJobs& jobs, ChangeNotifier& notifier, SessionPlayer& player,
                   const std::shared_ptr<SessionMedia>& media, PreviewHost host, LogSink log);
    ~PreviewSession() override;
    PreviewSession(const PreviewSession&) = delete;
    PreviewSession& operator=(const PreviewSession&) = delete;

    Transport& transport() { return transport_; }
    const Transport& transport() const { return transport_; }
    RenderAhead& renders() { return renders_; }
    const RenderAhead& renders() const { return renders_; }
    Comparison& comparison() { return comparison_; }
    const Comparison& comparison() const { return comparison_; }

    /// The open clip's, for views to draw; null until it is decoded, and for a clip without sound.
    const std::shared_ptr<const AudioData>& clipSound() const { return refresh_.sound().sound(); }

    RestFrame& restFrame() { return restFrame_; }
    const RestFrame& restFrame() const { return restFrame_; }

    /// The open clip's proxy has been built.
    void showProxy() { refresh_.showProxy(); }

    void pausePlayback() override { transport_.pausePlayback(); }
    void beginPreviewOperation() override { refresh_.beginPreviewOperation(); }
    void cancelAutomaticRender() override { renders_.cancelAutomaticRender(); }
    void invalidateEditedPreviews() override;
    void scheduleSmartPreview() override { renders_.scheduleSmartPreview(); }
    void schedulePreviewRefreshAfterEdit() override { refresh_.schedulePreviewRefreshAfterEdit(); }
    void scrub(double position) override { transport_.scrub(position, false); }
    void resetPreview() override;

private:
    SessionPlayer& player_;
    RenderAhead renders_;
    PreviewRefresh refresh_;
    Transport transport_;
    Comparison comparison_;
    RestFrame restFrame_;
};

} // namespace flowtide
