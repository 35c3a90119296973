// The open clip's sound, decoded once, in the background.
#pragma once

#include "editor/change_notifier.h"
#include "editor/edit_session.h"
#include "editor/jobs/cancel_flag.h"
#include "editor/jobs/session_jobs.h"
#include "editor/jobs/session_media.h"

#include <functional>
#include <memory>
#include <string>

namespace flowtide {

/// Main thread only.
class ClipSound {
public:
    struct Callbacks {
        std::function<void()> onArrived;                   ///< sound() is there
        std::function<void(const std::string&)> onFailure; ///< the sentence; there will be none
    };

    ClipSound(SessionJobs& jobs, ChangeNotifier& notifier, std::shared_ptr<SessionMedia> media, Callbacks callbacks);

    /// Null until it is decoded, and for a clip without sound.
    const std::shared_ptr<const AudioData>& sound() const { return sound_.get(); }
    /// Another clip, or none; what still comes of the one before is dropped.
    void load(OpenClip clip);

private:
    SessionJobs& jobs_;
    std::shared_ptr<SessionMedia> media_;
    Callbacks callbacks_;
    OpenClip clip_;
    Observed<std::shared_ptr<const AudioData>> sound_;
    CancelFlag cancelFlag_;
};

} // namespace flowtide
