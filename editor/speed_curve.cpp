// The curve's state.
#include "editor/speed_curve.h"

#include <algorithm>
#include <utility>

namespace flowtide {

SpeedCurve::SpeedCurve(ChangeNotifier& notifier)
    : keyframes_(notifier, Property::keyframes)
    , smoothing_(notifier, Property::curveSmoothing, defaultSmoothing)
    , trimRange_(notifier, Property::trimRange) {}

CurveDomain SpeedCurve::domain() const {
    return {duration_, CurveEngine::speedLimits, realTimeSpeed, smoothing()};
}

std::optional<SpeedKeyframes> SpeedCurve::bounded(SpeedKeyframes points) const {
    return boundedPoints(std::move(points), trimRange(), domain());
}

double SpeedCurve::speedAt(double time) const {
    return playedValue(keyframes(), time, trimRange(), domain());
}

bool SpeedCurve::isIdentity() const {
    const SpeedKeyframes played =
        KeyframeRules::curveForSourceRange(keyframes(), duration_, trimRange(), realTimeSpeed);
    return std::all_of(played.begin(), played.end(),
                       [](const SpeedKeyframe& keyframe) { return keyframe.speed == realTimeSpeed; });
}

const TimeMap& SpeedCurve::timeMap() const {
    if (!cachedTimeMap_ || cachedTimeMap_->keyframes != keyframes() || cachedTimeMap_->smoothing != smoothing() ||
        cachedTimeMap_->sourceRange != trimRange())
        cachedTimeMap_ = CachedMap{keyframes(), smoothing(), trimRange(),
                                   CurveEngine::buildTimeMap(keyframes(), duration_, trimRange(),
                                                             CurveEngine::exportTimeMapSteps, smoothing())};
    return cachedTimeMap_->map;
}

void SpeedCurve::setKeyframes(SpeedKeyframes keyframes) {
    keyframes_.set(std::move(keyframes));
}

void SpeedCurve::setSmoothing(double smoothing) {
    smoothing_.set(smoothing);
}

void SpeedCurve::setTrim(SourceRange trim, SpeedKeyframes keyframes) {
    trimRange_.set(trim);
    keyframes_.set(std::move(keyframes));
}

void SpeedCurve::reset(double duration) {
    duration_ = duration;
    const SourceRange whole{0, duration};
    smoothing_.set(defaultSmoothing);
    trimRange_.set(whole);
    keyframes_.set(duration > 0 ? KeyframeRules::curveForSourceRange({}, duration, whole, realTimeSpeed)
                                : SpeedKeyframes{});
    cachedTimeMap_.reset();
}

} // namespace flowtide
