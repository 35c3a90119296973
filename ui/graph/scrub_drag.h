// The pointer moves the playhead.
#pragma once

#include "ui/controls/drag_guard.h"
#include "ui/graph/timeline_context.h"

#include <QMouseEvent>

namespace flowtide {

/// From the press of the left button to its release; Esc brings the playhead back.
class ScrubDrag {
public:
    explicit ScrubDrag(TimelineContext& context)
        : context_(context) {}

    void press(const QMouseEvent& event);
    void move(const QMouseEvent& event);
    void release(const QMouseEvent& event);

private:
    TimelineContext& context_;
    bool isHeld_ = false;
    double before_ = 0; ///< the playhead as a fraction of the clip
    DragGuard guard_{[this] {
        isHeld_ = false;
        context_.model().scrub(before_);
    }};
};

} // namespace flowtide
