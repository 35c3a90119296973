// What a preview plays, as a value: which stretch of which medium is shown or heard at which output time.
#pragma once

#include "core/time.h"
#include "core/time_map.h"
#include "media/imported_clip.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

namespace flowtide {

/// A point in a composition or in a medium, in whole ticks of 1/60,000 s: stretches that are cut at ticks meet without
/// a gap. Frames of most usual rates start on one; those of 23.976 a second, among others, up to half a tick beside it.
struct CompositionTime {
    static constexpr std::int64_t timescale = 60'000; ///< ticks a second
    static constexpr double tickSeconds = 1.0 / timescale;

    std::int64_t ticks = 0;

    /// The nearest tick; nothing for times that are no number or beyond the range of ticks.
    static std::optional<CompositionTime> nearest(double seconds);
    double seconds() const { return static_cast<double>(ticks) / timescale; }

    friend auto operator<=>(const CompositionTime&, const CompositionTime&) = default;
};

/// A file that a composition takes its pictures or its sound from.
struct CompositionMedium {
    std::filesystem::path url;
    /// Where in the file the medium's own time 0 lies, in seconds.
    double startOffset = 0;
    /// What the probe told of it; absent for rendered previews, which nobody needs to open before they are played.
    std::shared_ptr<const ImportedClip> clip;
    /// Of a rendered preview: from the clip's time to the medium's own, to the frame where segments are only near it.
    std::shared_ptr<const TimeMap> renderedMap{};
};

/// A stretch of a medium, played over a stretch of the output at a constant speed.
struct CompositionSegment {
    std::size_t medium = 0;      ///< index into RetimedComposition::media
    CompositionTime sourceStart; ///< in the medium's own time
    CompositionTime sourceEnd;
    CompositionTime outputStart;
    CompositionTime outputEnd; ///< always after outputStart

    friend bool operator==(const CompositionSegment&, const CompositionSegment&) = default;
};

/// Segments in the order of their output, none overlapping another.
using CompositionTrack = std::vector<CompositionSegment>;

/// A place in one of a composition's media.
struct MediumPlace {
    std::size_t medium = 0;
    double fileSeconds = 0; ///< in the file, its start offset included

    friend bool operator==(const MediumPlace&, const MediumPlace&) = default;
};

/// A stretch of the output throughout which one medium plays at one speed.
struct CompositionStretch {
    std::size_t medium = 0;
    double fileStart = 0; ///< seconds in the file, its start offset included
    double fileEnd = 0;
    OutputSeconds outputStart;
    OutputSeconds outputEnd; ///< always after outputStart

    /// The place shown at an output time, clamped into the stretch.
    MediumPlace at(OutputSeconds time) const;
    /// Source seconds for each output second.
    double speed() const { return (fileEnd - fileStart) / (outputEnd.value - outputStart.value); }
};

/// Which way through the output somebody walks; decides between two stretches that meet at the time asked for.
enum class PlayDirection { forward, backward };

/// Immutable once built; cheap to move, about 40 bytes a segment to copy. Lookups take O(log n) from any thread.
struct RetimedComposition {
    std::vector<CompositionMedium> media;
    CompositionTrack video;          ///< without gaps, from 0 on
    CompositionTrack audio;          ///< the same, or empty
    CompositionTrack cachedPreviews; ///< shown instead of `video` where they lie; may have gaps

    /// The output's length.
    OutputSeconds duration() const;
    /// What is shown around an output time, rendered previews first: going forward the stretch that begins at or before
    /// it and ends after it, going backward the one that begins before it. Times outside the output count as its ends.
    /// To walk on, ask for the stretch at its outputEnd, or backward at its outputStart. Nothing without segments.
    std::optional<CompositionStretch> videoStretchAt(OutputSeconds time,
                                                     PlayDirection direction = PlayDirection::forward) const;
    /// The picture at an output time.
    std::optional<MediumPlace> videoAt(OutputSeconds time) const;
    /// The sound at an output time; nothing when the composition has none.
    std::optional<MediumPlace> audioAt(OutputSeconds time) const;
};

/// What happens to the pitch of sound that is stretched.
enum class TimePitchAlgorithm { varispeed }; ///< it follows the speed

/// How a composition's sound is played.
struct AudioMix {
    TimePitchAlgorithm timePitchAlgorithm = TimePitchAlgorithm::varispeed;

    friend bool operator==(const AudioMix&, const AudioMix&) = default;
};

/// A clip retimed for the preview.
struct RetimedMedia {
    RetimedComposition asset;
    std::optional<AudioMix> audioMix;
    /// The map that the composition's pictures realise, so that sound retimed through it stays with them.
    TimeMap timeMap;
    /// The retimed sound as a file of its own, when one was rendered.
    std::optional<std::filesystem::path> renderedAudioURL;
    /// Whether the composition's own sound is stretched; else the rendered file is played, where there is one.
    bool stretchesAudio = false;
};

} // namespace flowtide
