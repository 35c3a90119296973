// The choice between decoding on and seeking.
#include "media/player/decode_plan.h"

#include "media/media_time.h"

#include <algorithm>

namespace flowtide {

DecodePlan planDecode(const MissingStretch& missing, std::optional<double> position,
                      const std::function<double(double)>& keyFrameAt) {
    DecodePlan plan;
    plan.from = missing.direction > 0 ? missing.time
                                      : std::min(std::max(missing.time - missing.reach, missing.floor), missing.time);
    // Seeking pays past frames that have not been decoded yet; within a group of pictures it would only repeat work.
    plan.seeks = !position || *position > plan.from + frameReachedGraceSeconds ||
                 keyFrameAt(plan.from) > *position + frameReachedGraceSeconds;
    return plan;
}

} // namespace flowtide
