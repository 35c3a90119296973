#include "ui/panes/flow_range_state.h"

#include <algorithm>

namespace flowtide {

namespace {

constexpr double leastOverlap = 1e-6; ///< source seconds; ranges that only touch have nothing in common

bool overlaps(const OpticalFlowRange& range, const SourceRange& other) {
    return std::min(range.end, other.upper) - std::max(range.start, other.lower) > leastOverlap;
}

} // namespace

std::vector<FlowRangeState> flowRangeStates(const FlowtideViewModel& model) {
    using Kind = FlowRangeState::Kind;
    const FlowScope& flow = model.flow();
    const PreviewRender& render = model.renders().render();
    const bool showsFlow = flow.frameInterpolation() == FrameInterpolation::opticalFlow;
    const SourceRanges unrendered = model.clip() ? model.renders().previews().unrenderedRanges() : SourceRanges();
    std::vector<FlowRangeState> states;
    for (const OpticalFlowRange& range : flow.opticalFlowRanges()) {
        FlowRangeState state{range};
        const auto& rendering = render.renderingPreviewRange();
        const bool isWanted = std::ranges::any_of(unrendered, [&](const auto& left) { return overlaps(range, left); });
        if (!showsFlow || !flow.isSwitchedOn(range))
            state.kind = Kind::switchedOff;
        else if (rendering && overlaps(range, *rendering))
            state.kind = Kind::rendering;
        else
            state.kind = isWanted ? Kind::notRendered : Kind::rendered;
        if (state.kind == Kind::rendering) state.share = render.previewRenderProgress();
        state.isSelected = flow.selectedOpticalFlowRangeID() == range.id;
        state.canSwitch = showsFlow && !model.exporting().isExporting();
        states.push_back(state);
    }
    return states;
}

PropertySet flowRangeProperties() {
    return properties({Property::clip, Property::trimRange, Property::opticalFlowRanges, Property::frameInterpolation,
                       Property::originalFrameSpans, Property::selectedOpticalFlowRangeID, Property::renderedPreviews,
                       Property::renderingPreviewRange, Property::previewRenderProgress, Property::isExporting});
}

} // namespace flowtide
