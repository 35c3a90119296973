// The window's icons, drawn from vectors at the size that they are shown in.
#pragma once

#include <QColor>
#include <QPainter>
#include <QPixmap>
#include <QRectF>
#include <QString>

namespace flowtide::icons {

/// The icon of that name ("play", "zoom-block", …) in one color, `size` device-independent pixels wide and high. Kept
/// for the next time.
QPixmap pixmap(const QString& name, double size, QColor color, double scale);

/// Draws it centred in a rectangle, on whole device pixels.
void draw(QPainter& painter, const QString& name, const QRectF& rect, double size, QColor color);

} // namespace flowtide::icons
