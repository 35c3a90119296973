// The frame-rate threshold that separates smooth motion from visible stutter.
#pragma once

namespace flowtide::SlowMotionGuide {

/// Where the user's setting is stored.
constexpr const char* settingKey = "smoothMotionFrameRate";

/// The smooth-motion threshold, in unique source frames per output second, for a stored setting (0 when unset):
/// the setting when it is 24, 25, 30, 50 or 60, else 30.
double motionFrameRateFloor(double storedSetting);

} // namespace flowtide::SlowMotionGuide
