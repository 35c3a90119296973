// The way of playback through the media of a composition.
#pragma once

#include "media/player/frame_cache.h"
#include "media/preview/retimed_composition.h"
#include "media/sound/audio_decoding.h"

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace flowtide {

/// What a player plays.
struct PlaybackItem {
    RetimedMedia media;
    /// A smaller copy of a medium, with the same frames at the same times, that is quick to decode.
    std::optional<CompositionMedium> proxy;
    std::size_t proxiedMedium = 0; ///< index of the medium that it stands for
    /// The clip's decoded sound, to be retimed by media.timeMap; absent: silent.
    std::shared_ptr<const AudioData> sound;
};

/// Gives every medium a number that it keeps until another clip is opened, so that decoded frames outlast edits.
class MediumNumbers {
public:
    MediumId of(const CompositionMedium& medium);
    /// From now on files of the same names are other media.
    void renew() { numbers_.clear(); }

private:
    std::map<std::string, MediumId> numbers_;
    MediumId last_ = 0;
};

/// Which of a medium's copies to take.
enum class PictureSource { exact, proxy };

/// A place in a medium.
struct RoutePlace {
    MediumId medium = 0;
    double time = 0;     ///< seconds of its file
    bool isExact = true; ///< no proxy

    friend bool operator==(const RoutePlace&, const RoutePlace&) = default;
};

/// A stretch of a medium in the order of play: `to` lies before `from` when playing backwards.
struct RouteStretch {
    MediumId medium = 0;
    double from = 0; ///< seconds of its file
    double to = 0;
};

/// Immutable: shared by the owner and the decoder. Where there is no proxy its exact medium is taken.
class PlaybackRoute {
public:
    PlaybackRoute(std::shared_ptr<const PlaybackItem> item, MediumNumbers& numbers);

    double duration() const { return item_->media.asset.duration().value; }
    bool hasProxy() const { return proxy_.has_value(); }
    const PlaybackItem& item() const { return *item_; }
    /// Nothing for an empty composition.
    std::optional<RoutePlace> at(OutputSeconds time, PictureSource source) const;
    /// What is shown from a time on, over `seconds` of output in a direction (1 or -1), neighbours joined.
    std::vector<RouteStretch> ahead(OutputSeconds time, int direction, double seconds, PictureSource source) const;
    /// Whether a rendered preview is shown at a time.
    bool isRenderedPreview(OutputSeconds time) const;
    /// Whether a medium is one of the rendered previews.
    bool isPreviewMedium(MediumId id) const;
    /// The medium that a proxy stands for; any other itself.
    MediumId originalOf(MediumId id) const { return proxy_ == id ? ids_[item_->proxiedMedium] : id; }
    /// Whether both compositions use one medium: one is an edit of the other.
    bool sharesMediaWith(const PlaybackRoute& other) const;
    /// The medium behind a number; nothing when this route does not lead there.
    const CompositionMedium* medium(MediumId id) const;

private:
    struct Medium {
        MediumId id;
        const CompositionMedium* medium;
    };
    Medium mediumOf(std::size_t index, PictureSource source) const;
    /// The moment of its medium, or of that one's proxy, that a stretch shows at an output time within it.
    double fileTime(const CompositionStretch& stretch, OutputSeconds time, PictureSource source) const;

    std::shared_ptr<const PlaybackItem> item_;
    std::vector<MediumId> ids_; ///< of the composition's media
    std::optional<MediumId> proxy_;
};

} // namespace flowtide
