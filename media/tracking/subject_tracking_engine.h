// Follows a subject through a clip, both ways from the frame in which its box was drawn.
#pragma once

#include "core/subject_box.h"
#include "core/subject_track.h"
#include "core/time.h"
#include "media/cancel_check.h"
#include "media/tracking/direction_tracking.h"
#include "media/tracking/kernels.h"

#include <functional>
#include <optional>

namespace flowtide {

class MediaBackend;
struct ImportedClip;
namespace tracking {
struct TimedPicture;
}

/// What a tracking job tells while it runs, on its own thread. Any may be empty; none may block.
struct SubjectTrackingCallbacks {
    /// The share of the range's frames that is done, 0...0.99, every tenth frame.
    std::function<void(double)> progress;
    /// The subject in a frame, as soon as it is sure. Some frames are told of together, when it was lost before.
    std::function<void(const tracking::Sighting&)> sighted;
    /// Every picture once it has been looked at, and where the subject is in it as far as that is sure by then.
    std::function<void(const tracking::TimedPicture&, const std::optional<SubjectBox>&)> looked;
    /// Whether it is being looked for, when that changes.
    std::function<void(bool)> looking;
    CancelCheck isCancelled;
};

class SubjectTrackingEngine {
public:
    /// `instructions` change no result.
    explicit SubjectTrackingEngine(const MediaBackend& backend, InstructionSet instructions = bestInstructionSet())
        : backend_(backend)
        , instructions_(instructions) {}

    /// Follows what `seedBox` (fractions of the frame as displayed) shows in the frame at `seedTime` through `range`.
    /// Blocks; runs on any thread, and the same arguments give the same result. Throws FlowtideError: trackingFailed
    /// with its sentence, exportCancelled when cancelled.
    SubjectTrackResult track(const ImportedClip& clip, SourceSeconds seedTime, const SubjectBox& seedBox,
                             SourceRange range, const SubjectTrackingCallbacks& callbacks = {}) const;

private:
    const MediaBackend& backend_;
    InstructionSet instructions_;
};

} // namespace flowtide
