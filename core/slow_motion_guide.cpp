// Tells which stored settings count as a smooth-motion threshold.
#include "core/slow_motion_guide.h"

#include <algorithm>
#include <array>

namespace flowtide::SlowMotionGuide {

double motionFrameRateFloor(double storedSetting) {
    constexpr std::array choices{24.0, 25.0, 30.0, 50.0, 60.0};
    constexpr double fallback = 30.0;
    return std::find(choices.begin(), choices.end(), storedSetting) != choices.end() ? storedSetting : fallback;
}

} // namespace flowtide::SlowMotionGuide
