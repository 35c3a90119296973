// What there is to say about each Optical Flow range.
#pragma once

#include "editor/flowtide_view_model.h"

#include <vector>

namespace flowtide {

struct FlowRangeState {
    enum class Kind { notRendered, rendering, rendered, switchedOff };

    OpticalFlowRange range;
    Kind kind = Kind::notRendered;
    double share = 0; ///< of the part that is being rendered, 0...1
    bool isSelected = false;
    bool canSwitch = true; ///< not while exporting, and not while original frames are shown everywhere

    friend bool operator==(const FlowRangeState&, const FlowRangeState&) = default;
};

/// In order of time.
std::vector<FlowRangeState> flowRangeStates(const FlowtideViewModel& model);
/// What they depend on.
PropertySet flowRangeProperties();

} // namespace flowtide
