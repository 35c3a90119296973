// The decoded frame that each moment of a forward walk through the source shows, and its neighbours.
#pragma once

#include "core/time.h"
#include "media/media_io.h"

#include <optional>

namespace flowtide {

/// How far around a range a reader has to be opened, in seconds, so that frames have their neighbours as context even
/// at its ends, whether the range is rendered alone or inside a longer one.
constexpr double contextReachSeconds = 0.25;

/// Walks forward through a reader's frames, holding the one shown at the current source time and the one after it, and
/// as context those around the two.
class HeldFrames {
public:
    enum class Context { none, kept };

    explicit HeldFrames(VideoReader& reader, Context context = Context::none)
        : reader_(reader)
        , context_(context) {}

    /// Moves to a source time; times may stand still but never go back.
    void advanceTo(SourceSeconds time);

    /// The last frame at or before the current time; before the first frame, the first one. Nothing when the reader
    /// has no frame at all.
    const std::optional<TimedFrame>& previous() const { return previous_; }
    /// The first frame after the current time; nothing past the last one.
    const std::optional<TimedFrame>& next() const { return next_; }
    /// The frames before previous() and after next(); nothing without context and beyond the ends.
    const std::optional<TimedFrame>& before() const { return before_; }
    const std::optional<TimedFrame>& after() const { return after_; }

private:
    void step();

    VideoReader& reader_;
    Context context_;
    std::optional<TimedFrame> before_;
    std::optional<TimedFrame> previous_;
    std::optional<TimedFrame> next_;
    std::optional<TimedFrame> after_;
    bool started_ = false;
};

} // namespace flowtide
