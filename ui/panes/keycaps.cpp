#include "ui/panes/keycaps.h"

#include "ui/theme.h"

#include <QCoreApplication>
#include <QStringList>
#include <cmath>

namespace flowtide::keycaps {

namespace {

constexpr double capPadding = 6;
constexpr double capGap = 4;

bool isModifierSign(QChar character) {
    return QStringLiteral("⌘⌃⌥⇧").contains(character);
}

bool isKey(const QString& word) {
    // As this language calls them.
    const QStringList names{
        QCoreApplication::translate("KeyNames", "Ctrl"),    QCoreApplication::translate("KeyNames", "Alt"),
        QCoreApplication::translate("KeyNames", "Shift"),   QCoreApplication::translate("KeyNames", "Backspace"),
        QCoreApplication::translate("Shortcuts", "Tab"),    QCoreApplication::translate("Shortcuts", "Space"),
        QCoreApplication::translate("Shortcuts", "Delete"), QStringLiteral("Esc")};
    return (word.size() == 1 && word != QStringLiteral("/")) || names.contains(word);
}

void addWord(const QString& word, std::vector<Piece>& pieces) {
    qsizetype at = 0;
    while (at < word.size() && isModifierSign(word[at]))
        pieces.push_back({QString(word[at++]), true});
    const QString rest = word.mid(at);
    if (rest.isEmpty()) return;
    // A plus between two keys joins them; one at the end is a key.
    const qsizetype plus = rest.indexOf(u'+');
    if (plus > 0 && isKey(rest.left(plus)) && plus + 1 < rest.size()) {
        pieces.push_back({rest.left(plus), true});
        addWord(rest.mid(plus + 1), pieces);
        return;
    }
    pieces.push_back({rest, isKey(rest)});
}

double capWidth(const Piece& piece) {
    const double words = theme::textWidth(theme::Type::small, piece.text);
    return piece.isCap ? std::max(std::ceil(words) + 2 * capPadding, capHeight) : std::ceil(words);
}

} // namespace

std::vector<Piece> pieces(const QString& keys) {
    std::vector<Piece> all;
    for (const QString& word : keys.split(u' ', Qt::SkipEmptyParts)) {
        const std::size_t before = all.size();
        addWord(word, all);
        // Words that follow each other are one text.
        if (all.size() == before + 1 && before > 0 && !all[before].isCap && !all[before - 1].isCap) {
            all[before - 1].text += u' ' + all[before].text;
            all.pop_back();
        }
    }
    return all;
}

double width(const std::vector<Piece>& pieces) {
    double sum = 0;
    for (const Piece& piece : pieces)
        sum += capWidth(piece) + capGap;
    return std::max(sum - capGap, 0.0);
}

void draw(QPainter& painter, QPointF leftMiddle, const std::vector<Piece>& pieces) {
    double left = leftMiddle.x();
    for (const Piece& piece : pieces) {
        const QRectF place(left, leftMiddle.y() - capHeight / 2, capWidth(piece), capHeight);
        if (piece.isCap) {
            theme::drawBox(painter, place, theme::laneRadius, theme::border);
            theme::drawBox(painter, place.adjusted(0, 0, 0, -1), theme::laneRadius, theme::control);
        }
        theme::drawLine(painter, place, Qt::AlignHCenter, theme::Type::small, piece.isCap ? theme::text : theme::text2,
                        piece.text);
        left += place.width() + capGap;
    }
}

} // namespace flowtide::keycaps
