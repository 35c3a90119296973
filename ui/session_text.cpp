#include "ui/session_text.h"

#include <QCoreApplication>
#include <QRegularExpression>
#include <array>

namespace flowtide {

namespace {

/// With a place for each number, and for what is named.
constexpr std::array sentences{
    QT_TRANSLATE_NOOP("Session", "Saving…"),
    QT_TRANSLATE_NOOP("Session", "Saved"),
    QT_TRANSLATE_NOOP("Session", "Saved as a copy: this project was changed elsewhere."),
    QT_TRANSLATE_NOOP("Session", "Could not save: %1"),
    QT_TRANSLATE_NOOP("Session", "Could not save your project"),
    QT_TRANSLATE_NOOP("Session", "Could not change the list of projects"),
    QT_TRANSLATE_NOOP("Session", "Preview not rendered"),
    QT_TRANSLATE_NOOP("Session", "Preview rendering"),
    QT_TRANSLATE_NOOP("Session", "Preview rendered"),
    QT_TRANSLATE_NOOP("Session", "Original frames · Optical Flow off"),
    QT_TRANSLATE_NOOP("Session", "Optical Flow · preview not rendered"),
    QT_TRANSLATE_NOOP("Session", "No rendered previews"),
    QT_TRANSLATE_NOOP("Session", "Render all ranges"),
    QT_TRANSLATE_NOOP("Session", "Rendering all ranges %1%"),
    QT_TRANSLATE_NOOP("Session", "All ranges rendered"),
    QT_TRANSLATE_NOOP("Session", "Could not decode the original frame. Toggle Compare to retry."),
    QT_TRANSLATE_NOOP("Session", "Loading the source frame…"),
    QT_TRANSLATE_NOOP("Session", "Draw a tight box around the subject (torso for a player). Tracking follows it in "
                                 "both directions."),
    QT_TRANSLATE_NOOP("Session", "Following the subject…"),
    QT_TRANSLATE_NOOP("Session", "Looking for the subject…"),
    QT_TRANSLATE_NOOP("Session", "Framing changed while tracking. Track again to keep your new edits."),
    QT_TRANSLATE_NOOP("Session", "Tracking complete: %1 framing points across the retained clip. %2 to undo."),
    QT_TRANSLATE_NOOP("Session", "Tracking finished with gaps. Review the orange flags where the subject was lost."),
    QT_TRANSLATE_NOOP("Session", "Tracking stopped — subject lost. Choose a clearer frame and try again."),
    QT_TRANSLATE_NOOP("Session", "Tracking stopped — subject lost. Tracked %1 keyframes. Review the orange flags."),
    QT_TRANSLATE_NOOP("Session", "This video does not match the project's original clip. Choose the original file to "
                                 "relink it."),
};

/// Each place stands for some text.
QRegularExpression patternOf(const char* sentence) {
    QString pattern = QRegularExpression::escape(QString::fromUtf8(sentence));
    for (const char* place : {"\\%1", "\\%2"})
        pattern.replace(QLatin1String(place), QStringLiteral("(.+)"));
    return QRegularExpression(QRegularExpression::anchoredPattern(pattern));
}

} // namespace

QString sessionText(const std::string& sentence) {
    const QString said = QString::fromStdString(sentence);
    for (const char* known : sentences) {
        const auto found = patternOf(known).match(said);
        if (!found.hasMatch()) continue;
        QString translated = QCoreApplication::translate("Session", known);
        for (int place = 1; place <= found.lastCapturedIndex(); ++place)
            translated.replace(QStringLiteral("%%1").arg(place), found.captured(place));
        return translated;
    }
    return said;
}

} // namespace flowtide
