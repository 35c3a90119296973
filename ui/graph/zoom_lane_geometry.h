// What lies under the pointer in the zoom lane.
#pragma once

#include "core/zoom_block_rules.h"
#include "ui/graph/time_axis.h"

#include <optional>

namespace flowtide {

enum class ZoomPart { body, startEdge, endEdge };

struct ZoomHit {
    Uuid block;
    ZoomPart part = ZoomPart::body;
    friend bool operator==(const ZoomHit&, const ZoomHit&) = default;
};

/// Edges are 8 pixels wide, of a narrow block a third of it.
std::optional<ZoomHit> zoomHit(double x, const ZoomBlockRules::Blocks& blocks, const TimeAxis& axis);

} // namespace flowtide
