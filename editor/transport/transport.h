// Plays, shuttles, steps and scrubs.
#pragma once

#include "editor/edit_session.h"
#include "editor/preview/render_ahead.h"
#include "editor/scheduler.h"
#include "editor/transport/player_preparation.h"
#include "editor/transport/preview_refresh.h"
#include "editor/transport/session_player.h"
#include "media/log.h"

#include <limits>
#include <memory>
#include <optional>
#include <string>

namespace flowtide {

/// Without a clip nothing happens. The playhead is the session's; while playing it follows the player. Main thread
/// only.
class Transport {
public:
    static constexpr float fastestRate = 8;
    static constexpr double tickSeconds = 1.0 / 30;
    static constexpr double anomalyLogSeconds = 1; ///< at most one line in this time
    // Output seconds:
    static constexpr double endTolerance = 0.01;      ///< so near to an end is at the end
    static constexpr double loopTolerance = 0.005;    ///< the same where it loops
    static constexpr double backwardHeadStart = 0.05; ///< backward play begins so far before the playhead

    /// `log` may be empty.
    Transport(EditSession& session, PreviewRefresh& refresh, SessionPlayer& player, Scheduler& scheduler,
              ChangeNotifier& notifier, RenderAhead& renders, LogSink log);

    bool isPlaying() const { return isPlaying_.get(); }
    /// A start is in progress: the player is being prepared.
    bool isStartingPlayback() const { return isStartingPlayback_.get(); }
    /// 0 when stopped; negative backward.
    float shuttleRate() const { return shuttleRate_.get(); }
    bool isMuted() const { return isMuted_.get(); }
    /// A jump of the loop is not done yet.
    bool loopSeekPending() const { return loopSeekPending_.get(); }

    void togglePlayback();
    /// Limited to ±fastestRate; 0 pauses.
    void startPlayback(float rate);
    /// Abandons a start too. The playhead is where the player has stopped.
    void pausePlayback();
    void shuttleForward();
    void shuttleBackward();
    /// Pauses, and moves by output frames; negative: backward.
    void nudgePlayhead(int frames);
    /// Moves the playhead to a fraction of the clip, limited to the trim. Pauses, unless `preservePlayback`.
    void scrub(double position, bool preservePlayback);

    /// For all clips until the session ends.
    void setMuted(bool muted);

    /// Another clip, or none: stops where it is.
    void reset();
    // The player's callbacks:
    void playerStatusChanged();
    void playerEnded();

private:
    /// Renewed by every start and stop; calls that come late find theirs gone.
    struct Intent {};
    /// A stretch to play, in both time bases.
    struct PlayRange {
        SourceRange source;
        OutputSeconds start;
        OutputSeconds end;
    };
    PlayRange trimmedOutput() const;
    PlayRange playRange() const;
    std::optional<PlayRange> selectedRange() const;
    std::optional<PlayRange> loopRange() const;
    OutputSeconds playhead() const;
    /// Where a play at this rate begins.
    OutputSeconds startOf(float rate) const;
    void setPlayhead(double sourceTime);
    void followPlayer(OutputSeconds time);
    void prepare(float rate);
    void play(float rate, OutputSeconds from);
    void stop();
    void playbackTick();
    bool keepLooping(const PlayRange& loop, OutputSeconds time);
    void loopTo(OutputSeconds time);
    bool stopAtEnd(OutputSeconds time);
    void finish(const PlayRange& range);
    void fail(const std::string& failure);
    void logRateAnomaly();

    EditSession& session_;
    PreviewRefresh& refresh_;
    SessionPlayer& player_;
    Scheduler& scheduler_;
    RenderAhead& renders_;
    LogSink log_;
    PlayerPreparation preparation_;
    Observed<bool> isPlaying_;
    Observed<bool> isStartingPlayback_;
    Observed<float> shuttleRate_;
    Observed<bool> loopSeekPending_;
    Observed<bool> isMuted_;
    std::shared_ptr<const Intent> playbackIntentToken_ = std::make_shared<const Intent>();
    float startingRate_ = 0;
    OutputSeconds playedFrom_; ///< where this play began, or was moved to
    Timer playbackTimer_;
    bool hasFailed_ = false;                                               ///< the last preparation
    double lastRateAnomalyLog_ = -std::numeric_limits<double>::infinity(); ///< Scheduler::now()
};

} // namespace flowtide
