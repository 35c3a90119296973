#include "ui/graph/zoom_lane_geometry.h"

#include <algorithm>

namespace flowtide {

namespace {
constexpr double edgeGrip = 8; ///< pixels
}

std::optional<ZoomHit> zoomHit(double x, const ZoomBlockRules::Blocks& blocks, const TimeAxis& axis) {
    for (const ZoomBlock& block : blocks) {
        const double left = axis.xOf(block.startTime);
        const double right = axis.xOf(block.endTime);
        if (x < left || x > right) continue;
        const double grip = std::min(edgeGrip, (right - left) / 3);
        if (x < left + grip) return ZoomHit{block.id, ZoomPart::startEdge};
        return ZoomHit{block.id, x > right - grip ? ZoomPart::endEdge : ZoomPart::body};
    }
    return {};
}

} // namespace flowtide
