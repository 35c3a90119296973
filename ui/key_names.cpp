#include "ui/key_names.h"

#include <QCoreApplication>
#include <QStringList>

namespace flowtide::keyNames {

#ifdef Q_OS_MACOS

QString local(const QString& signs) {
    return signs;
}

QString thisComputer() {
    return QCoreApplication::translate("KeyNames", "your Mac");
}

QString thisSystem() {
    return QStringLiteral("macOS");
}

#else

namespace {

/// The modifiers before a key, in the order in which this platform says them. "⌃⌘" is Ctrl+Alt: Ctrl stands for ⌘, and
/// no key is pressed twice.
QString modifiers(const QString& signs) {
    QStringList names;
    const bool hasCommand = signs.contains(u'⌘');
    if (hasCommand || signs.contains(u'⌃')) names << QCoreApplication::translate("KeyNames", "Ctrl");
    if (signs.contains(u'⌥') || (hasCommand && signs.contains(u'⌃')))
        names << QCoreApplication::translate("KeyNames", "Alt");
    if (signs.contains(u'⇧')) names << QCoreApplication::translate("KeyNames", "Shift");
    return names.join(u'+');
}

bool isModifier(QChar character) {
    return character == u'⌘' || character == u'⌃' || character == u'⌥' || character == u'⇧';
}

} // namespace

QString local(const QString& signs) {
    QString text;
    for (qsizetype at = 0; at < signs.size();) {
        if (signs[at] == u'⌫') {
            text += QCoreApplication::translate("KeyNames", "Backspace");
            ++at;
            continue;
        }
        qsizetype end = at;
        while (end < signs.size() && isModifier(signs[end]))
            ++end;
        if (end == at) {
            text += signs[at++];
            continue;
        }
        text += modifiers(signs.mid(at, end - at));
        // "⌘O" is pressed together, "⌘ drag" is done while it is held.
        if (end < signs.size() && !signs[end].isSpace() && signs[end] != u'-') text += u'+';
        at = end;
    }
    return text;
}

QString thisComputer() {
    return QCoreApplication::translate("KeyNames", "this computer");
}

QString thisSystem() {
    return thisComputer();
}

#endif

} // namespace flowtide::keyNames
