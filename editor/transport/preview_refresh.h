// Keeps the player's item in step with the curve.
#pragma once

#include "editor/edit_session.h"
#include "editor/preview/render_ahead.h"
#include "editor/scheduler.h"
#include "editor/transport/clip_sound.h"
#include "editor/transport/session_player.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>

namespace flowtide {

/// Builds what the player plays. Until the next refresh the player goes on with the curve of the last one, so whatever
/// has to do with the player's times is asked of installedMap(). Main thread only.
class PreviewRefresh {
public:
    static constexpr double delaySeconds = 0.12;       ///< of rest before an edit reaches the player
    static constexpr double smoothingTolerance = 1e-4; ///< of previewCurveSmoothing
    /// Segments for each source second: so many that on a steep curve the player's time, which goes by segments of
    /// constant speed, stays within a fraction of a frame of the export's.
    static constexpr double segmentRate = 240;
    /// A segment costs the main thread about a microsecond; longer segments rather than more.
    static constexpr std::int64_t mostSegments = 20'000;

    /// `proxy`: that of the open clip, once it is built.
    PreviewRefresh(EditSession& session, SessionJobs& jobs, ChangeNotifier& notifier, SessionPlayer& player,
                   std::shared_ptr<SessionMedia> media, RenderAhead& renders,
                   std::function<std::optional<std::filesystem::path>()> proxy);

    /// Results of preview work that was started before are stale.
    std::uint64_t beginPreviewOperation() { return ++previewRefreshGeneration_; }
    /// Refreshes once nobody has asked for it for a moment.
    void schedulePreviewRefreshAfterEdit();
    /// Builds the player's item anew and shows the playhead; where it plays it plays on.
    void refreshPreviewForCurrentCurve();
    /// Whether what is installed is not what the session shows now.
    bool needsRefresh() const;
    bool isInstalled() const { return installed_.has_value(); }
    /// Between the source and the player's times. Only while something is installed.
    const TimeMap& installedMap() const { return installed_->item->media.timeMap; }

    const ClipSound& sound() const { return sound_; }
    /// The proxy has been built.
    void showProxy();
    /// Another clip, or none.
    void reset();

private:
    struct Installed {
        SpeedKeyframes previewKeyframes;
        double previewCurveSmoothing;
        SourceRange previewSourceRange;
        int installedCacheRevision;
        std::shared_ptr<const PlaybackItem> item;
    };
    std::shared_ptr<PlaybackItem> built() const;
    void removeItem();
    template <typename Change>
    void changeItem(Change change);
    std::optional<CompositionMedium> proxyMedium() const;

    EditSession& session_;
    Scheduler& scheduler_;
    SessionPlayer& player_;
    RenderAhead& renders_;
    std::function<std::optional<std::filesystem::path>()> proxy_;
    ClipSound sound_;
    std::optional<Installed> installed_;
    std::uint64_t previewRefreshGeneration_ = 0;
    Timer previewRefreshTask_;
};

} // namespace flowtide
