// Joins the parts.
#include "editor/preview/preview_session.h"

#include <utility>

namespace flowtide {

PreviewSession::PreviewSession(EditSession& session, SessionJobs& jobs, ChangeNotifier& notifier, SessionPlayer& player,
                               const std::shared_ptr<SessionMedia>& media, PreviewHost host, LogSink log)
    : player_(player)
    , renders_(session, jobs, notifier, media,
               {[this] { transport_.pausePlayback(); },
                [this, isBusy = std::move(host.isBusy)] {
                    return transport_.isPlaying() || transport_.isStartingPlayback() || isBusy();
                },
                [this] { refresh_.refreshPreviewForCurrentCurve(); }})
    , refresh_(session, jobs, notifier, player, media, renders_, std::move(host.proxy))
    , transport_(session, refresh_, player, jobs.scheduler(), notifier, renders_, std::move(log))
    , comparison_(session, jobs, notifier, media, renders_)
    , restFrame_(session, jobs, notifier, media, renders_, transport_) {
    player_.onStatus = [this] { transport_.playerStatusChanged(); };
    player_.onEnd = [this] { transport_.playerEnded(); };
}

PreviewSession::~PreviewSession() {
    player_.onStatus = player_.onEnd = {};
    player_.setItem(nullptr);
}

/// With another curve the player's time would mean another place.
void PreviewSession::invalidateEditedPreviews() {
    transport_.pausePlayback();
    renders_.invalidateEditedPreviews();
}

void PreviewSession::resetPreview() {
    transport_.reset();
    comparison_.reset();
    renders_.reset();
    refresh_.reset();
    renders_.scheduleSmartPreview();
}

} // namespace flowtide
