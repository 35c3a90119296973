// The thread that decodes what playback needs next.
#pragma once

#include "media/media_io.h"
#include "media/player/decode_plan.h"
#include "media/player/frame_cache.h"
#include "media/player/playback_clock.h"
#include "media/player/playback_route.h"
#include "media/player/playback_timeline.h"

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

namespace flowtide {

/// A frame that is missing for this long is replaced by another, and that by a new one every so often: late enough to
/// spare the eye one that is gone at once, early enough, with room for decoding a frame, for a picture every 50 ms.
constexpr double progressIntervalSeconds = 0.03;

/// What to decode for.
struct DecodeGoal {
    std::shared_ptr<const PlaybackRoute> route;
    PlaybackTimeline timeline; ///< where the playhead is from now on
    double rate = 0;           ///< of play, also while play waits for its first frames; 0 at rest
    PictureSource source = PictureSource::exact;
    bool isMissing = false; ///< the frame at the playhead was not there: its owner wants to be told when it is

    /// Play that waits for its first frames.
    bool isBeginning() const { return rate != 0 && timeline.rate() == 0; }
    friend bool operator==(const DecodeGoal&, const DecodeGoal&) = default;
};

/// Fills a cache with the frames around the playhead, those that are needed soonest first: it looks where the playhead
/// is before every frame, so that a new goal takes effect with the next one. When it comes late it aims at where the
/// playhead will be. Owns the readers of all media. Ends with its destructor.
class FrameDecoder {
public:
    /// A frame on the way to the playhead's.
    struct Progress {
        MediumId medium = 0;
        SpannedFrame frame;
        std::uint64_t number = 0; ///< counts them
    };

    /// All must outlive it. `notify` is called on the decoder's thread when the frame that was missing at the playhead
    /// is there, when a frame on the way to it is worth showing, when play that waits for its first frames got one, and
    /// when a medium fails.
    FrameDecoder(const MediaBackend& backend, const PlaybackClock& clock, FrameCache& cache,
                 std::function<void()> notify);
    ~FrameDecoder();
    FrameDecoder(const FrameDecoder&) = delete;
    FrameDecoder& operator=(const FrameDecoder&) = delete;

    /// The latest goal counts. One without a route also makes it forget all media and frames of before.
    void aim(DecodeGoal goal);
    /// The newest frame on the way to the playhead's; nothing once that one is there.
    std::optional<Progress> progress() const;
    /// Why a medium cannot be read; nothing when it can, as far as is known.
    std::optional<std::string> failureOf(MediumId medium) const;
    /// Lets media that failed be tried again for the next goal; goals of before fail untold.
    void forgetFailures();
    /// What the probe tells of a medium; nothing before it was opened.
    std::shared_ptr<const ImportedClip> clipOf(MediumId medium) const;

private:
    struct Medium {
        std::shared_ptr<const ImportedClip> clip;
        std::unique_ptr<SeekingReader> reader;
        std::optional<double> position;     ///< end of the frame delivered last
        std::optional<double> soughtKey;    ///< where the index said that the last seek would lead
        std::optional<SpannedFrame> last;   ///< that frame
        std::optional<double> stretchUntil; ///< going backwards: the stretch being decoded ends here
        std::size_t frameBytes = 0;
        std::uint64_t lastUse = 0;
    };
    /// What is to be decoded for: a moment of a medium that no cached frame covers.
    struct Gap {
        MediumId medium = 0;
        double time = 0;
        double floor = 0; ///< going backwards nothing before this is needed
        int direction = 1;
        bool isUrgent = false; ///< the playhead is there already
    };

    void run();
    /// Closes the media that a route does not lead to; without a route forgets all frames as well.
    void letGo(const PlaybackRoute* route);
    /// Decodes one frame; false when there is nothing to do.
    bool step(const DecodeGoal& goal);
    std::optional<Gap> nextGap(const DecodeGoal& goal, OutputSeconds now, const RoutePlace& place, bool covered);
    OutputSeconds aimOf(const DecodeGoal& goal, OutputSeconds now, bool covered);
    bool decodeTowards(const DecodeGoal& goal, const Gap& gap, const Playhead& playhead);
    static std::optional<SpannedFrame> nextFrame(Medium& medium);
    bool preparesFor(Medium& medium, const Gap& gap);
    void take(const Gap& gap, Medium& medium, SpannedFrame frame, const Playhead& playhead);
    void showProgress(const Gap& gap, const SpannedFrame& frame);
    Medium& opened(const DecodeGoal& goal, MediumId id);
    /// Asked before every packet. A new place in the same medium does not end the way to the old one, or a drag would
    /// never get to see a picture.
    bool isUnwanted(MediumId id) const;
    void closeUnused();
    void fail(MediumId medium, const std::string& sentence);
    double frameSeconds(const Medium& medium) const;
    double roomSeconds(const Medium& medium) const;

    const MediaBackend& backend_;
    const PlaybackClock& clock_;
    FrameCache& cache_;
    const std::function<void()> notify_;

    // The decoder's thread.
    std::map<MediumId, Medium> media_;
    std::uint64_t uses_ = 0;
    std::optional<Gap> tried_;                              ///< the gap that was sought last
    int tries_ = 0;                                         ///< how often in a row
    std::optional<std::pair<MediumId, SpannedFrame>> held_; ///< found no room; needed next
    std::optional<double> aim_;                             ///< output seconds at which decoding that came late aims
    double lead_ = 0;                                       ///< seconds of play that it aims ahead
    std::optional<double> lateSince_;
    bool owes_ = false; ///< the owner has not been told yet what the goal makes it wait for
    double lastProgress_ = 0;
    std::uint64_t stepRound_ = 0; ///< the round of the goal that is being decoded for

    mutable std::mutex lock_; ///< guards everything below
    std::condition_variable wake_;
    DecodeGoal goal_;
    bool woken_ = false;
    bool forgets_ = false; ///< a goal had no route; the decoder's thread has not acted on it yet
    bool stopping_ = false;
    std::optional<Progress> progress_;
    std::uint64_t progressCount_ = 0;
    std::map<MediumId, std::string> failures_;
    bool forgetsFailures_ = false; ///< until the next goal
    std::uint64_t round_ = 0;      ///< counts the times that failures were forgotten
    std::map<MediumId, std::shared_ptr<const ImportedClip>> clips_;

    std::jthread thread_; ///< last: everything else is there when it starts
};

} // namespace flowtide
