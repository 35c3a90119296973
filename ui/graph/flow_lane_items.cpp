#include "ui/graph/flow_lane_items.h"

#include <algorithm>

namespace flowtide {

namespace {

std::optional<SourceRange> common(const SourceRange& a, const SourceRange& b) {
    const SourceRange both{std::max(a.lower, b.lower), std::min(a.upper, b.upper)};
    if (both.upper <= both.lower) return {};
    return both;
}

} // namespace

std::vector<FlowLaneItem> flowLaneItems(const FlowtideViewModel& model) {
    std::vector<FlowLaneItem> items;
    if (!model.clip()) return items;
    const FlowScope& flow = model.flow();
    const RenderAhead& renders = model.renders();
    const SourceRanges rendered = renders.previews().activeRanges();
    const auto& rendering = renders.render().renderingPreviewRange();
    const TimeMap& map = model.curve().timeMap();
    for (const OpticalFlowRange& range : flow.opticalFlowRanges()) {
        const auto kept = common({range.start, range.end}, model.curve().trimRange());
        if (!kept) continue;
        FlowLaneItem item;
        item.id = range.id;
        item.range = *kept;
        item.isOn = flow.frameInterpolation() == FrameInterpolation::opticalFlow && flow.isSwitchedOn(range);
        item.isSelected = flow.selectedOpticalFlowRangeID() == range.id;
        if (item.isOn) {
            for (const SourceRange& each : rendered)
                if (const auto part = common(each, *kept)) item.rendered.push_back(*part);
            const SourceRanges missing = PreviewRanges::unrendered(renders.previews().output(), {*kept}, rendered);
            item.isRendered = !item.rendered.empty() && missing.empty();
            if (rendering) item.rendering = common(*rendering, *kept);
        }
        if (item.rendering) {
            item.share = renders.render().previewRenderProgress();
            const double from = map.outputTime({item.rendering->lower}).value;
            const double to = map.outputTime({item.rendering->upper}).value;
            item.renderedUntil = map.sourceTime(OutputSeconds{from + (to - from) * item.share}).value;
        }
        items.push_back(std::move(item));
    }
    std::sort(items.begin(), items.end(),
              [](const FlowLaneItem& a, const FlowLaneItem& b) { return a.range.lower < b.range.lower; });
    return items;
}

} // namespace flowtide
