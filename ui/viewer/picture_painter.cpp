#include "ui/viewer/picture_painter.h"

#include "ui/icons.h"
#include "ui/viewer/viewer_geometry.h"

#include <QPaintDevice>
#include <cmath>

namespace flowtide::picturePainter {

namespace {

constexpr double padding = 8;
constexpr double gap = 6;
constexpr double iconSize = 14;
constexpr double dotSize = 8;

void drawWords(QPainter& painter, double left, double top, const std::vector<ChipPart>& parts) {
    for (const ChipPart& part : parts) {
        const double width = theme::tabularWidth(part.type, part.text);
        theme::drawTabular(painter, QRectF(left, top, width, chipHeight), Qt::AlignLeft, part.type, part.color,
                           part.text);
        left += width + gap;
    }
}

} // namespace

void draw(QPainter& painter, const QRectF& place, const QImage& image, const QRectF& part) {
    if (image.isNull() || place.isEmpty()) return;
    const QSizeF device = painter.deviceTransform().mapRect(place).size();
    const QRectF source = viewerGeometry::part(QRectF(image.rect()), part);
    const double scale = device.width() / source.width();
    const bool isWhole = part == viewerGeometry::wholePicture;
    if (isWhole && std::abs(device.width() - image.width()) < 0.5 && std::abs(device.height() - image.height()) < 0.5) {
        QImage pixels = image;
        pixels.setDevicePixelRatio(painter.device()->devicePixelRatioF());
        painter.drawImage(place.topLeft(), pixels);
        return;
    }
    painter.save();
    // Pixels that are magnified by a whole number are looked at as pixels.
    const bool isPixelwise = isWhole && scale > 1.5 && std::abs(scale - std::round(scale)) < 0.01;
    painter.setRenderHint(QPainter::SmoothPixmapTransform, !isPixelwise);
    painter.drawImage(place, image, source);
    painter.restore();
}

double chipWidth(const std::vector<ChipPart>& parts, bool hasSign) {
    double width = 2 * padding - gap + (hasSign ? iconSize + gap : 0);
    for (const ChipPart& part : parts)
        width += theme::tabularWidth(part.type, part.text) + gap;
    return std::ceil(width);
}

void drawChip(QPainter& painter, QPointF topLeft, const std::vector<ChipPart>& parts, const QString& icon,
              QColor ground) {
    const QRectF chip(topLeft, QSizeF(chipWidth(parts, !icon.isEmpty()), chipHeight));
    theme::drawBox(painter, chip, theme::controlRadius, ground);
    double left = chip.left() + padding;
    if (!icon.isEmpty()) {
        icons::draw(painter, icon, QRectF(left, chip.top(), iconSize, chipHeight), iconSize,
                    parts.empty() ? theme::text : parts.front().color);
        left += iconSize + gap;
    }
    drawWords(painter, left, chip.top(), parts);
}

void drawDotChip(QPainter& painter, QPointF topLeft, const std::vector<ChipPart>& parts, QColor dot, bool isFilled,
                 QColor ground) {
    const QRectF chip(topLeft, QSizeF(chipWidth(parts, true), chipHeight));
    theme::drawBox(painter, chip, theme::controlRadius, ground);
    const QRectF sign(chip.left() + padding, chip.top() + (chipHeight - dotSize) / 2, dotSize, dotSize);
    theme::drawBox(painter, sign, dotSize / 2, isFilled ? dot : QColor(), isFilled ? QColor() : dot, 1.5);
    drawWords(painter, chip.left() + padding + dotSize + gap + (iconSize - dotSize) - 2, chip.top(), parts);
}

} // namespace flowtide::picturePainter
