// Draws pictures and what lies on them.
#pragma once

#include "ui/theme.h"

#include <QColor>
#include <QImage>
#include <QPainter>
#include <QRectF>
#include <QString>
#include <vector>

namespace flowtide::picturePainter {

/// Draws a part of an image (fractions of it) over a rectangle that lies on device pixels. An image that has the
/// rectangle's size is drawn pixel by pixel.
void draw(QPainter& painter, const QRectF& place, const QImage& image, const QRectF& part);

/// Words on a chip; each in its own look.
struct ChipPart {
    QString text;
    theme::Type type = theme::Type::label;
    QColor color = theme::text;
};

constexpr double chipHeight = 24;
constexpr double chipMargin = 8; ///< from the picture's edges

/// How wide a chip is; `hasSign`: an icon or a dot stands before its words.
double chipWidth(const std::vector<ChipPart>& parts, bool hasSign = false);
/// Draws a chip; `icon`: before its words, may be empty.
void drawChip(QPainter& painter, QPointF topLeft, const std::vector<ChipPart>& parts, const QString& icon = {},
              QColor ground = theme::pane);
/// The same with a dot before its words.
void drawDotChip(QPainter& painter, QPointF topLeft, const std::vector<ChipPart>& parts, QColor dot,
                 bool isFilled = true, QColor ground = theme::pane);

} // namespace flowtide::picturePainter
