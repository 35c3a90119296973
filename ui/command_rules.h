// When a command can be given, and what happens to it on its way.
#pragma once

#include "editor/flowtide_view_model.h"
#include "ui/shortcuts.h"

namespace flowtide::commandRules {

/// It works on what the workspace shows: a clip, or a project that asks for its clip.
bool needsProject(Command command);
/// It works on a clip, one that is seen.
bool needsClip(Command command);
/// Whether a clip is seen: while a project asks for its missing clip, one that is still open lies below.
bool isClipSeen(const FlowtideViewModel& model);
/// It needs the window itself: it cannot be done over the full-screen preview.
bool leavesFullScreen(Command command);
/// A key that is held down does it again and again.
bool repeats(Command command);

} // namespace flowtide::commandRules
