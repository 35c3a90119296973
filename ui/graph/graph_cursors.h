// Pointer shapes that desktops do not have.
#pragma once

#include <QCursor>

namespace flowtide::graphCursors {

/// A cross with a plus: a press adds a point. `scale`: of the screen.
QCursor addPoint(double scale);

} // namespace flowtide::graphCursors
