#include "ui/viewer/crop_overlay.h"

#include "ui/theme.h"
#include "ui/viewer/picture_painter.h"
#include "ui/viewer/viewer_geometry.h"

#include <algorithm>

namespace flowtide {

namespace {

constexpr double lineWidth = 2;
constexpr double gripWidth = 6;
constexpr double gripHeight = 32;
constexpr QColor dimmed{0x07, 0x08, 0x0A, 163};
constexpr QColor thirds{0xFF, 0xFF, 0xFF, 87};

/// Along the inner edges, so that the frame touches the picture's top and bottom.
void drawFrame(QPainter& painter, const QRectF& crop) {
    const QRectF frame = theme::onPixels(painter, crop);
    painter.fillRect(QRectF(frame.left(), frame.top(), frame.width(), lineWidth), theme::framing);
    painter.fillRect(QRectF(frame.left(), frame.bottom() - lineWidth, frame.width(), lineWidth), theme::framing);
    painter.fillRect(QRectF(frame.left(), frame.top(), lineWidth, frame.height()), theme::framing);
    painter.fillRect(QRectF(frame.right() - lineWidth, frame.top(), lineWidth, frame.height()), theme::framing);
}

void drawThirds(QPainter& painter, const QRectF& crop) {
    const double line = theme::hairlineWidth(painter);
    for (const double third : {1.0 / 3, 2.0 / 3}) {
        const QRectF at = theme::onPixels(painter, QRectF(viewerGeometry::point(crop, {third, third}), QSizeF(1, 1)));
        painter.fillRect(QRectF(at.left(), crop.top(), line, crop.height()), thirds);
        painter.fillRect(QRectF(crop.left(), at.top(), crop.width(), line), thirds);
    }
}

void drawGrip(QPainter& painter, double x, double y) {
    const QRectF grip(x - gripWidth / 2, y - gripHeight / 2, gripWidth, gripHeight);
    theme::drawBox(painter, grip.adjusted(-1, -1, 1, 1), gripWidth / 2 + 1, theme::well);
    theme::drawBox(painter, grip, gripWidth / 2, theme::framing);
}

} // namespace

std::optional<CropPlan> CropOverlay::plan(const FlowtideViewModel& model) {
    if (!model.clip() || !model.framing().isVerticalCropEnabled()) return std::nullopt;
    return exportedCrop(*model.clip(), model.framing().cropAspectRatio());
}

double CropOverlay::travel(const FlowtideViewModel& model) {
    const double time = model.playheadSeconds();
    return model.framing().isCropDragActive() ? model.framing().liveCropTravel(time)
                                              : model.framing().glidedCropTravel(time);
}

void CropOverlay::paint(QPainter& painter, const PicturePlace& place) const {
    const auto crop = plan(model_);
    if (!crop || place.crop.isEmpty()) return;
    const QRectF frame = theme::onPixels(painter, place.crop);
    const QRectF& whole = place.picture;
    painter.fillRect(QRectF(whole.topLeft(), QPointF(frame.left(), whole.bottom())), dimmed);
    painter.fillRect(QRectF(QPointF(frame.right(), whole.top()), whole.bottomRight()), dimmed);
    drawThirds(painter, frame);
    drawFrame(painter, frame);
    const bool isLocked = model_.framing().lockCropCenter();
    if (!isLocked)
        for (const double x : {frame.left() + lineWidth / 2, frame.right() - lineWidth / 2})
            drawGrip(painter, x, frame.center().y());

    const std::string_view shape = rawValue(model_.framing().cropAspectRatio());
    const QString size = QStringLiteral("%1 × %2").arg(crop->width).arg(crop->height);
    const std::vector<picturePainter::ChipPart> parts{
        {QString::fromLatin1(shape.data(), static_cast<qsizetype>(shape.size())), theme::Type::smallBold,
         theme::framing},
        {size, theme::Type::small, theme::text2}};
    const QString sign = isLocked ? QStringLiteral("lock") : QString();
    const double width = picturePainter::chipWidth(parts, isLocked);
    const double rightmost = whole.right() - picturePainter::chipMargin - width;
    picturePainter::drawChip(
        painter,
        {std::min(frame.left() + picturePainter::chipMargin, rightmost), frame.top() + picturePainter::chipMargin},
        parts, sign);
}

bool CropOverlay::takes(QPointF at, const PicturePlace& place) const {
    return !place.crop.isEmpty() && !model_.framing().lockCropCenter() && place.picture.contains(at);
}

void CropOverlay::begin(QPointF at, Qt::KeyboardModifiers, const PicturePlace&) {
    pressX_ = at.x();
    pressTravel_ = travel(model_);
    model_.beginCropDrag();
}

void CropOverlay::drag(QPointF at, const PicturePlace& place) {
    model_.updateCropDrag(
        viewerGeometry::draggedTravel(pressTravel_, at.x() - pressX_, place.picture.width(), place.cropShare));
}

void CropOverlay::end(bool isCancelled) {
    if (isCancelled)
        model_.cancelCropDrag();
    else
        model_.endCropDrag();
}

bool CropOverlay::nudge(int x, int, bool isShifted, const PicturePlace& place) {
    if (place.crop.isEmpty() || model_.framing().lockCropCenter() || x == 0) return false;
    const double now = model_.framing().liveCropTravel(model_.playheadSeconds());
    model_.beginCropDrag();
    model_.updateCropDrag(std::clamp(now + x * (isShifted ? largeStep : keyboardStep), 0.0, 1.0));
    model_.endCropDrag();
    return true;
}

} // namespace flowtide
