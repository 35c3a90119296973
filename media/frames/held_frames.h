// The decoded frame that each moment of a forward walk through the source shows, and its neighbours.
#pragma once

#include "core/time.h"
#include "media/media_io.h"

#include <optional>

namespace flowtide {

/// Walks forward through a reader's frames, holding the one shown at the current source time and the one after it, and
/// as context those around the two.
class HeldFrames {
public:
    enum class Context { none, kept };

    /// `contextReachSeconds`: how far from a time its context can lie; absent: anywhere, and no frame is left out.
    explicit HeldFrames(VideoReader& reader, Context context = Context::none,
                        std::optional<double> contextReachSeconds = std::nullopt)
        : reader_(reader)
        , context_(context)
        , contextReachSeconds_(contextReachSeconds) {}

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
    void skipTo(SourceSeconds time);
    void step();

    VideoReader& reader_;
    Context context_;
    std::optional<double> contextReachSeconds_;
    std::optional<TimedFrame> before_;
    std::optional<TimedFrame> previous_;
    std::optional<TimedFrame> next_;
    std::optional<TimedFrame> after_;
    bool started_ = false;
};

} // namespace flowtide
