// Edits of where in-between frames are made.
#pragma once

#include "editor/edit_session.h"

namespace flowtide {

/// Without a clip, or for an unknown id, they do nothing.
class FlowEdits {
public:
    explicit FlowEdits(EditSession& session)
        : session_(session) {}

    /// Switches a range on, or off in favour of original frames. One step of history.
    void setOpticalFlow(bool enabled, const Uuid& rangeID);
    /// Selecting is no edit; without a selection there is nothing to loop over.
    void selectRange(std::optional<Uuid> id);
    /// For all ranges; changed without history.
    void setFrameInterpolation(FrameInterpolation interpolation);

private:
    EditSession& session_;
};

} // namespace flowtide
