#include "ui/release_notes.h"

#include <QCoreApplication>

namespace flowtide::releaseNotes {

QString version() {
    return QStringLiteral(FLOWTIDE_VERSION);
}

QStringList notes() {
    return {
        QCoreApplication::translate(
            "ReleaseNotes",
            "Change the speed of a clip along a smooth curve, and see how long it plays while you drag."),
        QCoreApplication::translate(
            "ReleaseNotes",
            "Where the curve runs slow, in-between frames keep the motion smooth; render them ahead to play "
            "them back."),
        QCoreApplication::translate(
            "ReleaseNotes",
            "Crop for a phone or a square, keyframe the framing or let it follow a subject, and zoom in where "
            "it matters."),
        QCoreApplication::translate(
            "ReleaseNotes", "Every export is opened again and compared with its source before it takes its place.")};
}

bool areNewFor(const QString& lastSeen) {
    return !lastSeen.isEmpty() && lastSeen != version();
}

} // namespace flowtide::releaseNotes
