// The framing's state and its glide table.
#include "editor/framing.h"

#include <utility>

namespace flowtide {

std::optional<CropPlan> exportedCrop(const ImportedClip& clip, CropAspectRatio ratio) {
    if (!clip.preferredTransform.isIdentity()) return std::nullopt;
    return CropPlan::forSource({clip.width, clip.height}, {widthOverHeight(ratio), {}, {}},
                               clip.metadata.sampleAspectRatio.seconds());
}

Framing::Framing(ChangeNotifier& notifier, const SpeedCurve& curve)
    : curve_(curve)
    , centerKeyframes_(notifier, Property::centerKeyframes)
    , centerSmoothing_(notifier, Property::centerSmoothing, defaultGlide)
    , isVerticalCropEnabled_(notifier, Property::isVerticalCropEnabled)
    , cropAspectRatio_(notifier, Property::cropAspectRatio)
    , lockCropCenter_(notifier, Property::lockCropCenter, true)
    , isCropDragActive_(notifier, Property::isCropDragActive) {}

CurveDomain Framing::domain() const {
    constexpr double smoothing = 1;     // the framing curve is always drawn as a full curve
    constexpr bool isHeldAtEnds = true; // a track ends with its last frame, and must not leave its subject then
    return {curve_.duration(), {leftmostCrop, rightmostCrop}, centeredCrop, smoothing, isHeldAtEnds};
}

std::optional<SpeedKeyframes> Framing::bounded(SpeedKeyframes points) const {
    return boundedPoints(std::move(points), curve_.trimRange(), domain());
}

std::optional<VerticalCropSettings> Framing::exportSettings() const {
    if (!isVerticalCropEnabled()) return std::nullopt;
    return VerticalCropSettings{widthOverHeight(cropAspectRatio()),
                                playedCurve(centerKeyframes(), curve_.trimRange(), domain()), centerSmoothing()};
}

double Framing::liveCropTravel(double time) const {
    return playedValue(centerKeyframes(), time, curve_.trimRange(), domain());
}

/// Compares in place: this is asked for every column of the graph.
bool Framing::isGlideTableCurrent() const {
    return glideTableKey_ && glideTableKey_->centerKeyframes == centerKeyframes() &&
           glideTableKey_->glide == centerSmoothing() && glideTableKey_->speedKeyframes == curve_.keyframes() &&
           glideTableKey_->speedSmoothing == curve_.smoothing() && glideTableKey_->trimRange == curve_.trimRange();
}

double Framing::glidedCropTravel(double time) const {
    if (!isGlideTableCurrent()) {
        // Points outside the trim would draw the glide as if they lay at its ends.
        glideTableSamples_ = glideTable(playedCurve(centerKeyframes(), curve_.trimRange(), domain()), centerSmoothing(),
                                        curve_.timeMap(), glideTableStep_);
        glideTableKey_ = {centerKeyframes(), centerSmoothing(), curve_.keyframes(), curve_.smoothing(),
                          curve_.trimRange()};
    }
    if (glideTableSamples_.size() < 2) return liveCropTravel(time);
    return glidedCenter(glideTableSamples_, {time}, curve_.timeMap(), glideTableStep_);
}

void Framing::setCenterKeyframes(SpeedKeyframes keyframes) {
    centerKeyframes_.set(std::move(keyframes));
}
void Framing::setCenterSmoothing(double glide) {
    centerSmoothing_.set(glide);
}
void Framing::setVerticalCropEnabled(bool enabled) {
    isVerticalCropEnabled_.set(enabled);
}
void Framing::setCropAspectRatio(CropAspectRatio ratio) {
    cropAspectRatio_.set(ratio);
}
void Framing::setLockCropCenter(bool locked) {
    lockCropCenter_.set(locked);
}
void Framing::setCropDragActive(bool active) {
    isCropDragActive_.set(active);
}

void Framing::reset(double frameDuration) {
    glideTableKey_.reset();
    glideTableStep_ = frameDuration;
    const double duration = curve_.duration();
    centerKeyframes_.set(duration > 0
                             ? KeyframeRules::curveForSourceRange({}, duration, curve_.trimRange(), centeredCrop)
                             : SpeedKeyframes{});
    centerSmoothing_.set(defaultGlide);
    isVerticalCropEnabled_.set(false);
    cropAspectRatio_.set(CropAspectRatio::nineBySixteen);
    lockCropCenter_.set(true);
    isCropDragActive_.set(false);
}

} // namespace flowtide
