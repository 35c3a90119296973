// Everything that an editor session in a window is made of.
#pragma once

#include "editor/flowtide_view_model.h"
#include "editor/transport/preview_player_adapter.h"
#include "media/player/playback_clock.h"
#include "media/player/preview_player.h"
#include "media/preview/temporary_items.h"
#include "ui/picture_loader.h"
#include "ui/point_selection.h"
#include "ui/qt_scheduler.h"
#include "ui/user_settings.h"
#include "ui/viewer/picture_feed.h"

#include <QTimer>
#include <functional>
#include <memory>

namespace flowtide {

/// What the window is given by the program.
struct WindowPlatform {
    const MediaBackend& backend;
    /// A sound device, on a clock that outlives it; nothing where there is none.
    std::function<std::unique_ptr<AudioOutput>(AudioFormat, AudioPull, const PlaybackClock&)> openAudio;
};

/// Lives on the main thread. Its end waits for what the session has left to save.
class SessionHost {
public:
    /// Throws ProjectError when there is no home folder to keep projects in.
    SessionHost(const WindowPlatform& platform, UserSettings& settings);
    ~SessionHost();
    SessionHost(const SessionHost&) = delete;
    SessionHost& operator=(const SessionHost&) = delete;

    FlowtideViewModel& model() { return *model_; }
    PreviewPlayer& player() { return player_; }
    PictureLoader& pictures() { return pictures_; }
    /// Shared by all that show the playhead's picture.
    PictureFeed& pictureFeed() { return *pictureFeed_; }
    PointSelection& points() { return points_; }
    UserSettings& settings() { return settings_; }
    Scheduler& scheduler() { return scheduler_; }

private:
    UserSettings& settings_;
    TemporaryItems items_;
    SteadyClock clock_;
    PictureLoader pictures_;
    PointSelection points_;
    QtScheduler scheduler_; ///< its end waits for the jobs in the background
    PreviewPlayer player_;
    QTimer refreshes_; ///< of the display, while the player is active
    PreviewPlayerAdapter adapter_{player_};
    std::shared_ptr<SessionMedia> media_;
    std::unique_ptr<FlowtideViewModel> model_;
    std::unique_ptr<PictureFeed> pictureFeed_;
    Subscription selectionReset_;
};

} // namespace flowtide
