// Steps from frame to frame, leaving out those that nobody will look at.
#include "media/frames/held_frames.h"

#include "media/media_time.h"

#include <utility>

namespace flowtide {

void HeldFrames::advanceTo(SourceSeconds time) {
    if (!std::exchange(started_, true)) {
        previous_ = reader_.next();
        next_ = reader_.next();
        if (context_ == Context::kept) after_ = reader_.next();
    }
    if (next_ && next_->time <= time) skipTo(time);
    while (next_ && next_->time.value <= time.value + frameReachedGraceSeconds)
        step();
}

void HeldFrames::skipTo(SourceSeconds time) {
    if (context_ == Context::none)
        reader_.skipTo(time);
    else if (contextReachSeconds_)
        reader_.skipTo({time.value - *contextReachSeconds_});
}

void HeldFrames::step() {
    if (context_ == Context::none) {
        previous_ = std::move(next_);
        next_ = reader_.next();
        return;
    }
    before_ = std::move(previous_);
    previous_ = std::move(next_);
    next_ = std::move(after_);
    after_ = reader_.next();
}

} // namespace flowtide
