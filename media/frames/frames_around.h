// Keeps a clip open, to look at single moments of it together with their neighbours.
#pragma once

#include "core/time.h"
#include "media/cancel_check.h"
#include "media/imported_clip.h"
#include "media/media_io.h"
#include "media/seeking_reader.h"

#include <deque>
#include <memory>
#include <vector>

namespace flowtide {

/// The frames around one source time after another, in any order. What lies between two times that are near each other
/// is decoded once, and frames that no other refers to are left out on the way. One thread at a time; the backend must
/// outlive it.
class FramesAround {
public:
    FramesAround(const MediaBackend& backend, ImportedClip clip, PixelLayout layout);
    FramesAround(const FramesAround&) = delete;
    FramesAround& operator=(const FramesAround&) = delete;

    const ImportedClip& clip() const { return clip_; }
    PixelLayout layout() const { return layout_; }

    /// The frame shown at a time, the one before it and the two after it, in order, as far as there are any. Before the
    /// first frame that one is shown. Throws FlowtideError::readerFailed and exportCancelled; it stays good for others.
    std::vector<TimedFrame> at(SourceSeconds time, const CancelCheck& isCancelled);

private:
    std::size_t countUpTo(double time) const;
    std::size_t countAfter(double time) const;
    bool hasEarlier(double time) const;
    void open();
    void find(double time);
    void readPast(double time);

    const MediaBackend& backend_;
    const ImportedClip clip_;
    const PixelLayout layout_;
    CancelCheck isCancelled_; ///< of the call in progress
    std::unique_ptr<SeekingReader> reader_;
    std::deque<TimedFrame> held_; ///< consecutive frames, the last one that the reader has delivered at the end
    bool startsTrack_ = false;    ///< the first of them is the track's first
    bool endsTrack_ = false;      ///< the last of them is the track's last
};

} // namespace flowtide
