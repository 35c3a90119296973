// The tracker and the simple methods that it is compared with.
#pragma once

#include "bench/track_sequences.h"
#include "media/media_io.h"

namespace flowtide::bench {

/// Each follows what the truth marks in the sequence's first frame, or in its last one backwards.
TrackRun runTracker(const MediaBackend& backend, const TrackSequence& sequence, bool forwards);
/// The box stays where it was drawn.
TrackRun runHeldBox(const MediaBackend& backend, const TrackSequence& sequence, bool forwards);
/// A correlation filter on luma, of one size, that always learns (after Bolme et al., "Visual Object Tracking using
/// Adaptive Correlation Filters", 2010).
TrackRun runGreyFilter(const MediaBackend& backend, const TrackSequence& sequence, bool forwards);

/// CPU milliseconds of the calling thread for each frame, decoding apart.
struct TrackCost {
    double whole = 0;     ///< from the clip's frames
    double reduction = 0; ///< of them, making the pictures that are tracked in
    double frames = 0;
};
TrackCost trackCost(const MediaBackend& backend, const ImportedClip& clip, const SubjectBox& box, double time);

} // namespace flowtide::bench
