#include "ui/graph/graph_cursors.h"

#include "ui/theme.h"

#include <QLineF>
#include <QList>
#include <QPainter>
#include <QPixmap>
#include <QPixmapCache>
#include <cmath>

namespace flowtide::graphCursors {

namespace {

constexpr double middle = 11.5;

QPixmap drawn(double scale) {
    constexpr int side = 24;
    const QList<QLineF> lines{
        {middle - 8, middle, middle - 2, middle},          {middle + 2, middle, middle + 8, middle},
        {middle, middle - 8, middle, middle - 2},          {middle, middle + 2, middle, middle + 8},
        {middle + 6, middle + 9, middle + 12, middle + 9}, {middle + 9, middle + 6, middle + 9, middle + 12}};
    const int pixels = static_cast<int>(std::lround(side * scale));
    QPixmap pixmap(pixels, pixels);
    pixmap.fill(Qt::transparent);
    pixmap.setDevicePixelRatio(scale);
    QPainter painter(&pixmap);
    painter.setPen(QPen(theme::well, 3, Qt::SolidLine, Qt::SquareCap));
    painter.drawLines(lines);
    painter.setPen(QPen(theme::text, 1, Qt::SolidLine, Qt::SquareCap));
    painter.drawLines(lines);
    painter.end();
    return pixmap;
}

} // namespace

QCursor addPoint(double scale) {
    const QString key = QStringLiteral("graph-cursor/%1").arg(scale);
    QPixmap pixmap;
    if (!QPixmapCache::find(key, &pixmap)) {
        pixmap = drawn(scale);
        QPixmapCache::insert(key, pixmap);
    }
    return QCursor(pixmap, static_cast<int>(middle), static_cast<int>(middle));
}

} // namespace flowtide::graphCursors
