#include "ui/viewer/subject_overlay.h"

#include "ui/theme.h"
#include "ui/value_text.h"
#include "ui/viewer/picture_painter.h"
#include "ui/viewer/viewer_geometry.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

namespace flowtide {

namespace {

constexpr double cornerLength = 10;

QRectF placed(const QRectF& picture, const SubjectBox& box) {
    return viewerGeometry::part(picture, {box.x, box.y, box.width, box.height});
}

void drawCorners(QPainter& painter, const QRectF& box) {
    painter.fillRect(box, theme::faded(theme::framing, 0.1));
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const std::array<std::pair<QColor, double>, 2> strokes{{{theme::faded(theme::well, 0.6), 4}, {theme::framing, 2}}};
    const double length = std::min({cornerLength, box.width() / 2, box.height() / 2});
    for (const auto& [color, width] : strokes) {
        painter.setPen(QPen(color, width, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
        for (const double x : {box.left(), box.right()})
            for (const double y : {box.top(), box.bottom()}) {
                const QPointF corner(x, y);
                painter.drawLine(corner, corner + QPointF(x == box.left() ? length : -length, 0));
                painter.drawLine(corner, corner + QPointF(0, y == box.top() ? length : -length));
            }
    }
    painter.restore();
}

/// Over the box, or in it where there is no room above.
void drawTime(QPainter& painter, const QRectF& box, double time, const QRectF& picture) {
    const std::vector<picturePainter::ChipPart> parts{
        {valueText::timeCode(time), theme::Type::codeSmall, theme::framing}};
    const double above = box.top() - picturePainter::chipMargin - picturePainter::chipHeight;
    const double left = std::min(box.left(), picture.right() - picturePainter::chipWidth(parts));
    picturePainter::drawChip(painter, {left, above >= picture.top() ? above : box.top() + picturePainter::chipMargin},
                             parts);
}

} // namespace

bool SubjectOverlay::isChoosing() const {
    return model_.tracking().selectingSubject() && model_.tracking().subjectSelectionBuffer();
}

void SubjectOverlay::forget() {
    isDrawing_ = false;
    box_.reset();
}

bool SubjectOverlay::start() {
    if (!isChoosing() || !box_) return false;
    const SubjectBox box = *std::exchange(box_, {});
    model_.startTracking(box);
    return true;
}

void SubjectOverlay::paint(QPainter& painter, const PicturePlace& place) const {
    if (isChoosing() && box_) {
        painter.save();
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setBrush(Qt::NoBrush);
        const QRectF box = placed(place.picture, *box_);
        painter.setPen(QPen(theme::faded(theme::well, 0.6), 3.5));
        painter.drawRect(box);
        painter.setPen(QPen(Qt::white, 1.5));
        painter.drawRect(box);
        painter.restore();
    }
    const auto& followed = model_.tracking().trackingPreview();
    if (!followed || !followed->box) return;
    const QRectF box = placed(place.picture, *followed->box);
    drawCorners(painter, box);
    drawTime(painter, box, followed->time, place.picture);
}

bool SubjectOverlay::takes(QPointF at, const PicturePlace& place) const {
    return isChoosing() && place.picture.contains(at);
}

void SubjectOverlay::begin(QPointF at, Qt::KeyboardModifiers, const PicturePlace& place) {
    corner_ = viewerGeometry::fractions(place.picture, at);
    boxBefore_ = box_;
    isDrawing_ = true;
}

void SubjectOverlay::drag(QPointF at, const PicturePlace& place) {
    if (isDrawing_) box_ = viewerGeometry::boxBetween(corner_, viewerGeometry::fractions(place.picture, at));
}

void SubjectOverlay::end(bool isCancelled) {
    if (!std::exchange(isDrawing_, false)) return;
    const bool isSubject = box_ && box_->width > smallestSubject && box_->height > smallestSubject;
    if (isCancelled)
        box_ = boxBefore_;
    else if (!isSubject)
        box_.reset();
    else
        start();
}

bool SubjectOverlay::nudge(int x, int y, bool isShifted, const PicturePlace&) {
    if (!isChoosing()) return false;
    if (!box_)
        box_ = firstBox;
    else if (isShifted)
        box_ = viewerGeometry::grownBox(*box_, 2 * x * keyboardStep, -2 * y * keyboardStep);
    else
        box_ = viewerGeometry::movedBox(*box_, x * keyboardStep, y * keyboardStep);
    return true;
}

} // namespace flowtide
