#include "ui/viewer/zoom_target.h"

#include "ui/key_names.h"
#include "ui/theme.h"
#include "ui/value_text.h"
#include "ui/viewer/picture_painter.h"
#include "ui/viewer/viewer_geometry.h"

#include <QCoreApplication>
#include <QLineF>
#include <algorithm>
#include <array>
#include <utility>

namespace flowtide {

namespace {

constexpr double ringRadius = 14;
constexpr double crossRadius = 22;
constexpr double crossGap = 6; ///< free in the middle
constexpr double dotDistance = 6;
constexpr int pathSamples = 240;

void drawTarget(QPainter& painter, QPointF middle) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    const std::array<std::pair<QColor, double>, 2> strokes{{{theme::faded(theme::well, 0.7), 4}, {theme::zoom, 2}}};
    for (const auto& [color, width] : strokes) {
        painter.setPen(QPen(color, width, Qt::SolidLine, Qt::FlatCap));
        painter.drawEllipse(middle, ringRadius, ringRadius);
        for (const QPointF& arm : {QPointF(1, 0), QPointF(-1, 0), QPointF(0, 1), QPointF(0, -1)})
            painter.drawLine(middle + arm * crossGap, middle + arm * crossRadius);
    }
    painter.restore();
}

} // namespace

const ZoomBlock* ZoomTarget::block(const FlowtideViewModel& model) {
    const auto& selected = model.zoom().selectedZoomBlockID();
    return selected ? model.zoom().block(*selected) : nullptr;
}

ZoomEngine::FocalPoint ZoomTarget::focal(const FlowtideViewModel& model, const ZoomBlock& block) {
    const double progress = ZoomBlockRules::progressIn(block, {model.playheadSeconds()}, model.curve().timeMap());
    return ZoomEngine::focal(progress, block);
}

void ZoomTarget::drawPath(QPainter& painter, const ZoomBlock& block, const QRectF& frame) const {
    const auto at = [&](double progress) {
        const ZoomEngine::FocalPoint focal = ZoomEngine::focal(progress, block);
        return viewerGeometry::point(frame, {focal.x, focal.y});
    };
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme::zoom);
    const double first = block.focalKeyframes.front().progress;
    const double length = block.focalKeyframes.back().progress - first;
    QPointF last = at(first);
    for (int index = 1; index <= pathSamples; ++index) {
        const QPointF next = at(first + length * index / pathSamples);
        if (QLineF(last, next).length() < dotDistance) continue;
        painter.drawEllipse(next, 0.75, 0.75);
        last = next;
    }
    for (const ZoomFocalKeyframe& key : block.focalKeyframes)
        painter.drawEllipse(viewerGeometry::point(frame, {key.x, key.y}), 3, 3);
    painter.restore();
}

void ZoomTarget::paint(QPainter& painter, const PicturePlace& place) const {
    const ZoomBlock* selected = block(model_);
    if (!selected) return;
    const QRectF& frame = place.frame();
    if (!selected->focalKeyframes.empty()) drawPath(painter, *selected, frame);
    const ZoomEngine::FocalPoint there = focal(model_, *selected);
    drawTarget(painter, viewerGeometry::point(frame, {there.x, there.y}));

    const bool isUnseen = isDragged_ && !keysMotion_ && !selected->focalKeyframes.empty();
    const QString words = isUnseen ? keyNames::local(QCoreApplication::translate("ZoomTarget", "⌥-drag moves it"))
                                   : valueText::speed(selected->amount);
    // Below the crop's own chip, which lies in the same corner of the frame.
    const double top = place.crop.isEmpty() ? 0 : picturePainter::chipHeight + picturePainter::chipMargin / 2;
    picturePainter::drawChip(painter,
                             frame.topLeft() + QPointF(picturePainter::chipMargin, picturePainter::chipMargin + top),
                             {{words, theme::Type::smallBold, theme::zoom}});
}

bool ZoomTarget::takes(QPointF at, const PicturePlace& place) const {
    const ZoomBlock* selected = block(model_);
    if (!selected) return false;
    const ZoomEngine::FocalPoint there = focal(model_, *selected);
    return QLineF(at, viewerGeometry::point(place.frame(), {there.x, there.y})).length() <= crossRadius;
}

void ZoomTarget::begin(QPointF at, Qt::KeyboardModifiers modifiers, const PicturePlace& place) {
    const ZoomBlock* selected = block(model_);
    if (!selected) return;
    const ZoomEngine::FocalPoint there = focal(model_, *selected);
    grip_ = viewerGeometry::point(place.frame(), {there.x, there.y}) - at;
    keysMotion_ = modifiers & (Qt::AltModifier | Qt::ControlModifier);
    isDragged_ = true;
    model_.beginCurveEdit();
}

void ZoomTarget::drag(QPointF at, const PicturePlace& place) {
    const ZoomBlock* selected = block(model_);
    if (!selected || !isDragged_) return;
    const QPointF to = viewerGeometry::fractions(place.frame(), at + grip_);
    model_.updateZoomFocal(Uuid(selected->id), std::clamp(to.x(), 0.0, 1.0), std::clamp(to.y(), 0.0, 1.0), keysMotion_);
}

void ZoomTarget::end(bool isCancelled) {
    if (!std::exchange(isDragged_, false)) return;
    if (isCancelled)
        model_.cancelCurveEdit();
    else
        model_.endCurveEdit();
}

bool ZoomTarget::nudge(int x, int y, bool isShifted, const PicturePlace&) {
    const ZoomBlock* selected = block(model_);
    if (!selected) return false;
    const ZoomEngine::FocalPoint there = focal(model_, *selected);
    const double step = isShifted ? largeStep : keyboardStep;
    model_.updateZoomFocal(Uuid(selected->id), std::clamp(there.x + x * step, 0.0, 1.0),
                           std::clamp(there.y + y * step, 0.0, 1.0), !selected->focalKeyframes.empty());
    return true;
}

} // namespace flowtide
