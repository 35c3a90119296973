// The walk through the decoded frames.
#include "media/frame_schedule.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace flowtide {

std::int64_t outputFrameCount(double outputDuration, MediaTime frameDuration) {
    return std::max<std::int64_t>(std::llround(outputDuration / frameDuration.seconds()), 1);
}

void HeldFrames::advanceTo(SourceSeconds time) {
    const bool keeps = context_ == Context::kept;
    if (!std::exchange(started_, true)) {
        previous_ = reader_.next();
        next_ = reader_.next();
        if (keeps) after_ = reader_.next();
    }
    if (next_ && next_->time.value <= time.value)
        reader_.skipTo({keeps ? time.value - contextReachSeconds : time.value});
    while (next_ && next_->time.value <= time.value + frameReachedGraceSeconds)
        step();
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
