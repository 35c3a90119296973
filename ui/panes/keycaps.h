// The keys of a shortcut as they are drawn: caps, and what stands between them.
#pragma once

#include <QPainter>
#include <QPointF>
#include <QString>
#include <vector>

namespace flowtide::keycaps {

struct Piece {
    QString text;
    bool isCap = true;
    friend bool operator==(const Piece&, const Piece&) = default;
};

/// Of "Ctrl+Alt+S", "Shift+Z or \", "Alt scroll", "⌥⌘I".
std::vector<Piece> pieces(const QString& keys);

constexpr double capHeight = 20;
double width(const std::vector<Piece>& pieces);
/// From the left, centred at a height.
void draw(QPainter& painter, QPointF leftMiddle, const std::vector<Piece>& pieces);

} // namespace flowtide::keycaps
