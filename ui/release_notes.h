// What is new in this version.
#pragma once

#include <QString>
#include <QStringList>

namespace flowtide::releaseNotes {

/// This program's version, as "0.1.0".
QString version();
/// A few sentences about it.
QStringList notes();
/// Whether somebody who has seen the notes of `lastSeen` (empty: of no version yet) is to be shown these by themselves.
/// Not on a first start, where everything is new.
bool areNewFor(const QString& lastSeen);

} // namespace flowtide::releaseNotes
