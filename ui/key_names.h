// What keys and the machine are called here: one table for each platform.
#pragma once

#include <QString>

namespace flowtide::keyNames {

/// A text that names keys by their signs ("⌥⌘I", "⌘ drag", "⌫"), as people of this platform know them: the text itself
/// on macOS, "Ctrl+Alt+I", "Ctrl drag", "Backspace" elsewhere.
QString local(const QString& signs);

/// What the machine is called in "Saved on %1".
QString thisComputer();
/// What does the decoding, in sentences about codecs.
QString thisSystem();

} // namespace flowtide::keyNames
