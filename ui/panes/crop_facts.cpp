#include "ui/panes/crop_facts.h"

#include "core/crop_plan.h"

namespace flowtide {

CropFacts cropFacts(const FlowtideViewModel& model) {
    const ImportedClip& clip = *model.clip();
    const OutputSize whole{clip.width, clip.height};
    if (!model.framing().isVerticalCropEnabled()) return {CropFacts::State::off, whole};
    if (!clip.preferredTransform.isIdentity()) return {CropFacts::State::rotated, whole};
    VerticalCropSettings shape;
    shape.aspectRatio = widthOverHeight(model.framing().cropAspectRatio());
    const auto plan = CropPlan::forSource(whole, shape, clip.metadata.sampleAspectRatio.seconds());
    if (!plan) return {CropFacts::State::notWider, whole};
    return {CropFacts::State::on, {plan->width, plan->height}};
}

} // namespace flowtide
