#include "ui/icons.h"

#include "ui/theme.h"

#include <QFile>
#include <QPaintDevice>
#include <QPixmapCache>
#include <QSvgRenderer>
#include <cmath>

namespace flowtide::icons {

QPixmap pixmap(const QString& name, double size, QColor color, double scale) {
    const int pixels = static_cast<int>(std::lround(size * scale));
    const QString key = QStringLiteral("icon/%1/%2/%3/%4").arg(name).arg(pixels).arg(color.rgba()).arg(scale);
    QPixmap drawn;
    if (QPixmapCache::find(key, &drawn)) return drawn;

    QFile file(QStringLiteral(":/icons/%1.svg").arg(name));
    if (!file.open(QIODevice::ReadOnly)) qFatal("No icon is called %s.", qPrintable(name));
    QSvgRenderer renderer(file.readAll().replace("currentColor", QColor(color.rgb()).name().toLatin1()));
    drawn = QPixmap(pixels, pixels);
    drawn.fill(Qt::transparent);
    QPainter painter(&drawn);
    painter.setOpacity(color.alphaF());
    renderer.render(&painter, QRectF(0, 0, pixels, pixels));
    painter.end();
    drawn.setDevicePixelRatio(scale);
    QPixmapCache::insert(key, drawn);
    return drawn;
}

void draw(QPainter& painter, const QString& name, const QRectF& rect, double size, QColor color) {
    QRectF place(0, 0, size, size);
    place.moveCenter(rect.center());
    const QPixmap drawn = pixmap(name, size, color, painter.device()->devicePixelRatioF());
    painter.drawPixmap(theme::onPixels(painter, place).topLeft(), drawn);
}

} // namespace flowtide::icons
