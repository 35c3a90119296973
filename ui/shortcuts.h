// The keys of the editor: the reference sheet, and which key does what.
#pragma once

#include <QCoreApplication>
#include <QKeyCombination>
#include <QString>
#include <optional>
#include <vector>

namespace flowtide {

/// What a key, a menu or a button asks the window for.
enum class Command {
    open,
    save,
    saveCopy,
    closeProject,
    exportClip,
    quit,
    toggleSidebar,
    toggleInspector,
    showShortcuts,
    playPause,
    shuttleBackward,
    shuttleStop,
    shuttleForward,
    previousFrame,
    nextFrame,
    previousPoint,
    nextPoint,
    fullScreen,
    zoomIn,
    zoomOut,
    zoomToFit,
    panLeft,
    panRight,
    trimStart,
    trimEnd,
    addZoom,
    deleteZoom,
    toggleCrop,
    switchCurve,
    deletePoints,
    undo,
    redo,
    copyPoints,
    pastePoints,
    selectAllPoints,
    insertPoint,
};

struct ShortcutItem {
    QString keys;   ///< as this platform names them
    QString action; ///< what they do
};

struct ShortcutGroup {
    QString title;
    std::vector<ShortcutItem> items;
};

/// Where a key works.
enum class KeyScope {
    everywhere, ///< but while something is typed
    workspace   ///< unless the focused control has a use for it
};

struct KeyBinding {
    Command command;
    KeyScope scope;
};

class Shortcuts {
    Q_DECLARE_TR_FUNCTIONS(Shortcuts)

public:
    /// The reference sheet, in its order.
    static std::vector<ShortcutGroup> sheet();
    /// What a key does; nothing for keys without a binding.
    static std::optional<KeyBinding> bindingFor(QKeyCombination key);
};

} // namespace flowtide
