// When a command can be given, and what happens to it on its way.
#pragma once

#include "ui/shortcuts.h"

namespace flowtide::commandRules {

/// It works on what the workspace shows: a clip, or a project that asks for its clip.
bool needsProject(Command command);
/// It works on a clip.
bool needsClip(Command command);
/// It needs the window itself: it cannot be done over the full-screen preview.
bool leavesFullScreen(Command command);
/// A key that is held down does it again and again.
bool repeats(Command command);

} // namespace flowtide::commandRules
