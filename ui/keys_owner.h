// Which keys a focused widget leaves to the editor.
#pragma once

#include <QVariant>
#include <QWidget>

namespace flowtide {

enum class KeysOwner {
    control, ///< Space, arrows and Tab are its own
    lane,    ///< Tab alone
    editor   ///< none: the graph, the viewer
};

/// Widgets are controls unless they say otherwise.
inline void setKeysOwner(QWidget& widget, KeysOwner owner) {
    widget.setProperty("flowtide.keysOwner", static_cast<int>(owner));
}

/// No widget, and the window itself, leave every key to the editor.
inline KeysOwner keysOwner(const QWidget* focused) {
    if (!focused || focused->isWindow()) return KeysOwner::editor;
    const QVariant owner = focused->property("flowtide.keysOwner");
    return owner.isValid() ? static_cast<KeysOwner>(owner.toInt()) : KeysOwner::control;
}

} // namespace flowtide
