#include "ui/shortcuts.h"

#include "ui/key_names.h"

#include <algorithm>
#include <array>

namespace flowtide {

namespace {

ShortcutItem item(const QString& keys, const QString& action) {
    return {keyNames::local(keys), keyNames::local(action)};
}

struct Bound {
    QKeyCombination key;
    Command command;
    KeyScope scope;
};

constexpr std::array bindings{
    Bound{Qt::CTRL | Qt::Key_O, Command::open, KeyScope::everywhere},
    Bound{Qt::CTRL | Qt::Key_S, Command::save, KeyScope::everywhere},
    Bound{Qt::CTRL | Qt::SHIFT | Qt::Key_S, Command::saveCopy, KeyScope::everywhere},
    Bound{Qt::CTRL | Qt::Key_W, Command::closeProject, KeyScope::everywhere},
    Bound{Qt::CTRL | Qt::Key_E, Command::exportClip, KeyScope::everywhere},
    Bound{Qt::CTRL | Qt::Key_Q, Command::quit, KeyScope::everywhere},
#ifdef Q_OS_MACOS
    Bound{Qt::META | Qt::CTRL | Qt::Key_S, Command::toggleSidebar, KeyScope::everywhere},
#else
    Bound{Qt::CTRL | Qt::ALT | Qt::Key_S, Command::toggleSidebar, KeyScope::everywhere},
#endif
    Bound{Qt::CTRL | Qt::ALT | Qt::Key_I, Command::toggleInspector, KeyScope::everywhere},
    Bound{Qt::Key_Question, Command::showShortcuts, KeyScope::everywhere},
    Bound{Qt::SHIFT | Qt::Key_Question, Command::showShortcuts, KeyScope::everywhere},
    Bound{Qt::Key_Space, Command::playPause, KeyScope::workspace},
    Bound{Qt::Key_J, Command::shuttleBackward, KeyScope::everywhere},
    Bound{Qt::Key_K, Command::shuttleStop, KeyScope::everywhere},
    Bound{Qt::Key_L, Command::shuttleForward, KeyScope::everywhere},
    Bound{Qt::Key_Left, Command::previousFrame, KeyScope::workspace},
    Bound{Qt::Key_Right, Command::nextFrame, KeyScope::workspace},
    Bound{Qt::Key_Up, Command::previousPoint, KeyScope::workspace},
    Bound{Qt::Key_Down, Command::nextPoint, KeyScope::workspace},
    Bound{Qt::CTRL | Qt::Key_F, Command::fullScreen, KeyScope::everywhere},
    Bound{Qt::Key_Plus, Command::zoomIn, KeyScope::everywhere},
    Bound{Qt::SHIFT | Qt::Key_Plus, Command::zoomIn, KeyScope::everywhere},
    Bound{Qt::Key_Equal, Command::zoomIn, KeyScope::everywhere},
    Bound{Qt::CTRL | Qt::Key_Plus, Command::zoomIn, KeyScope::everywhere},
    Bound{Qt::CTRL | Qt::SHIFT | Qt::Key_Plus, Command::zoomIn, KeyScope::everywhere},
    Bound{Qt::CTRL | Qt::Key_Equal, Command::zoomIn, KeyScope::everywhere},
    Bound{Qt::Key_Minus, Command::zoomOut, KeyScope::everywhere},
    Bound{Qt::CTRL | Qt::Key_Minus, Command::zoomOut, KeyScope::everywhere},
    Bound{Qt::SHIFT | Qt::Key_Z, Command::zoomToFit, KeyScope::everywhere},
    Bound{Qt::Key_Backslash, Command::zoomToFit, KeyScope::everywhere},
    Bound{Qt::SHIFT | Qt::Key_Left, Command::panLeft, KeyScope::workspace},
    Bound{Qt::SHIFT | Qt::Key_Right, Command::panRight, KeyScope::workspace},
    Bound{Qt::Key_Q, Command::trimStart, KeyScope::everywhere},
    Bound{Qt::Key_W, Command::trimEnd, KeyScope::everywhere},
    Bound{Qt::Key_Z, Command::addZoom, KeyScope::everywhere},
    Bound{Qt::Key_Backspace, Command::deleteZoom, KeyScope::everywhere},
    Bound{Qt::Key_V, Command::toggleCrop, KeyScope::everywhere},
    Bound{Qt::Key_Tab, Command::switchCurve, KeyScope::workspace},
    Bound{Qt::Key_Delete, Command::deletePoints, KeyScope::everywhere},
    Bound{Qt::CTRL | Qt::Key_Z, Command::undo, KeyScope::everywhere},
    Bound{Qt::CTRL | Qt::SHIFT | Qt::Key_Z, Command::redo, KeyScope::everywhere},
    Bound{Qt::CTRL | Qt::Key_Y, Command::redo, KeyScope::everywhere},
    Bound{Qt::CTRL | Qt::Key_C, Command::copyPoints, KeyScope::everywhere},
    Bound{Qt::CTRL | Qt::Key_V, Command::pastePoints, KeyScope::everywhere},
    Bound{Qt::CTRL | Qt::Key_A, Command::selectAllPoints, KeyScope::everywhere},
    Bound{Qt::Key_Insert, Command::insertPoint, KeyScope::everywhere},
};

} // namespace

std::vector<ShortcutGroup> Shortcuts::sheet() {
    return {
        {tr("Workspace"),
         {item(tr("⌘O"), tr("Open a clip or project")), item(tr("⌘S"), tr("Save project")),
          item(tr("⌃⌘S"), tr("Show or hide projects")), item(tr("⌥⌘I"), tr("Show or hide inspector"))}},
        {tr("Playback"),
         {item(tr("Space"), tr("Play or pause")), item(tr("J / K / L"), tr("Shuttle backward, stop, or forward")),
          item(tr("← / →"), tr("Move one output frame")), item(tr("↑ / ↓"), tr("Previous or next curve point")),
          item(tr("⌘F"), tr("Full-screen preview (Esc or ⌘F exits)")),
          item(tr("↑ / ↓ (full screen)"), tr("Jump to start or end"))}},
        {tr("Timeline"),
         {item(tr("Drag graph"), tr("Scrub the playhead")), item(tr("⌘+ / ⌘−"), tr("Zoom in or out")),
          item(tr("⇧← / ⇧→"), tr("Pan left or right")), item(tr("⇧Z or \\"), tr("Zoom to fit")),
          item(tr("⌥ scroll"), tr("Zoom around the pointer")), item(tr("⇧ scroll"), tr("Pan the visible range"))}},
        {tr("Trimming"),
         {item(tr("Q"), tr("Set trim start to the playhead")), item(tr("W"), tr("Set trim end to the playhead"))}},
        {tr("Zoom"),
         {item(tr("Z"), tr("Add a zoom block at the playhead")),
          item(tr("Drag lane"), tr("Create, move, or resize zoom blocks")),
          item(tr("⌫"), tr("Delete the selected zoom block")),
          item(tr("Drag target"), tr("Set the zoom's focal point on the video"))}},
        {tr("Social crop"),
         {item(tr("V"), tr("Toggle the crop (9:16, 1:1, or 4:5)")),
          item(tr("Tab"), tr("Switch between Speed and Framing curves")),
          item(tr("Drag preview"), tr("Keyframe the framing at the playhead"))}},
        {tr("Curve editing"),
         {item(tr("Click / drag"), tr("Add or move a curve point")),
          item(tr("⌥ click"), tr("Add a point at the pointer speed")),
          item(tr("⇧ drag"), tr("Marquee-select curve points")), item(tr("⌘ drag"), tr("Bypass speed snapping")),
          item(tr("Delete"), tr("Delete selected points")), item(tr("⌘Z / ⇧⌘Z"), tr("Undo or redo"))}},
    };
}

std::optional<KeyBinding> Shortcuts::bindingFor(QKeyCombination key) {
    const auto bound =
        std::find_if(bindings.begin(), bindings.end(), [&](const Bound& binding) { return binding.key == key; });
    if (bound == bindings.end()) return {};
    return KeyBinding{bound->command, bound->scope};
}

} // namespace flowtide
