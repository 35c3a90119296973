// What the lane of in-between frames shows of a session.
#pragma once

#include "editor/flowtide_view_model.h"

#include <optional>
#include <vector>

namespace flowtide {

struct FlowLaneItem {
    Uuid id;
    SourceRange range; ///< within the trim
    bool isOn = true;
    bool isSelected = false;
    SourceRanges rendered;                ///< parts of the range
    bool isRendered = false;              ///< all of it
    std::optional<SourceRange> rendering; ///< the part that is being rendered
    double renderedUntil = 0;             ///< source seconds: how far that is
    double share = 0;                     ///< 0...1 of it

    friend bool operator==(const FlowLaneItem&, const FlowLaneItem&) = default;
};

/// In order of time.
std::vector<FlowLaneItem> flowLaneItems(const FlowtideViewModel& model);

} // namespace flowtide
