#include "ui/panes/crop_facts.h"

namespace flowtide {

CropFacts cropFacts(const FlowtideViewModel& model) {
    const ImportedClip& clip = *model.clip();
    const OutputSize whole{clip.width, clip.height};
    if (!model.framing().isVerticalCropEnabled()) return {CropFacts::State::off, whole};
    if (!clip.preferredTransform.isIdentity()) return {CropFacts::State::rotated, whole};
    const auto plan = exportedCrop(clip, model.framing().cropAspectRatio());
    if (!plan) return {CropFacts::State::notWider, whole};
    return {CropFacts::State::on, {plan->width, plan->height}};
}

} // namespace flowtide
