// Arithmetic on exact fractions, and the frame intervals that nominal rates stand for.
#include "media/media_time.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace flowtide {

MediaTime MediaTime::reduced(std::int64_t numerator, std::int64_t denominator) {
    if (denominator == 0) return {};
    if (denominator < 0) {
        numerator = -numerator;
        denominator = -denominator;
    }
    const std::int64_t divisor = std::gcd(numerator, denominator);
    return divisor == 0 ? MediaTime{} : MediaTime{numerator / divisor, denominator / divisor};
}

double MediaTime::secondsTimes(std::int64_t count) const {
    return static_cast<double>(count * numerator) / static_cast<double>(denominator);
}

MediaTime nominalFrameDuration(double frameRate) {
    const double rate = std::max(frameRate, 1.0);
    const std::int64_t ntsc = std::llround(rate * 1001.0 / 1000.0);
    if (ntsc > 0 && std::abs(rate - static_cast<double>(ntsc) * 1000.0 / 1001.0) < frameRateTolerance)
        return MediaTime::reduced(1001, ntsc * 1000);
    const std::int64_t whole = std::llround(rate);
    if (std::abs(rate - static_cast<double>(whole)) < frameRateTolerance) return MediaTime::reduced(1, whole);
    return MediaTime::reduced(100, std::llround(rate * 100.0));
}

std::int64_t outputFrameCount(double outputDuration, MediaTime frameDuration) {
    return std::max<std::int64_t>(std::llround(outputDuration / frameDuration.seconds()), 1);
}

} // namespace flowtide
