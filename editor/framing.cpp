// The framing's state and its glide table.
#include "editor/framing.h"

#include <tuple>
#include <utility>

namespace flowtide {

std::optional<CropPlan> exportedCrop(const ImportedClip& clip, CropAspectRatio ratio) {
    if (!clip.preferredTransform.isIdentity()) return std::nullopt;
    return CropPlan::forSource({clip.width, clip.height}, {widthOverHeight(ratio), {}, {}},
                               clip.metadata.sampleAspectRatio.seconds());
}

namespace {

/// What is played over the trim: the glide would be drawn to points outside it as if they lay at its ends.
SpeedKeyframes playedKeyframes(const SpeedKeyframes& keyframes, const SpeedCurve& curve) {
    if (keyframes.empty()) return {};
    return KeyframeRules::curveForSourceRange(keyframes, curve.duration(), curve.trimRange(), centeredCrop);
}

} // namespace

Framing::Framing(ChangeNotifier& notifier, const SpeedCurve& curve)
    : curve_(curve)
    , centerKeyframes_(notifier, Property::centerKeyframes)
    , centerSmoothing_(notifier, Property::centerSmoothing, defaultGlide)
    , isVerticalCropEnabled_(notifier, Property::isVerticalCropEnabled)
    , cropAspectRatio_(notifier, Property::cropAspectRatio)
    , lockCropCenter_(notifier, Property::lockCropCenter, true)
    , isCropDragActive_(notifier, Property::isCropDragActive) {}

CurveDomain Framing::domain() const {
    constexpr double smoothing = 1; // the framing curve is always drawn as a full curve
    return {curve_.duration(), {leftmostCrop, rightmostCrop}, centeredCrop, smoothing};
}

std::optional<SpeedKeyframes> Framing::bounded(SpeedKeyframes points) const {
    return boundedPoints(std::move(points), curve_.trimRange(), domain());
}

std::optional<VerticalCropSettings> Framing::exportSettings() const {
    if (!isVerticalCropEnabled()) return std::nullopt;
    return VerticalCropSettings{widthOverHeight(cropAspectRatio()), playedKeyframes(centerKeyframes(), curve_),
                                centerSmoothing()};
}

double Framing::liveCropTravel(double time) const {
    return playedValue(centerKeyframes(), time, curve_.trimRange(), domain());
}

double Framing::glidedCropTravel(double time) const {
    const double glide = centerSmoothing();
    const double smoothing = curve_.smoothing();
    const SourceRange trim = curve_.trimRange();
    // Of references: this is asked for every column of the graph.
    const auto key = std::tie(centerKeyframes(), glide, curve_.keyframes(), smoothing, trim);
    if (!glideTableKey_ || *glideTableKey_ != key) {
        glideTableSamples_ =
            glideTable(playedKeyframes(centerKeyframes(), curve_), glide, curve_.timeMap(), glideTableStep_);
        glideTableKey_ = key;
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
