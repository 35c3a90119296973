// What is seen at rest is what will be exported.
#pragma once

#include "editor/edit_session.h"
#include "editor/jobs/cancel_flag.h"
#include "editor/jobs/session_jobs.h"
#include "editor/jobs/session_media.h"
#include "editor/preview/render_ahead.h"
#include "editor/transport/transport.h"

#include <cstdint>
#include <memory>

namespace flowtide {

/// While the playhead rests where the export has frames of its own making and no preview is rendered, makes the one of
/// that time in the background, for the viewer to show in place of the player's picture. Main thread only.
class RestFrame {
public:
    /// Between two steps of a scrub nothing is begun.
    static constexpr double restDelaySeconds = 0.05;

    RestFrame(EditSession& session, SessionJobs& jobs, ChangeNotifier& notifier, std::shared_ptr<SessionMedia> media,
              const RenderAhead& renders, const Transport& transport);

    /// The whole frame, never cropped; zoomed while the crop is off. Null when there is none: what the player shows
    /// stands.
    const std::shared_ptr<const ExportPicture>& restPicture() const { return restPicture_.get(); }
    /// The largest picture that the view has room for.
    void setRestPictureSize(OutputSize size);

private:
    bool isWanted() const;
    void restart();
    void request();

    EditSession& session_;
    SessionJobs& jobs_;
    std::shared_ptr<SessionMedia> media_;
    const RenderAhead& renders_;
    const Transport& transport_;
    Observed<std::shared_ptr<const ExportPicture>> restPicture_;
    OutputSize size_{1920, 1080};
    Timer rest_;
    CancelFlag cancelFlag_;
    std::uint64_t requestID_ = 0; ///< a result of another one is late
    Subscription changes_;
};

} // namespace flowtide
