#include "ui/session_text.h"

#include <QCoreApplication>
#include <QRegularExpression>
#include <QStringList>
#include <array>
#include <optional>
#include <vector>

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
    QT_TRANSLATE_NOOP("Session", "There is no room for so many framing points. Remove some and track again."),
    QT_TRANSLATE_NOOP("Session", "Tracking complete: %1 framing points across the retained clip. %2 to undo."),
    QT_TRANSLATE_NOOP("Session", "Tracking finished with gaps. Review the orange flags where the subject was lost."),
    QT_TRANSLATE_NOOP("Session", "Tracking stopped — subject lost. Choose a clearer frame and try again."),
    QT_TRANSLATE_NOOP("Session", "Tracking stopped — subject lost. Tracked %1 keyframes. Review the orange flags."),
    QT_TRANSLATE_NOOP("Session", "This video does not match the project's original clip. Choose the original file to "
                                 "relink it."),
};

/// A sentence and the texts between its places.
struct Sentence {
    const char* words;
    QStringList texts;
};

std::vector<Sentence> splitAtPlaces() {
    std::vector<Sentence> all;
    for (const char* words : sentences)
        all.push_back({words, QString::fromUtf8(words).split(QRegularExpression(QStringLiteral("%[12]")))});
    return all;
}

/// What stands at the places of a sentence, at each one something; nothing where another sentence is said.
std::optional<QStringList> atPlaces(const QString& said, const QStringList& texts) {
    if (texts.size() == 1) return said == texts.front() ? std::optional<QStringList>(QStringList()) : std::nullopt;
    if (!said.startsWith(texts.front()) || !said.endsWith(texts.back())) return {};
    QStringList names;
    qsizetype from = texts.front().size();
    for (qsizetype place = 1; place < texts.size(); ++place) {
        const bool isLast = place + 1 == texts.size();
        const qsizetype to = isLast ? said.size() - texts.back().size() : said.indexOf(texts[place], from + 1);
        if (to <= from) return {};
        names.append(said.mid(from, to - from));
        from = to + texts[place].size();
    }
    return names;
}

} // namespace

QString sessionText(const std::string& sentence) {
    static const std::vector<Sentence> known = splitAtPlaces();
    QString said = QString::fromStdString(sentence);
    for (const auto& [words, texts] : known) {
        const auto names = atPlaces(said, texts);
        if (!names) continue;
        QString translated = QCoreApplication::translate("Session", words);
        for (qsizetype place = 0; place < names->size(); ++place)
            translated.replace(QStringLiteral("%%1").arg(place + 1), names->at(place));
        return translated;
    }
    return said;
}

} // namespace flowtide
