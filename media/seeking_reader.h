// Reading pictures from anywhere in a movie, for players.
#pragma once

#include "media/video_frame.h"

#include <optional>

namespace flowtide {

/// Decodes forwards from wherever it is sent, again and again. Times are seconds of the file. Used by one thread at a
/// time; a call that was cancelled leaves it good for seekTo() only.
class SeekingReader {
public:
    virtual ~SeekingReader() = default;
    /// Each frame can be decoded by itself, so that going to any of them costs the same.
    virtual bool everyFrameIsKey() const = 0;
    /// Where decoding has to start for the frame shown at a time, as far as the index tells: this far back, or further.
    virtual double keyFrameAt(double time) const = 0;
    /// Goes to a key frame from which the frame shown at a time can be decoded: next() goes on from there. The first
    /// frame that it then delivers is shown at or before `time`, where the track has one. Ends a skipTo().
    virtual void seekTo(double time) = 0;
    /// Says that frames which end at or before `time` are only passed through. The reader may leave out those that no
    /// other frame needs; they leave gaps between the end of one frame and the beginning of the next.
    virtual void skipTo(double time) = 0;
    /// The next frame in presentation order; nothing at the end. Throws FlowtideError::readerFailed.
    virtual std::optional<SpannedFrame> next() = 0;
};

} // namespace flowtide
