// Sizes the crop, and computes its offsets from the framing curve, the glide and the time map.
#include "core/crop_plan.h"

#include "core/crop_glide.h"
#include "core/curve_engine.h"
#include "core/keyframe_rules.h"

#include <algorithm>
#include <cmath>

namespace flowtide {

namespace {

constexpr CurveEngine::Limits wholeTravel{leftmostCrop, rightmostCrop};

/// Rounds to the nearest even number, halves away from zero.
std::int64_t evenRounded(double value) {
    return 2 * std::llround(value / 2);
}

} // namespace

double cropCenter(const SpeedKeyframes& keyframes, SourceSeconds time) {
    return keyframes.empty() ? centeredCrop : CurveEngine::value(time.value, keyframes, 1, wholeTravel);
}

std::vector<double> glideTable(const SpeedKeyframes& keyframes, double glide, const TimeMap& timeMap,
                               double frameDuration) {
    const auto count = std::max<std::int64_t>(std::llround(timeMap.outputDuration() / frameDuration), 1);
    std::vector<double> raw;
    raw.reserve(static_cast<std::size_t>(count));
    std::size_t cursor = 0;
    for (std::int64_t k = 0; k < count; ++k)
        raw.push_back(
            cropCenter(keyframes, timeMap.sourceTime(OutputSeconds{static_cast<double>(k) * frameDuration}, cursor)));
    std::vector<CropGlide::Anchor> anchors;
    for (const SpeedKeyframe& keyframe : keyframes) {
        const double output = timeMap.outputTime(SourceSeconds{keyframe.time}).value;
        const auto index = std::llround(output / frameDuration);
        if (index >= 0) anchors.push_back({static_cast<std::size_t>(index), keyframe.speed});
    }
    return CropGlide::smoothTrajectory(raw, frameDuration, anchors, glide);
}

double glidedCenter(const std::vector<double>& centers, SourceSeconds time, const TimeMap& timeMap,
                    double frameDuration) {
    const auto last = static_cast<double>(centers.size() - 1);
    const double position = std::clamp(timeMap.outputTime(time).value / frameDuration, 0.0, last);
    const auto k = static_cast<std::size_t>(position);
    const std::size_t next = std::min(k + 1, centers.size() - 1);
    const double fraction = position - static_cast<double>(k);
    return (1 - fraction) * centers[k] + fraction * centers[next];
}

std::int64_t CropPlan::SourceFrameCrops::offsetAt(SourceSeconds time, double frameDuration) const {
    const double position = time.value / frameDuration;
    const double whole = std::floor(position);
    const auto last = static_cast<std::int64_t>(cropX.size()) - 1;
    const auto entry = [&](std::int64_t frame) {
        const auto index = std::clamp<std::int64_t>(frame - firstFrameNumber, 0, last);
        return static_cast<double>(cropX[static_cast<std::size_t>(index)]);
    };
    const auto frame = static_cast<std::int64_t>(whole);
    const double fraction = position - whole;
    return evenRounded(entry(frame) + (entry(frame + 1) - entry(frame)) * fraction);
}

std::optional<CropPlan> CropPlan::forSource(OutputSize source, const VerticalCropSettings& settings,
                                            double pixelAspectRatio) {
    const double wanted = std::floor(settings.aspectRatio * static_cast<double>(source.height) / pixelAspectRatio);
    // Nothing that is wider still crops anything; this also keeps the conversion below in range.
    if (!(wanted <= static_cast<double>(source.width) + 1)) return std::nullopt;
    const std::int64_t cropWidth = wanted < 2 ? 2 : static_cast<std::int64_t>(wanted) / 2 * 2;
    if (cropWidth >= source.width) return std::nullopt;
    CropPlan plan;
    plan.width = cropWidth;
    plan.height = source.height / 2 * 2;
    plan.maxOffsetX = source.width - cropWidth;
    plan.keyframes = settings.centerKeyframes;
    sortByTime(plan.keyframes);
    plan.glide = settings.smoothing;
    return plan;
}

CropPlan::SourceFrameCrops CropPlan::cropXBySourceFrame(const TimeMap& timeMap, double frameDuration) const {
    const std::vector<double> centers = glideTable(keyframes, glide, timeMap, frameDuration);
    const SourceRange range = timeMap.sourceRange();
    SourceFrameCrops crops;
    crops.firstFrameNumber = static_cast<std::int64_t>(std::floor(range.lower / frameDuration));
    const auto lastFrameNumber = static_cast<std::int64_t>(std::ceil(range.upper / frameDuration));
    for (std::int64_t frame = crops.firstFrameNumber; frame <= lastFrameNumber; ++frame) {
        const SourceSeconds time{static_cast<double>(frame) * frameDuration};
        const double center = glidedCenter(centers, time, timeMap, frameDuration);
        crops.cropX.push_back(
            std::clamp<std::int64_t>(evenRounded(center * static_cast<double>(maxOffsetX)), 0, maxOffsetX / 2 * 2));
    }
    return crops;
}

} // namespace flowtide
