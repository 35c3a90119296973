// Footage in which somebody marked a subject in every frame, and how well a track agrees with it.
#pragma once

#include "core/speed_keyframe.h"
#include "core/subject_box.h"
#include "media/imported_clip.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace flowtide::bench {

struct TrackSequence {
    std::string name;
    ImportedClip clip;
    std::vector<std::optional<SubjectBox>> truth; ///< by frame; nothing where the subject is absent

    double timeOf(std::size_t frame) const { return clip.frameDuration.secondsTimes(static_cast<std::int64_t>(frame)); }
    std::size_t frameAt(double time) const;
    /// The first or the last frame that shows the subject.
    std::size_t seedFrame(bool forwards) const;
    /// The width of a 9:16 crop as a share of the frame's.
    double cropFraction() const;
};

/// All below the folder that have a `.gt.csv`, by name.
std::vector<TrackSequence> trackSequences(const MediaBackend& backend, const std::filesystem::path& folder);

/// A method's run through a sequence.
struct TrackRun {
    std::vector<std::optional<SubjectBox>> boxes; ///< by frame; nothing where none was accepted
    SpeedKeyframes keyframes;                     ///< of the framing curve
    double cpuSeconds = 0;                        ///< without decoding
};

/// Sums over frames, of one run or of several.
struct TrackScore {
    double visible = 0;  ///< frames that show the subject
    double inside = 0;   ///< of them, with its centre inside the crop
    double accepted = 0; ///< of them, with a box
    double overlap = 0;  ///< sum of their areas under the success curve
    double absent = 0;   ///< frames that don't show it
    double falseBoxes = 0;
    double wrongBoxes = 0; ///< boxes on visible frames that don't touch the subject
    double keyframes = 0;
    double seconds = 0;
    double squaredJitter = 0; ///< second differences of the crop's position, in pixels of a frame 1920 wide
    double jitterCount = 0;
    double cpuSeconds = 0;
    double frames = 0;

    void add(const TrackScore& other);
};

TrackScore score(const TrackSequence& sequence, const TrackRun& run);

} // namespace flowtide::bench
