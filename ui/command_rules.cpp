#include "ui/command_rules.h"

namespace flowtide::commandRules {

bool needsProject(Command command) {
    return command != Command::open && command != Command::showShortcuts && command != Command::quit;
}

bool needsClip(Command command) {
    return needsProject(command) && command != Command::toggleSidebar;
}

bool isClipSeen(const FlowtideViewModel& model) {
    return model.clip() && !model.clips().pendingRelinkProject();
}

bool leavesFullScreen(Command command) {
    switch (command) {
    case Command::open:
    case Command::saveCopy:
    case Command::closeProject:
    case Command::exportClip:
    case Command::quit:
    case Command::showShortcuts:
        return true;
    default:
        return false;
    }
}

bool repeats(Command command) {
    switch (command) {
    case Command::previousFrame:
    case Command::nextFrame:
    case Command::previousPoint:
    case Command::nextPoint:
    case Command::zoomIn:
    case Command::zoomOut:
    case Command::panLeft:
    case Command::panRight:
    case Command::undo:
    case Command::redo:
        return true;
    default:
        return false;
    }
}

} // namespace flowtide::commandRules
