// Plays a retimed clip with its sound, at any rate and from any place.
#pragma once

#include "media/player/audio_output.h"
#include "media/player/frame_cache.h"
#include "media/player/frame_decoder.h"
#include "media/player/picture_converter.h"
#include "media/player/playback_clock.h"
#include "media/player/playback_route.h"
#include "media/player/playback_timeline.h"
#include "media/player/player_picture.h"
#include "media/player/sound_feed.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace flowtide {

enum class PlayerStatus { unknown, ready, failed };

/// What a player is built on.
struct PlayerPlatform {
    const MediaBackend* backend = nullptr;
    const PlaybackClock* clock = nullptr;
    /// Brings a call to the owner's thread; callable from any thread, must not call at once.
    std::function<void(std::function<void()>)> post;
    /// Where it gives no device, or where there is none, sound is played to nobody on the clock.
    AudioOutputFactory openAudio;
    std::size_t cacheBytes = 384U << 20U;
};

/// Everything is called and calls back on the owner's thread. While isActive() says so, update() wants to be called at
/// every refresh of the display.
class PreviewPlayer {
public:
    /// Told whether the picture of the wanted time was reached; not when a later seek or item came first.
    using SeekCompletion = std::function<void(bool finished)>;

    explicit PreviewPlayer(PlayerPlatform platform);
    ~PreviewPlayer();
    PreviewPlayer(const PreviewPlayer&) = delete;
    PreviewPlayer& operator=(const PreviewPlayer&) = delete;

    /// Called when picture() has become another one, when status() has changed, and when play has stopped at an end of
    /// the output by itself. May call the player.
    std::function<void()> onPicture;
    std::function<void()> onDisplay; ///< the same for displayed()
    std::function<void()> onStatus;
    std::function<void()> onEnd;

    /// Plays this from now on, at the same output time as far as there is one; play goes on. Nothing: no medium.
    void setItem(std::shared_ptr<const PlaybackItem> item);

    /// Plays at a rate of -8 to 8; 0 pauses.
    void play(double rate);
    void pause() { play(0); }
    /// Of this item and all that follow. Off at first.
    void setMuted(bool muted);
    double requestedRate() const { return requestedRate_; }
    /// 0 while play still waits for its first frames, and at the ends.
    double rate() const { return timeline_.rate(); }

    OutputSeconds duration() const { return {timeline_.duration()}; }
    /// What is being heard, or would be.
    OutputSeconds currentTime();
    /// Goes exactly there; the latest seek wins. Completes at once when the picture is at hand.
    void seek(OutputSeconds time, SeekCompletion completion = {});

    PlayerStatus status() const { return status_; }
    /// The sentence that says why the status is "failed".
    const std::string& failure() const { return failure_; }

    /// The newest picture; nothing before the first one.
    const std::optional<PlayerPicture>& picture() const { return picture_; }
    /// From now on every picture is converted for a display, as large as this holds; nothing: none is, as at first.
    void setDisplaySize(std::optional<OutputSize> box);
    /// The newest picture in the display's pixels: it follows picture() as fast as pictures can be converted.
    const std::optional<DisplayedPicture>& displayed() const { return displayed_; }
    /// Moves playback on to now.
    void update();
    bool isActive() const;
    /// Bytes of decoded frames that are kept.
    std::size_t cachedBytes() const { return cache_.bytes(); }

private:
    /// Tells calls that were posted whether the player still lives.
    struct Alive {
        PreviewPlayer* player;
    };
    struct Found {
        MediumId medium;
        SpannedFrame frame;
        bool isExact;
    };

    void openSound();
    void followSound(double now);
    void jump(OutputSeconds time, double now);
    void stop(OutputSeconds position, double now);
    void beginWhenReady(double now);
    bool isReadyToPlay() const;
    void refresh(double now);
    bool fitsPlay(const FrameDecoder::Progress& progress, OutputSeconds time) const;
    bool noticeFailures();
    PictureSource source(double now) const;
    std::optional<Found> dueFrame(OutputSeconds time) const;
    bool isCached(OutputSeconds time, PictureSource source) const;
    void show(const Found& found, OutputSeconds time, bool isDue);
    void describe(PlayerPicture& picture) const;
    void display();
    void takeConverted();
    void setStatus(PlayerStatus status, const std::string& failure = {});
    void finishSeek(bool finished);

    const PlayerPlatform platform_;
    MediumNumbers numbers_;
    FrameCache cache_;
    std::shared_ptr<const PlaybackRoute> route_;
    PlaybackTimeline timeline_;
    double requestedRate_ = 0;
    bool isMuted_ = false;
    bool begins_ = false;   ///< play waits for its first frames
    double beginClock_ = 0; ///< since when
    double restClock_ = 0;  ///< when the playhead was last moved or stopped
    bool proxyFailed_ = false;
    bool exactIsTooSlow_ = false;        ///< in this play
    std::optional<double> missingSince_; ///< how long the frame due has been missing
    double progressClock_ = 0;           ///< when another frame was last shown in its place
    SeekCompletion seekCompletion_;
    bool isSeeking_ = false;
    std::uint64_t seekCount_ = 0;
    PlayerStatus status_ = PlayerStatus::unknown;
    std::string failure_;
    std::optional<PlayerPicture> picture_;
    std::uint64_t shownProgress_ = 0;
    std::optional<OutputSize> displayBox_;
    std::optional<DisplayedPicture> displayed_;

    std::shared_ptr<SoundFeed> feed_;
    std::unique_ptr<AudioOutput> output_;
    double heardFrames_ = 0;
    double heardClock_ = 0;      ///< when the count of heard frames last rose
    bool reopensDevice_ = false; ///< output_ stands in for a device that stalled: the next play tries one again

    std::shared_ptr<Alive> alive_;
    std::function<void()> postUpdate_; ///< any thread: brings an update() to the owner's
    std::unique_ptr<FrameDecoder> decoder_;
    std::unique_ptr<PictureConverter> converter_; ///< absent until a display wants pictures
};

} // namespace flowtide
