#include "ui/graph/point_marks.h"

#include "ui/theme.h"

#include <QPaintDevice>
#include <QPainterPath>
#include <QPixmapCache>
#include <cmath>

namespace flowtide {

namespace {

constexpr int side = 26;             ///< pixels; the largest mark fits
constexpr double labelGround = 3;    ///< pixels around a label's letters
constexpr double labelHeight = 20;   ///< pixels
constexpr double labelBaseline = 14; ///< pixels from its top

void disc(QPainter& painter, double radius, QColor fill, QColor outline, double width) {
    const double middle = side / 2.0;
    painter.setBrush(fill.isValid() ? QBrush(fill) : QBrush(Qt::NoBrush));
    painter.setPen(outline.isValid() ? QPen(outline, width) : QPen(Qt::NoPen));
    const double drawn = outline.isValid() ? radius + 1 - width / 2 : radius;
    painter.drawEllipse(QPointF(middle, middle), drawn, drawn);
}

void square(QPainter& painter, double size, QColor fill, QColor outline, double width) {
    QRectF box(0, 0, size - width, size - width);
    box.moveCenter(QPointF(side / 2.0, side / 2.0));
    painter.setBrush(fill);
    painter.setPen(QPen(outline, width));
    painter.drawRoundedRect(box, 1.5, 1.5);
}

void drawMark(QPainter& painter, PointMark mark, QColor color) {
    using namespace theme;
    switch (mark) {
    case PointMark::plain:
        return disc(painter, 5, well, color, 2);
    case PointMark::hovered:
        return disc(painter, 6, well, color, 2);
    case PointMark::hoverHalo:
        return disc(painter, 11, faded(color, 0.16), {}, 0);
    case PointMark::selected:
        return disc(painter, 6, color, theme::text, 2);
    case PointMark::dragHalo:
        return disc(painter, 11, faded(color, 0.25), {}, 0);
    case PointMark::keyboardRing:
        return disc(painter, 10, {}, theme::text, 2);
    case PointMark::edge:
        return square(painter, 9, well, color, 2);
    case PointMark::selectedEdge:
        return square(painter, 11, color, theme::text, 2);
    case PointMark::former: {
        QPen pen(faded(color, 0.5), 1.5);
        pen.setDashPattern({1.5, 1.5});
        painter.setBrush(Qt::NoBrush);
        painter.setPen(pen);
        painter.drawEllipse(QPointF(side / 2.0, side / 2.0), 5, 5);
        return;
    }
    case PointMark::outside:
        return disc(painter, 4, well, faded(color, 0.4), 1.5);
    }
}

/// What `draw` draws on a transparent ground, kept under a name.
template <typename Draw>
QPixmap kept(const QString& name, QSizeF size, const QPainter& painter, Draw draw) {
    const double scale = painter.device()->devicePixelRatioF();
    const QString key = QStringLiteral("%1/%2").arg(name).arg(scale);
    QPixmap pixmap;
    if (QPixmapCache::find(key, &pixmap)) return pixmap;
    pixmap = QPixmap((size * scale).toSize());
    pixmap.fill(Qt::transparent);
    pixmap.setDevicePixelRatio(scale);
    QPainter onPixmap(&pixmap);
    onPixmap.setRenderHint(QPainter::Antialiasing);
    draw(onPixmap);
    onPixmap.end();
    QPixmapCache::insert(key, pixmap);
    return pixmap;
}

} // namespace

void PointMarks::draw(QPointF place, PointMark mark) {
    QPixmap& pixmap = pixmaps_[static_cast<std::size_t>(mark)];
    if (pixmap.isNull())
        pixmap = kept(QStringLiteral("point/%1/%2").arg(static_cast<int>(mark)).arg(color_.rgba()), QSizeF(side, side),
                      painter_, [&](QPainter& onPixmap) { drawMark(onPixmap, mark, color_); });
    // Lines of one pixel go through the middle of their pixel, and so do the points on them.
    const double half = theme::hairlineWidth(painter_) / 2;
    const QPointF corner = place + QPointF(half - side / 2.0, half - side / 2.0);
    painter_.drawPixmap(theme::onPixels(painter_, QRectF(corner, QSizeF(side, side))).topLeft(), pixmap);
}

void drawPointLabel(QPainter& painter, QPointF baseline, const QString& words, bool isSelected) {
    const theme::Type type = isSelected ? theme::Type::smallBold : theme::Type::small;
    const QSizeF size(std::ceil(theme::textWidth(type, words)) + 2 * labelGround, labelHeight);
    const QPointF origin(labelGround, labelBaseline);
    const QPixmap pixmap =
        kept(QStringLiteral("label/%1/%2").arg(isSelected).arg(words), size, painter, [&](QPainter& onPixmap) {
            QPainterPath path;
            path.addText(origin, theme::font(type), words);
            onPixmap.strokePath(path, QPen(theme::well, labelGround, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
            onPixmap.setFont(theme::font(type));
            onPixmap.setPen(isSelected ? theme::text : theme::text2);
            onPixmap.drawText(origin, words);
        });
    painter.drawPixmap(theme::onPixels(painter, QRectF(baseline - origin, size)).topLeft(), pixmap);
}

} // namespace flowtide
